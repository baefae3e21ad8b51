// Windows Sockets over POSIX sockets: blocking TCP clients, select with Windows sets, name
// resolution into the Windows address list, and the WSA error codes.
//
// The Windows functions are host::winsock::socket, connect, ... (see decl/winsock.h); the POSIX
// ones are called qualified, ::connect, so that the two never meet. A SOCKET is the POSIX
// descriptor. The host keeps the set of descriptors it made, so that a stray handle never
// reaches a descriptor of SQLite or of the process's standard streams.
#include "hostinternal.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <iterator>
#include <set>

namespace {

// Windows address families; AF_INET6 differs from POSIX's.
constexpr int kWinUnspec = 0;
constexpr int kWinInet = 2;
constexpr int kWinInet6 = 23;

// ---- Start-up count and the sockets of the process -----------------------------------------

std::mutex g_mutex;
int g_startups = 0;
std::set<int> g_sockets;

void Fail(int code)
{
    SetLastError(DWORD(code));
}

// The descriptor of a socket the host made and that is still open, else -1 (WSAENOTSOCK).
int Descriptor(SOCKET s)
{
    UINT_PTR value = UINT_PTR(s);
    std::lock_guard<std::mutex> lock(g_mutex);
    if (value > UINT_PTR(INT_MAX) || !g_sockets.count(int(value))) {
        return -1;
    }
    return int(value);
}

bool Started()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_startups > 0;
}

// ---- Codes ------------------------------------------------------------------------------------

struct CodeRow
{
    int posix;
    int wsa;
};
constexpr CodeRow kErrnoCodes[] = {
    {EINTR, WSAEINTR},
    {EBADF, WSAENOTSOCK},
    {EACCES, WSAEACCES},
    {EPERM, WSAEACCES},
    {EFAULT, WSAEFAULT},
    {EINVAL, WSAEINVAL},
    {EMFILE, WSAEMFILE},
    {ENFILE, WSAEMFILE},
    {EWOULDBLOCK, WSAEWOULDBLOCK},
    {EINPROGRESS, WSAEWOULDBLOCK},
    {EALREADY, WSAEALREADY},
    {ENOTSOCK, WSAENOTSOCK},
    {EDESTADDRREQ, WSAEDESTADDRREQ},
    {EMSGSIZE, WSAEMSGSIZE},
    {EPROTOTYPE, WSAEPROTOTYPE},
    {ENOPROTOOPT, WSAENOPROTOOPT},
    {EPROTONOSUPPORT, WSAEPROTONOSUPPORT},
    {ESOCKTNOSUPPORT, WSAESOCKTNOSUPPORT},
    {EOPNOTSUPP, WSAEOPNOTSUPP},
    {EPFNOSUPPORT, WSAEPFNOSUPPORT},
    {EAFNOSUPPORT, WSAEAFNOSUPPORT},
    {EADDRINUSE, WSAEADDRINUSE},
    {EADDRNOTAVAIL, WSAEADDRNOTAVAIL},
    {ENETDOWN, WSAENETDOWN},
    {ENETUNREACH, WSAENETUNREACH},
    {ENETRESET, WSAENETRESET},
    {ECONNABORTED, WSAECONNABORTED},
    {ECONNRESET, WSAECONNRESET},
    {EPIPE, WSAECONNRESET}, // sending to a peer that has gone: Windows says reset
    {ENOBUFS, WSAENOBUFS},
    {ENOMEM, WSAENOBUFS},
    {EISCONN, WSAEISCONN},
    {ENOTCONN, WSAENOTCONN},
    {ESHUTDOWN, WSAESHUTDOWN},
    {ETIMEDOUT, WSAETIMEDOUT},
    {ECONNREFUSED, WSAECONNREFUSED},
    {EHOSTDOWN, WSAEHOSTDOWN},
    {EHOSTUNREACH, WSAEHOSTUNREACH},
};
constexpr CodeRow kResolverCodes[] = {
    {EAI_NONAME, WSAHOST_NOT_FOUND},     {EAI_AGAIN, WSATRY_AGAIN},
    {EAI_FAIL, WSANO_RECOVERY},          {EAI_NODATA, WSANO_DATA},
    {EAI_ADDRFAMILY, WSANO_DATA},        {EAI_FAMILY, WSAEAFNOSUPPORT},
    {EAI_SOCKTYPE, WSAESOCKTNOSUPPORT},  {EAI_SERVICE, WSATYPE_NOT_FOUND},
    {EAI_MEMORY, WSA_NOT_ENOUGH_MEMORY}, {EAI_BADFLAGS, WSAEINVAL},
};
// Windows AI_ flags (second) and their POSIX values.
constexpr CodeRow kAiFlags[] = {
    {AI_PASSIVE, 0x01}, {AI_CANONNAME, 0x02},    {AI_NUMERICHOST, 0x04}, {AI_NUMERICSERV, 0x08},
    {AI_ALL, 0x0100},   {AI_ADDRCONFIG, 0x0400}, {AI_V4MAPPED, 0x0800},
};
// Windows MSG_ flags of send and recv and their POSIX values.
constexpr CodeRow kMsgFlags[] = {{MSG_OOB, 0x1}, {MSG_PEEK, 0x2}, {MSG_WAITALL, 0x8}};

