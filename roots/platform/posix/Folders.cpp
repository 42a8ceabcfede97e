// Files and folders as a whole: removed, renamed, made, entered. errno is Windows' number after a failure.
#include <roots/platform/Win32.h>
#include <roots/platform/posix/HostPath.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace {

using platform::failWith;
using platform::hostPath;
using platform::windowsError;

constexpr int kMissing = 2, kExists = 17, kBadArgument = 22;

int failAsHost() { return failWith(windowsError(errno)); }

// 0 where the path can be one, else the error.
int checkPath(const wchar_t* path) {
    if (path == nullptr || platform::isImpossiblePath(path)) return kBadArgument;
    return *path == 0 ? kMissing : 0;
}

// Whether the two names lead to one and the same entry, so that renaming replaces nothing.
bool isSameEntry(const std::string& a, const std::string& b) {
    struct stat first, second;
    if (lstat(a.c_str(), &first) != 0 || lstat(b.c_str(), &second) != 0) return false;
    const bool same = first.st_dev == second.st_dev && first.st_ino == second.st_ino;
    return same && (S_ISDIR(first.st_mode) || first.st_nlink == 1 || a == b);
}

int renameWithoutReplacing(const char* from, const char* to) {
#ifdef RENAME_NOREPLACE
    const int result = renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
    if (result == 0 || errno != EINVAL) return result;
        // EINVAL also comes from file systems that know no such flag.
#endif
    struct stat there;
    if (lstat(to, &there) == 0) {
        errno = EEXIST;
        return -1;
    }
    return rename(from, to);
}

bool copyBytes(int from, int to) {
    char block[1 << 16];
    for (;;) {
        const ssize_t got = read(from, block, sizeof block);
        if (got <= 0) return got == 0;
        for (ssize_t done = 0; done < got;) {
            const ssize_t put = write(to, block + done, static_cast<std::size_t>(got - done));
            if (put < 0) return false;
            done += put;
        }
    }
}

bool copyContent(int source, const char* to) {
    struct stat status;
    if (fstat(source, &status) != 0) return false;
    if (!S_ISREG(status.st_mode)) {
        errno = EACCES;  // as on Windows, folders stay on their file system
        return false;
    }
    const int target = open(to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, status.st_mode & 0777);
    if (target < 0) return false;
    const timespec times[] = {status.st_atim, status.st_mtim};
    const bool copied = copyBytes(source, target) && futimens(target, times) == 0;
    const int error = errno;
    const bool closed = close(target) == 0;
    if (copied && closed) return true;
    if (!copied) errno = error;
    const int reason = errno;
    unlink(to);
    errno = reason;
    return false;
}

// Moves a file to another file system: its copy is complete before the file goes.
int moveFile(const char* from, const char* to) {
    const int source = open(from, O_RDONLY | O_CLOEXEC);
    if (source < 0) return -1;
    const bool copied = copyContent(source, to);
    const int error = errno;
    close(source);
    errno = error;
    return copied ? unlink(from) : -1;
}

}  // namespace

int _wremove(const wchar_t* path) {
    if (const int error = checkPath(path); error != 0) return failWith(error);
    return unlink(hostPath(path).c_str()) == 0 ? 0 : failAsHost();
}

int _wrename(const wchar_t* oldName, const wchar_t* newName) {
    for (const wchar_t* name : {oldName, newName})
        if (const int error = checkPath(name); error != 0) return failWith(error);
    const std::string from = hostPath(oldName), to = hostPath(newName);
    int result = renameWithoutReplacing(from.c_str(), to.c_str());
    if (result != 0 && errno == EEXIST && isSameEntry(from, to)) result = rename(from.c_str(), to.c_str());
    if (result != 0 && errno == ENOENT && platform::provideDrive(newName))
        result = renameWithoutReplacing(from.c_str(), to.c_str());
    if (result != 0 && errno == EXDEV) result = moveFile(from.c_str(), to.c_str());
    if (result == 0) return 0;
    struct stat there;
    const int error = errno;
    // A folder that is in the way is in the way, however this system puts it.
    if (error != EEXIST && lstat(from.c_str(), &there) == 0 && lstat(to.c_str(), &there) == 0) return failWith(kExists);
    return failWith(windowsError(error));
}

int _wchdir(const wchar_t* path) {
    if (checkPath(path) != 0) return failWith(kBadArgument);
    const std::string folder = hostPath(path);
    if (chdir(folder.c_str()) == 0) return 0;
    if (errno == ENOENT && platform::provideDrive(path) && chdir(folder.c_str()) == 0) return 0;
    return failWith(errno == ENOTDIR ? kBadArgument : windowsError(errno));
}

int _wmkdir(const wchar_t* path) {
    if (const int error = checkPath(path); error != 0) return failWith(error);
    const std::string folder = hostPath(path);
    if (mkdir(folder.c_str(), 0777) == 0) return 0;
    if (errno == ENOENT && platform::provideDrive(path) && mkdir(folder.c_str(), 0777) == 0) return 0;
    return failAsHost();
}
