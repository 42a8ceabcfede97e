// Version information of files: the version resource of PE files, which Linux has where Windows programs are kept.
#include <roots/platform/Win32.h>
#include <roots/platform/posix/HostPath.h>
#include <roots/platform/posix/PortableExecutable.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <string>

namespace {

using platform::FileRange;

class File {
public:
    File() = default;
    ~File() {
        if (m_descriptor >= 0) close(m_descriptor);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    // ERROR_SUCCESS, or why there is nothing to read. Waits for nobody, as opening a pipe otherwise would.
    DWORD open(const std::string& path) {
        struct stat status;
        if (stat(path.c_str(), &status) != 0) return errorOfOpening(path);
        if (S_ISDIR(status.st_mode)) return ERROR_ACCESS_DENIED;
        if (!S_ISREG(status.st_mode)) return ERROR_RESOURCE_DATA_NOT_FOUND;
        m_descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
        return m_descriptor < 0 ? errorOfOpening(path) : ERROR_SUCCESS;
    }

    bool readAt(std::uint64_t offset, void* to, std::size_t size) const {
        auto* at = static_cast<char*>(to);
        while (size > 0) {
            const ssize_t got = pread(m_descriptor, at, size, static_cast<off_t>(offset));
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0) return false;
            at += got;
            offset += static_cast<std::size_t>(got);
            size -= static_cast<std::size_t>(got);
        }
        return true;
    }

private:
    static DWORD errorOfOpening(const std::string& path) {
        if (errno == EACCES || errno == EPERM) return ERROR_ACCESS_DENIED;
        if (errno == EMFILE || errno == ENFILE) return ERROR_TOO_MANY_OPEN_FILES;
        const std::size_t slash = path.rfind('/');
        const bool hasFolder = slash == std::string::npos || access(path.substr(0, slash + 1).c_str(), F_OK) == 0;
        return hasFolder ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
    }

    int m_descriptor = -1;
};

DWORD findVersion(const wchar_t* path, File& file, FileRange& resource) {
    if (path == nullptr) return ERROR_INVALID_PARAMETER;
    if (*path == 0) return ERROR_BAD_PATHNAME;
    if (platform::isImpossiblePath(path)) return ERROR_INVALID_NAME;
    try {
        if (const DWORD error = file.open(platform::hostPath(path))) return error;
        const auto read = [&file](std::uint64_t offset, void* to, std::size_t size) {
            return file.readAt(offset, to, size);
        };
        return platform::findVersionResource(read, resource) ? ERROR_SUCCESS : ERROR_RESOURCE_DATA_NOT_FOUND;
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

BOOL fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

}  // namespace

DWORD GetFileVersionInfoSizeW(const wchar_t* path, DWORD* handle) {
    if (handle != nullptr) *handle = 0;
    File file;
    FileRange resource;
    if (const DWORD error = findVersion(path, file, resource)) return static_cast<DWORD>(fail(error));
    return std::max<DWORD>(2 * resource.size + 4, resource.size + 64);
}

BOOL GetFileVersionInfoW(const wchar_t* path, DWORD, DWORD size, void* block) {
    if (block == nullptr) return fail(ERROR_INVALID_PARAMETER);
    File file;
    FileRange resource;
    if (const DWORD error = findVersion(path, file, resource)) return fail(error);
    const std::size_t given = std::min(size, resource.size);
    if (!file.readAt(resource.offset, block, given)) return fail(ERROR_RESOURCE_DATA_NOT_FOUND);
    std::memset(static_cast<char*>(block) + given, 0, size - given);
    return TRUE;
}