int Translate(const CodeRow* rows, size_t count, int code, int otherwise)
{
    for (size_t i = 0; i < count; ++i) {
        if (rows[i].posix == code) {
            return rows[i].wsa;
        }
    }
    return otherwise;
}

// Sets the last error from errno and returns SOCKET_ERROR.
int FailErrno()
{
    Fail(Translate(kErrnoCodes, std::size(kErrnoCodes), errno, WSASYSCALLFAILURE));
    return SOCKET_ERROR;
}

// The POSIX flags for Windows flags, or -1 when a bit is not known.
int PosixFlags(const CodeRow* rows, size_t count, int flags)
{
    int result = 0;
    for (size_t i = 0; i < count; ++i) {
        if (flags & rows[i].wsa) {
            result |= rows[i].posix;
            flags &= ~rows[i].wsa;
        }
    }
    return flags ? -1 : result;
}

// The POSIX family of a Windows one, or -1.
int PosixFamily(int family)
{
    switch (family) {
    case kWinUnspec:
        return AF_UNSPEC;
    case kWinInet:
        return AF_INET;
    case kWinInet6:
        return AF_INET6;
    default:
        return -1;
    }
}
size_t AddressSize(int posixFamily)
{
    return posixFamily == AF_INET6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
}

// Connects with the address of the POSIX family: the same bytes behind the family field.
int ConnectPosix(int fd, int family, const void* address, size_t length)
{
    sockaddr_storage storage{};
    std::memcpy(&storage, address, std::min(length, sizeof storage));
    storage.ss_family = sa_family_t(family);
    int rc = ::connect(fd, reinterpret_cast<const sockaddr*>(&storage), socklen_t(length));
    if (rc == 0 || errno != EINTR) {
        return rc;
    }
    // Interrupted, the connection goes on in the background: wait for its outcome.
    pollfd p{fd, POLLOUT, 0};
    while (::poll(&p, 1, -1) < 0) {
        if (errno != EINTR) {
            return -1;
        }
    }
    int error = 0;
    socklen_t size = sizeof error;
    if (::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &size) < 0) {
        return -1;
    }
    errno = error;
    return error ? -1 : 0;
}

// ---- Message table ----------------------------------------------------------------------------

