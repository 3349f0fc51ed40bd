#include <windows.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>

#include "Handle.h"
#include "Intercept.h"
#include "Text.h"

namespace velm::posix {
namespace {

class File : public Object {
public:
    explicit File(int descriptor) : m_descriptor(descriptor) {}
    ~File() override { close(m_descriptor); }
    int Descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
};

DWORD ErrorFromErrno(int error) {
    switch (error) {
        case ENOENT:
            return ERROR_FILE_NOT_FOUND;
        case ENOTDIR:
            return ERROR_PATH_NOT_FOUND;
        case EACCES:
        case EPERM:
        case EISDIR:
            return ERROR_ACCESS_DENIED;
        case ENAMETOOLONG:
        case EINVAL:
            return ERROR_INVALID_NAME;
        case ENOMEM:
            return ERROR_NOT_ENOUGH_MEMORY;
        default:
            return ERROR_GEN_FAILURE;
    }
}

}  // namespace

std::string NativePath(LPCWSTR path) {
    std::string native = Utf8(path);
    if (access(native.c_str(), F_OK) != 0) {
        std::replace(native.begin(), native.end(), '\\', '/');
    }
    return native;
}

}  // namespace velm::posix

using namespace velm::posix;

HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD, SECURITY_ATTRIBUTES*, DWORD disposition, DWORD,
                   HANDLE) {
    if (MustFail("CreateFileW")) {
        return INVALID_HANDLE_VALUE;
    }
    if (path == nullptr || access != GENERIC_READ || disposition != OPEN_EXISTING) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    return WithinSystem(INVALID_HANDLE_VALUE, [&]() -> HANDLE {
        const int descriptor = open(NativePath(path).c_str(), O_RDONLY | O_CLOEXEC);
        if (descriptor < 0) {
            SetLastError(ErrorFromErrno(errno));
            return INVALID_HANDLE_VALUE;
        }
        struct stat status {};
        if (fstat(descriptor, &status) != 0 || S_ISDIR(status.st_mode)) {
            close(descriptor);
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        }
        auto* file = new (std::nothrow) File(descriptor);
        if (file == nullptr) {
            close(descriptor);
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return INVALID_HANDLE_VALUE;
        }
        return ToHandle(file);
    });
}

BOOL ReadFile(HANDLE handle, LPVOID buffer, DWORD size, LPDWORD readSize, OVERLAPPED*) {
    *readSize = 0;
    if (MustFail("ReadFile")) {
        return FALSE;
    }
    const auto* file = FromHandle<File>(handle);
    if (file == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    ssize_t got = 0;
    do {
        got = read(file->Descriptor(), buffer, size);
    } while (got < 0 && errno == EINTR);
    if (got < 0) {
        SetLastError(ErrorFromErrno(errno));
        return FALSE;
    }
    *readSize = static_cast<DWORD>(got);
    return TRUE;
}
