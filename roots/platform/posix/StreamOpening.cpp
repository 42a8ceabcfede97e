// Opens streams in the modes of Windows' runtime: r, w or a, then any of
//   +  for reading and writing      b  binary      t  text, which is the default; the last of both counts
//   x  with w: the file must be new (17 where it exists)
//   , ccs=UTF-8 (or UTF-16LE, UNICODE; in any case, with blanks anywhere between)
// Other letters behind the first one are passed over, as blanks are.
#include <roots/platform/WideText.h>
#include <roots/platform/Win32.h>
#include <roots/platform/posix/HostPath.h>
#include <roots/platform/posix/StreamTable.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

using platform::windowsError;
using streams::Encoding;

constexpr int kMissing = 2, kDenied = 13, kBadArgument = 22;

enum class Requested { eNothing, eUtf8, eUtf16, eByMark };  // eByMark: UTF-16 in a new file, else what the mark says

struct Mode {
    wchar_t access = 0;  // r, w or a
    bool update = false, binary = false, exclusive = false;
    Requested encoding = Requested::eNothing;

    bool writes() const { return access != L'r' || update; }
};

const wchar_t* skipBlanks(const wchar_t* text) {
    while (*text == L' ') ++text;
    return text;
}

bool isNamed(const wchar_t* text, std::size_t length, const wchar_t* name) {
    return length == wide::length(name) && _wcsnicmp(text, name, length) == 0;
}

// What stands behind the comma.
bool parseEncoding(const wchar_t* text, Mode& mode) {
    text = skipBlanks(text);
    if (wide::compare(text, L"ccs", 3) != 0) return false;
    text = skipBlanks(text + 3);
    if (*text != L'=') return false;
    text = skipBlanks(text + 1);
    std::size_t length = wide::length(text);
    while (length > 0 && text[length - 1] == L' ') --length;
    mode.encoding = isNamed(text, length, L"UTF-8")      ? Requested::eUtf8
                    : isNamed(text, length, L"UTF-16LE") ? Requested::eUtf16
                    : isNamed(text, length, L"UNICODE")  ? Requested::eByMark
                                                         : Requested::eNothing;
    return mode.encoding != Requested::eNothing;
}

bool parseMode(const wchar_t* text, Mode& mode) {
    text = skipBlanks(text);
    mode.access = *text;
    if (*text != L'r' && *text != L'w' && *text != L'a') return false;
    while (*++text != 0) {
        if (*text == L',') return parseEncoding(text + 1, mode);
        if (*text == L'+') mode.update = true;
        if (*text == L'b' || *text == L't') mode.binary = *text == L'b';
        if (*text == L'x') mode.exclusive = mode.access == L'w';
    }
    return true;
}

int openDescriptor(const char* path, const Mode& mode) {
    int flags = O_CLOEXEC | (mode.update ? O_RDWR : mode.access == L'r' ? O_RDONLY : O_WRONLY);
    if (mode.access == L'w') flags |= O_CREAT | O_TRUNC | (mode.exclusive ? O_EXCL : 0);
    if (mode.access == L'a') {
        flags |= O_CREAT | O_APPEND;
        // The mark of a file that is there already has to be read; one that may only be written is appended to unread.
        if (mode.encoding != Requested::eNothing && !mode.update) {
            const int both = open(path, (flags & ~O_ACCMODE) | O_RDWR, 0666);
            if (both >= 0 || errno != EACCES) return both;
        }
    }
    return open(path, flags, 0666);
}

// The encoding in which an open file is to be read and written. Writes the mark that a new file gets, and leaves the
// position behind the mark that the file has. 0, or the error.
int settleEncoding(int file, const Mode& mode, const struct stat& status, Encoding& encoding) {
    const Encoding asked = mode.encoding == Requested::eUtf8    ? Encoding::eUtf8
                           : mode.encoding == Requested::eUtf16 ? Encoding::eUtf16
                                                                : Encoding::eBytes;
    encoding = asked;
    unsigned char mark[3] = {};
    const ssize_t got = pread(file, mark, sizeof mark, 0);
    const bool isNew = S_ISREG(status.st_mode) && status.st_size == 0 && mode.writes();
    off_t size = 0;
    if (isNew) {
        encoding = asked == Encoding::eUtf8 ? asked : Encoding::eUtf16;
        size = encoding == Encoding::eUtf8 ? 3 : 2;
        if (write(file, encoding == Encoding::eUtf8 ? "\xEF\xBB\xBF" : "\xFF\xFE", static_cast<std::size_t>(size)) !=
            size)
            return windowsError(errno);
    } else if (got == 3 && std::memcmp(mark, "\xEF\xBB\xBF", 3) == 0) {
        encoding = Encoding::eUtf8;
        size = 3;
    } else if (got >= 2 && std::memcmp(mark, "\xFF\xFE", 2) == 0) {
        encoding = Encoding::eUtf16;
        size = 2;
    }
    if (size > 0) lseek(file, size, SEEK_SET);
    return 0;
}

const char* hostMode(const Mode& mode) {
    switch (mode.access) {
        case L'r': return mode.update ? "r+" : "r";
        case L'w': return mode.update ? "w+" : "w";
        default: return mode.update ? "a+" : "a";
    }
}

// The encoding of an open file; 0, or the error.
int prepare(int file, const Mode& mode, Encoding& encoding) {
    struct stat status;
    if (fstat(file, &status) != 0) return windowsError(errno);
    if (S_ISDIR(status.st_mode)) return kDenied;
    return mode.encoding != Requested::eNothing ? settleEncoding(file, mode, status, encoding) : 0;
}

// Makes a stream of an open file, which is closed where that fails. 0, or the error.
int makeStream(int file, const Mode& mode, std::FILE** stream) {
    Encoding encoding = Encoding::eBytes;
    int error = prepare(file, mode, encoding);
    std::FILE* const made = error == 0 ? fdopen(file, hostMode(mode)) : nullptr;
    if (made == nullptr) {
        if (error == 0) error = windowsError(errno);
        close(file);
        return error;
    }
    streams::Stream entry;
    entry.file = made;
    entry.encoding = mode.binary ? Encoding::eUtf16 : encoding;
    entry.text = !mode.binary;
    entry.update = mode.update;
    if (!streams::enter(entry)) {
        std::fclose(made);
        return ENOMEM;
    }
    *stream = made;
    return 0;
}

int openStream(const wchar_t* name, const wchar_t* modeText, std::FILE** stream) {
    Mode mode;
    if (!parseMode(modeText, mode) || platform::isImpossiblePath(name)) return kBadArgument;
    if (*name == 0) return kMissing;
    const std::string path = platform::hostPath(name);
    int file = openDescriptor(path.c_str(), mode);
    if (file < 0 && errno == ENOENT && mode.access != L'r' && platform::provideDrive(name))
        file = openDescriptor(path.c_str(), mode);
    return file < 0 ? windowsError(errno) : makeStream(file, mode, stream);
}

}  // namespace

errno_t _wfopen_s(std::FILE** stream, const wchar_t* name, const wchar_t* mode) {
    int error = kBadArgument;
    if (stream != nullptr && name != nullptr && mode != nullptr) {
        *stream = nullptr;
        error = openStream(name, mode, stream);
    }
    if (error != 0) errno = error;
    return error;
}