struct MessageRow
{
    DWORD id;
    const char16_t* text;
};
constexpr MessageRow kMessages[] = {
    {0, u"The operation completed successfully."},
    {WSA_NOT_ENOUGH_MEMORY, u"Not enough memory resources are available to process this command."},
    {WSAEINTR, u"A blocking operation was interrupted by a call to WSACancelBlockingCall."},
    {WSAEBADF, u"The file handle supplied is not valid."},
    {WSAEACCES,
     u"An attempt was made to access a socket in a way forbidden by its access permissions."},
    {WSAEFAULT, u"The system detected an invalid pointer address in attempting to use a pointer "
                u"argument in a call."},
    {WSAEINVAL, u"An invalid argument was supplied."},
    {WSAEMFILE, u"Too many open sockets."},
    {WSAEWOULDBLOCK, u"A non-blocking socket operation could not be completed immediately."},
    {WSAEINPROGRESS, u"A blocking operation is currently executing."},
    {WSAEALREADY, u"An operation was attempted on a non-blocking socket that already had an "
                  u"operation in progress."},
    {WSAENOTSOCK, u"An operation was attempted on something that is not a socket."},
    {WSAEDESTADDRREQ, u"A required address was omitted from an operation on a socket."},
    {WSAEMSGSIZE, u"A message sent on a datagram socket was larger than the internal message "
                  u"buffer or some other network limit, or the buffer used to receive a datagram "
                  u"into was smaller than the datagram itself."},
    {WSAEPROTOTYPE,
     u"A protocol was specified in the socket function call that does not support the semantics "
     u"of the socket type requested."},
    {WSAENOPROTOOPT, u"An unknown, invalid, or unsupported option or level was specified in a "
                     u"getsockopt or setsockopt call."},
    {WSAEPROTONOSUPPORT, u"The requested protocol has not been configured into the system, or no "
                         u"implementation for it exists."},
    {WSAESOCKTNOSUPPORT,
     u"The support for the specified socket type does not exist in this address family."},
    {WSAEOPNOTSUPP, u"The attempted operation is not supported for the type of object referenced."},
    {WSAEPFNOSUPPORT,
     u"The protocol family has not been configured into the system or no implementation for it "
     u"exists."},
    {WSAEAFNOSUPPORT, u"An address incompatible with the requested protocol was used."},
    {WSAEADDRINUSE, u"Only one usage of each socket address (protocol/network address/port) is "
                    u"normally permitted."},
    {WSAEADDRNOTAVAIL, u"The requested address is not valid in its context."},
    {WSAENETDOWN, u"A socket operation encountered a dead network."},
    {WSAENETUNREACH, u"A socket operation was attempted to an unreachable network."},
    {WSAENETRESET, u"The connection has been broken due to keep-alive activity detecting a "
                   u"failure while the operation was in progress."},
    {WSAECONNABORTED, u"An established connection was aborted by the software in your host "
                      u"machine."},
    {WSAECONNRESET, u"An existing connection was forcibly closed by the remote host."},
    {WSAENOBUFS, u"An operation on a socket could not be performed because the system lacked "
                 u"sufficient buffer space or because a queue was full."},
    {WSAEISCONN, u"A connect request was made on an already connected socket."},
    {WSAENOTCONN,
     u"A request to send or receive data was disallowed because the socket is not connected and "
     u"(when sending on a datagram socket using a sendto call) no address was supplied."},
    {WSAESHUTDOWN,
     u"A request to send or receive data was disallowed because the socket had already been shut "
     u"down in that direction with a previous shutdown call."},
    {WSAETIMEDOUT,
     u"A connection attempt failed because the connected party did not properly respond after a "
     u"period of time, or established connection failed because connected host has failed to "
     u"respond."},
    {WSAECONNREFUSED,
     u"No connection could be made because the target machine actively refused it."},
    {WSAEHOSTDOWN, u"A socket operation failed because the destination host was down."},
    {WSAEHOSTUNREACH, u"A socket operation was attempted to an unreachable host."},
    {WSASYSNOTREADY, u"WSAStartup cannot function at this time because the underlying system it "
                     u"uses to provide network services is currently unavailable."},
    {WSAVERNOTSUPPORTED, u"The Windows Sockets version requested is not supported."},
    {WSANOTINITIALISED, u"Either the application has not called WSAStartup, or WSAStartup failed."},
    {WSASYSCALLFAILURE, u"A system call that should never fail has failed."},
    {WSATYPE_NOT_FOUND, u"The specified class was not found."},
    {WSAHOST_NOT_FOUND, u"No such host is known."},
    {WSATRY_AGAIN,
     u"This is usually a temporary error during hostname resolution and means that the local "
     u"server did not receive a response from an authoritative server."},
    {WSANO_RECOVERY, u"A non-recoverable error occurred during a database lookup."},
    {WSANO_DATA, u"The requested name is valid, but no data of the requested type was found."},
};

