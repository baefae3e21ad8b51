// Files over POSIX descriptors, with Windows paths mapped by host::MapWindowsPath and POSIX
// failures turned into the codes Windows gives for the same situation.
#include "handles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace host::detail {

namespace {

struct FileObject : HandleObject
{
    static constexpr HandleKind kKind = HandleKind::File;
    FileObject(int d, bool r, bool w) : HandleObject(kKind), fd(d), canRead(r), canWrite(w) {}
    ~FileObject() override { ::close(fd); }
    const int fd;
    const bool canRead;
    const bool canWrite;
};

bool DirectoryExists(const std::string& path)
{
    struct stat st
    {
    };
    return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

std::string Parent(const std::string& path)
{
    size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

DWORD ErrorOf(int error, const std::string& path)
{
    switch (error) {
    case ENOENT:
        // Windows tells a missing file from a missing directory on the way to it.
        return DirectoryExists(Parent(path)) ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
    case ENOTDIR:
        return ERROR_PATH_NOT_FOUND;
    case EEXIST:
        return ERROR_FILE_EXISTS;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR: // opening a directory as a file is refused the same way
        return ERROR_ACCESS_DENIED;
    case ENAMETOOLONG:
        return ERROR_FILENAME_EXCED_RANGE;
    case ENOSPC:
    case EDQUOT:
        return ERROR_DISK_FULL;
    case ENOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    default:
        return ERROR_ACCESS_DENIED;
    }
}

} // namespace

} // namespace host::detail

using namespace host::detail;

extern "C" {

// A file handle, or INVALID_HANDLE_VALUE with the Windows code. On success the last error is
// set too: ERROR_ALREADY_EXISTS when CREATE_ALWAYS or OPEN_ALWAYS met an existing file, else
// 0. FILE_APPEND_DATA without FILE_WRITE_DATA (or GENERIC_WRITE) makes every write append.
// Share modes are not enforced: the host has no other openers to protect.
HANDLE WINAPI CreateFileW(LPCWSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
                          LPSECURITY_ATTRIBUTES lpSecurityAttributes, DWORD dwCreationDisposition,
                          DWORD dwFlagsAndAttributes, HANDLE hTemplateFile)
{
    if (!lpFileName || !*lpFileName) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    bool canRead = dwDesiredAccess & (GENERIC_READ | GENERIC_ALL | FILE_READ_DATA);
    bool writeData = dwDesiredAccess & (GENERIC_WRITE | GENERIC_ALL | FILE_WRITE_DATA);
    bool appendOnly = !writeData && (dwDesiredAccess & FILE_APPEND_DATA);
    bool canWrite = writeData || appendOnly;

    int flags = O_CLOEXEC;
    flags |= canRead && canWrite ? O_RDWR : canWrite ? O_WRONLY : O_RDONLY;
    if (appendOnly) {
        flags |= O_APPEND;
    }
    switch (dwCreationDisposition) {
    case CREATE_NEW:
        flags |= O_CREAT | O_EXCL;
        break;
    case CREATE_ALWAYS:
        flags |= O_CREAT | O_TRUNC;
        break;
    case OPEN_EXISTING:
        break;
    case OPEN_ALWAYS:
        flags |= O_CREAT;
        break;
    case TRUNCATE_EXISTING:
        if (!canWrite) { // the system demands write access to truncate
            SetLastError(ERROR_INVALID_PARAMETER);
            return INVALID_HANDLE_VALUE;
        }
        flags |= O_TRUNC;
        break;
    default:
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    // O_TRUNC on a read-only descriptor is undefined in POSIX; truncate by hand instead.
    bool truncateByHand = (flags & O_TRUNC) && !canWrite;
    if (truncateByHand) {
        flags &= ~O_TRUNC;
    }

    std::string path = host::MapWindowsPath(FromW(lpFileName));
    bool existed = ::access(path.c_str(), F_OK) == 0;
    int fd = ::open(path.c_str(), flags, 0666);
    if (fd < 0) {
        SetLastError(ErrorOf(errno, path));
        return INVALID_HANDLE_VALUE;
    }
    struct stat st
    {
    };
    if (::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
        ::close(fd);
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    if (truncateByHand && ::ftruncate(fd, 0) != 0) {
        int error = errno;
        ::close(fd);
        SetLastError(ErrorOf(error, path));
        return INVALID_HANDLE_VALUE;
    }
    HANDLE handle = AddHandle(std::make_shared<FileObject>(fd, canRead, canWrite));
    bool reportExisting =
        existed && (dwCreationDisposition == CREATE_ALWAYS || dwCreationDisposition == OPEN_ALWAYS);
    SetLastError(reportExisting ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return handle;
}

} // extern "C"

namespace {

// The checks ReadFile and WriteFile share: a file handle opened for the direction, no
// overlapped I/O, a buffer for a non-zero count. Clears the count done first; on failure sets
// the last error and gives null.
std::shared_ptr<FileObject> OpenForTransfer(HANDLE hFile, bool write, LPCVOID lpBuffer, DWORD count,
                                            LPDWORD lpDone, void* lpOverlapped)
{
    if (lpDone) {
        *lpDone = 0;
    }
    auto file = Find<FileObject>(hFile);
    DWORD error = !file                                       ? ERROR_INVALID_HANDLE
                  : lpOverlapped                              ? ERROR_INVALID_PARAMETER
                  : !(write ? file->canWrite : file->canRead) ? ERROR_ACCESS_DENIED
                  : !lpBuffer && count                        ? ERROR_NOACCESS
                                                              : ERROR_SUCCESS;
    if (error != ERROR_SUCCESS) {
        SetLastError(error);
        return nullptr;
    }
    return file;
}

} // namespace

extern "C" {

// TRUE with all bytes written. A handle without write access gives ERROR_ACCESS_DENIED; a
// null buffer with a non-zero count ERROR_NOACCESS. Overlapped writes are not supported.
BOOL WINAPI WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite,
                      LPDWORD lpNumberOfBytesWritten, void* lpOverlapped)
{
    auto file = OpenForTransfer(hFile, true, lpBuffer, nNumberOfBytesToWrite,
                                lpNumberOfBytesWritten, lpOverlapped);
    if (!file) {
        return FALSE;
    }
    const auto* bytes = static_cast<const uint8_t*>(lpBuffer);
    DWORD done = 0;
    while (done < nNumberOfBytesToWrite) {
        ssize_t n = ::write(file->fd, bytes + done, nNumberOfBytesToWrite - done);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            if (lpNumberOfBytesWritten) {
                *lpNumberOfBytesWritten = done;
            }
            SetLastError(ErrorOf(errno, ""));
            return FALSE;
        }
        done += DWORD(n);
    }
    if (lpNumberOfBytesWritten) {
        *lpNumberOfBytesWritten = done;
    }
    return TRUE;
}

// TRUE with the bytes read; at the end of the file TRUE with 0 bytes, as for a disk file on
// Windows. A handle without read access gives ERROR_ACCESS_DENIED.
BOOL WINAPI ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead,
                     LPDWORD lpNumberOfBytesRead, void* lpOverlapped)
{
    auto file = OpenForTransfer(hFile, false, lpBuffer, nNumberOfBytesToRead, lpNumberOfBytesRead,
                                lpOverlapped);
    if (!file) {
        return FALSE;
    }
    auto* bytes = static_cast<uint8_t*>(lpBuffer);
    DWORD done = 0;
    while (done < nNumberOfBytesToRead) {
        ssize_t n = ::read(file->fd, bytes + done, nNumberOfBytesToRead - done);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            SetLastError(ErrorOf(errno, ""));
            return FALSE;
        }
        if (n == 0) {
            break;
        }
        done += DWORD(n);
    }
    if (lpNumberOfBytesRead) {
        *lpNumberOfBytesRead = done;
    }
    return TRUE;
}

// The low 32 bits of the size (the high ones in *lpFileSizeHigh). INVALID_FILE_SIZE with the
// error on failure; a true size whose low part equals it sets the last error to 0.
DWORD WINAPI GetFileSize(HANDLE hFile, LPDWORD lpFileSizeHigh)
{
    auto file = Find<FileObject>(hFile);
    if (!file) {
        SetLastError(ERROR_INVALID_HANDLE);
        return INVALID_FILE_SIZE;
    }
    struct stat st
    {
    };
    if (::fstat(file->fd, &st) != 0) {
        SetLastError(ErrorOf(errno, ""));
        return INVALID_FILE_SIZE;
    }
    uint64_t size = uint64_t(st.st_size);
    if (lpFileSizeHigh) {
        *lpFileSizeHigh = DWORD(size >> 32);
    }
    if (DWORD(size) == INVALID_FILE_SIZE) {
        SetLastError(ERROR_SUCCESS);
    }
    return DWORD(size);
}

// TRUE for a file handle. Printer handles and registry keys are not kernel objects here:
// they, stale handles and made-up values give FALSE with ERROR_INVALID_HANDLE.
BOOL WINAPI CloseHandle(HANDLE hObject)
{
    if (!RemoveHandle(hObject, HandleKind::File)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    return TRUE;
}

} // extern "C"