// One address list entry in one allocation: the entry, its address with the Windows family,
// its canonical name. Null for a family other than IPv4 and IPv6, or without memory.
ADDRINFOA* MakeEntry(const addrinfo* a)
{
    if (!a->ai_addr || (a->ai_family != AF_INET && a->ai_family != AF_INET6)) {
        return nullptr;
    }
    size_t addressSize = AddressSize(a->ai_family);
    if (a->ai_addrlen < addressSize) {
        return nullptr;
    }
    size_t nameSize = a->ai_canonname ? std::strlen(a->ai_canonname) + 1 : 0;
    auto* block = static_cast<uint8_t*>(std::calloc(1, sizeof(ADDRINFOA) + addressSize + nameSize));
    if (!block) {
        return nullptr;
    }
    auto* entry = reinterpret_cast<ADDRINFOA*>(block);
    entry->ai_family = a->ai_family == AF_INET6 ? kWinInet6 : kWinInet;
    entry->ai_socktype = a->ai_socktype;
    entry->ai_protocol = a->ai_protocol;
    entry->ai_addrlen = addressSize;
    uint8_t* address = block + sizeof(ADDRINFOA);
    std::memcpy(address, a->ai_addr, addressSize);
    USHORT family = USHORT(entry->ai_family);
    std::memcpy(address, &family, sizeof family);
    entry->ai_addr = reinterpret_cast<SOCKADDR*>(address);
    if (nameSize) {
        entry->ai_canonname = reinterpret_cast<char*>(address + addressSize);
        std::memcpy(entry->ai_canonname, a->ai_canonname, nameSize);
    }
    return entry;
}

} // namespace

extern "C" {

// 0 and the description of Windows Sockets 2.2 in *lpWSAData; every success counts and needs
// its WSACleanup. Version 1.0 and up is served at the version asked for (at most 2.2).
int WINAPI WSAStartup(WORD wVersionRequested, LPWSADATA lpWSAData)
{
    if (!lpWSAData) {
        return WSAEFAULT;
    }
    BYTE major = LOBYTE(wVersionRequested), minor = HIBYTE(wVersionRequested);
    std::memset(lpWSAData, 0, sizeof *lpWSAData);
    lpWSAData->wHighVersion = MAKEWORD(2, 2);
    lpWSAData->wVersion =
        (major > 2 || (major == 2 && minor > 2)) ? MAKEWORD(2, 2) : wVersionRequested;
    if (major == 0) {
        return WSAVERNOTSUPPORTED;
    }
    std::strcpy(lpWSAData->szDescription, "WinSock 2.0");
    std::strcpy(lpWSAData->szSystemStatus, "Running");
    std::lock_guard<std::mutex> lock(g_mutex);
    g_startups++;
    return 0;
}

int WINAPI WSACleanup(void)
{
    std::set<int> orphans;
    {
        std::lock_guard<std::mutex> lock(g_mutex);
        if (g_startups == 0) {
            Fail(WSANOTINITIALISED);
            return SOCKET_ERROR;
        }
        if (--g_startups == 0) {
            orphans.swap(g_sockets);
        }
    }
    for (int fd : orphans) {
        ::close(fd);
    }
    return 0;
}

int WINAPI WSAGetLastError(void)
{
    return int(GetLastError());
}

void WINAPI WSASetLastError(int iError)
{
    SetLastError(DWORD(iError));
}

// 0, or SOCKET_ERROR with WSAENOTSOCK for a handle the host did not make or has closed.
int WINAPI closesocket(SOCKET s)
{
    UINT_PTR value = UINT_PTR(s);
    bool known = false;
    {
        std::lock_guard<std::mutex> lock(g_mutex);
        known = value <= UINT_PTR(INT_MAX) && g_sockets.erase(int(value));
    }
    if (!known) {
        Fail(WSAENOTSOCK);
        return SOCKET_ERROR;
    }
    ::close(int(value));
    return 0;
}

// The length written without the terminator, or 0 with the reason as the last error.
DWORD WINAPI FormatMessageW(DWORD dwFlags, LPCVOID lpSource, DWORD dwMessageId, DWORD dwLanguageId,
                            LPWSTR lpBuffer, DWORD nSize, va_list* Arguments)
{
    DWORD known =
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
    if (!(dwFlags & FORMAT_MESSAGE_FROM_SYSTEM) || (dwFlags & ~known) || !lpBuffer) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    for (const MessageRow& row : kMessages) {
        if (row.id != dwMessageId) {
            continue;
        }
        std::u16string text = row.text;
        if (!(dwFlags & FORMAT_MESSAGE_MAX_WIDTH_MASK)) {
            text += u"\r\n";
        }
        if (nSize < text.size() + 1) {
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return 0;
        }
        host::detail::PutW(lpBuffer, text);
        return DWORD(text.size());
    }
    SetLastError(ERROR_MR_MID_NOT_FOUND);
    return 0;
}

} // extern "C"

namespace host::winsock {

// A blocking socket, or INVALID_SOCKET with WSANOTINITIALISED before WSAStartup,
// WSAEAFNOSUPPORT for a family other than AF_INET and AF_INET6, or the POSIX failure's code.
SOCKET WINAPI socket(int af, int type, int protocol)
{
    if (!Started()) {
        Fail(WSANOTINITIALISED);
        return INVALID_SOCKET;
    }
    int family = PosixFamily(af);
    if (family <= 0) {
        Fail(WSAEAFNOSUPPORT);
        return INVALID_SOCKET;
    }
    int fd = ::socket(family, type | SOCK_CLOEXEC, protocol);
    if (fd < 0) {
        FailErrno();
        return INVALID_SOCKET;
    }
    std::lock_guard<std::mutex> lock(g_mutex);
    g_sockets.insert(fd);
    return SOCKET(fd);
}

// 0 when connected, after the operating system's own connect wait. SOCKET_ERROR with
// WSAENOTSOCK for a handle the host did not make, WSAEFAULT for a null name or namelen shorter
// than the family's address, WSAEAFNOSUPPORT for another family, else the POSIX failure's code
// (WSAECONNREFUSED, WSAETIMEDOUT, WSAENETUNREACH, ...).
int WINAPI connect(SOCKET s, const struct sockaddr* name, int namelen)
{
    int fd = Descriptor(s);
    if (fd < 0) {
        Fail(WSAENOTSOCK);
        return SOCKET_ERROR;
    }
    USHORT windowsFamily = 0;
    if (!name || namelen < int(sizeof windowsFamily)) {
        Fail(WSAEFAULT);
        return SOCKET_ERROR;
    }
    std::memcpy(&windowsFamily, name, sizeof windowsFamily);
    int family = PosixFamily(windowsFamily);
    if (family <= 0) {
        Fail(WSAEAFNOSUPPORT);
        return SOCKET_ERROR;
    }
    size_t size = AddressSize(family);
    if (size_t(namelen) < size) {
        Fail(WSAEFAULT);
        return SOCKET_ERROR;
    }
    return ConnectPosix(fd, family, name, size) < 0 ? FailErrno() : 0;
}

// The checks send and recv share: a socket made here, a buffer for a non-negative length,
// known flags. False after setting the code.
bool TransferArguments(SOCKET s, const char* buf, int len, int flags, int* pFd, int* pPosixFlags)
{
    *pFd = Descriptor(s);
    if (*pFd < 0) {
        Fail(WSAENOTSOCK);
        return false;
    }
    if (len < 0 || (!buf && len > 0)) {
        Fail(WSAEFAULT);
        return false;
    }
    *pPosixFlags = PosixFlags(kMsgFlags, std::size(kMsgFlags), flags);
    if (*pPosixFlags < 0) {
        Fail(WSAEOPNOTSUPP);
        return false;
    }
    return true;
}

// The number of bytes sent, or SOCKET_ERROR: WSAENOTSOCK, WSAEFAULT for a negative length or a
// null buffer with a length, WSAEOPNOTSUPP for unknown flags, WSAECONNRESET when the peer has
// gone. Never raises SIGPIPE.
int WINAPI send(SOCKET s, const char* buf, int len, int flags)
{
    int fd, posixFlags;
    if (!TransferArguments(s, buf, len, flags, &fd, &posixFlags))
        return SOCKET_ERROR;
    ssize_t sent;
    do {
        sent = ::send(fd, buf, size_t(len), posixFlags | MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent < 0 ? FailErrno() : int(sent);
}

int WINAPI setsockopt(SOCKET s, int level, int optname, const char* optval, int optlen)
{
    int fd = Descriptor(s);
    if (fd < 0) {
        Fail(WSAENOTSOCK);
        return SOCKET_ERROR;
    }
    // IPPROTO_TCP and TCP_NODELAY have the same numbers on both systems.
    if (level != 6 || optname != 1) {
        Fail(WSAENOPROTOOPT);
        return SOCKET_ERROR;
    }
    if (!optval || optlen < int(sizeof(char))) {
        Fail(WSAEFAULT);
        return SOCKET_ERROR;
    }
    // Windows takes any non-zero first byte (or BOOL) as on.
    int on = 0;
    for (int i = 0; i < optlen && i < int(sizeof(int)); i++)
        on |= optval[i];
    on = on != 0;
    if (::setsockopt(fd, ::IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on)) < 0)
        return FailErrno();
    return 0;
}

// The number of bytes received, 0 when the peer has closed its side, or SOCKET_ERROR:
// WSAENOTSOCK, WSAEFAULT for a negative length or a null buffer with a length, WSAEOPNOTSUPP
// for unknown flags, WSAECONNRESET after a reset by the peer.
int WINAPI recv(SOCKET s, char* buf, int len, int flags)
{
    int fd, posixFlags;
    if (!TransferArguments(s, buf, len, flags, &fd, &posixFlags))
        return SOCKET_ERROR;
    ssize_t got;
    do {
        got = ::recv(fd, buf, size_t(len), posixFlags);
    } while (got < 0 && errno == EINTR);
    return got < 0 ? FailErrno() : int(got);
}

// Waits with poll, so that descriptors above the C library's FD_SETSIZE work too. A closed or
// reset connection counts as readable, as on Windows: the recv that follows tells which.
// A set with more than FD_SETSIZE sockets is WSAEINVAL; a handle not made here WSAENOTSOCK.
int WINAPI select(int nfds, QLMHostFdSet* readfds, QLMHostFdSet* writefds, QLMHostFdSet* exceptfds,
                  const TIMEVAL* timeout)
{
    QLMHostFdSet* sets[3] = {readfds, writefds, exceptfds};
    constexpr short kEvents[3] = {POLLIN, POLLOUT, POLLPRI};
    constexpr short kReady[3] = {POLLIN | POLLHUP | POLLERR, POLLOUT | POLLHUP | POLLERR, POLLPRI};
    pollfd fds[3 * FD_SETSIZE];
    nfds_t count = 0;
    for (int k = 0; k < 3; ++k) {
        if (!sets[k]) {
            continue;
        }
        if (sets[k]->fd_count > FD_SETSIZE) {
            Fail(WSAEINVAL);
            return SOCKET_ERROR;
        }
        for (UINT i = 0; i < sets[k]->fd_count; ++i) {
            int fd = Descriptor(sets[k]->fd_array[i]);
            if (fd < 0) {
                Fail(WSAENOTSOCK);
                return SOCKET_ERROR;
            }
            fds[count++] = {fd, kEvents[k], 0};
        }
    }
    if (count == 0) {
        Fail(WSAEINVAL);
        return SOCKET_ERROR;
    }
    // Milliseconds, a part of one rounded up; negative fields count as 0. Null waits for ever.
    long long ms = -1;
    if (timeout) {
        long long sec = std::max<long long>(timeout->tv_sec, 0);
        long long usec = std::max<long long>(timeout->tv_usec, 0);
        ms = std::min<long long>(sec * 1000 + (usec + 999) / 1000, INT_MAX);
    }
    DWORD start = GetTickCount();
    int rc;
    for (;;) {
        long long wait = ms;
        if (ms > 0) {
            wait = std::max<long long>(ms - (long long)(GetTickCount() - start), 0);
        }
        rc = ::poll(fds, count, int(wait));
        if (rc >= 0 || errno != EINTR) {
            break;
        }
    }
    if (rc < 0) {
        return FailErrno();
    }
    int ready = 0;
    nfds_t at = 0;
    for (int k = 0; k < 3; ++k) {
        if (!sets[k]) {
            continue;
        }
        UINT kept = 0;
        for (UINT i = 0; i < sets[k]->fd_count; ++i, ++at) {
            if (fds[at].revents & kReady[k]) {
                sets[k]->fd_array[kept++] = sets[k]->fd_array[i];
            }
        }
        sets[k]->fd_count = kept;
        ready += int(kept);
    }
    return ready;
}

// 0 and a list to be released with freeaddrinfo, or the code, also set as the last error:
// WSANOTINITIALISED, WSAHOST_NOT_FOUND for an unknown name or neither name nor service,
// WSATRY_AGAIN when the resolver did not answer, WSATYPE_NOT_FOUND for an unknown service,
// WSAEINVAL for unknown flags, WSAEAFNOSUPPORT for an unknown family, WSANO_RECOVERY for hints
// with an address, a name or a next entry.
int WINAPI getaddrinfo(const char* pNodeName, const char* pServiceName, const ADDRINFOA* pHints,
                       PADDRINFOA* ppResult)
{
    auto fail = [](int code) {
        Fail(code);
        return code;
    };
    if (!ppResult) {
        return fail(WSAEINVAL);
    }
    *ppResult = nullptr;
    if (!Started()) {
        return fail(WSANOTINITIALISED);
    }
    if (!pNodeName && !pServiceName) {
        return fail(WSAHOST_NOT_FOUND);
    }
    addrinfo hints{};
    if (pHints) {
        if (pHints->ai_addrlen || pHints->ai_canonname || pHints->ai_addr || pHints->ai_next) {
            return fail(WSANO_RECOVERY);
        }
        hints.ai_flags = PosixFlags(kAiFlags, std::size(kAiFlags), pHints->ai_flags);
        hints.ai_family = PosixFamily(pHints->ai_family);
        if (hints.ai_flags < 0) {
            return fail(WSAEINVAL);
        }
        if (hints.ai_family < 0) {
            return fail(WSAEAFNOSUPPORT);
        }
        hints.ai_socktype = pHints->ai_socktype;
        hints.ai_protocol = pHints->ai_protocol;
    }
    addrinfo* list = nullptr;
    int rc = ::getaddrinfo(pNodeName, pServiceName, &hints, &list);
    if (rc != 0) {
        return fail(rc == EAI_SYSTEM
                        ? Translate(kErrnoCodes, std::size(kErrnoCodes), errno, WSANO_RECOVERY)
                        : Translate(kResolverCodes, std::size(kResolverCodes), rc, WSANO_RECOVERY));
    }
    ADDRINFOA* head = nullptr;
    ADDRINFOA** tail = &head;
    for (const addrinfo* a = list; a; a = a->ai_next) {
        if (ADDRINFOA* entry = MakeEntry(a)) {
            *tail = entry;
            tail = &entry->ai_next;
        }
    }
    ::freeaddrinfo(list);
    if (!head) {
        return fail(WSANO_DATA);
    }
    *ppResult = head;
    return 0;
}

// Releases a list of getaddrinfo; null is nothing.
void WINAPI freeaddrinfo(PADDRINFOA pAddrInfo)
{
    while (pAddrInfo) {
        ADDRINFOA* next = pAddrInfo->ai_next;
        std::free(pAddrInfo);
        pAddrInfo = next;
    }
}

} // namespace host::winsock
