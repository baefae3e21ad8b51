// Windows Sockets (winsock2.h, ws2tcpip.h) for the Linux host: the names the driver uses, with
// the values and x64 layouts of Windows, implemented in platform/host/sockets.cpp over POSIX.
//
// socket, connect, send, recv, select, getaddrinfo and freeaddrinfo are also C library names,
// with other types, and the C library belongs to SQLite, the tools and the tests as well. So:
// - the host's versions live in namespace host::winsock, made visible by a using-directive.
//   Their symbols are C++ names and never stand in for the C library's;
// - SOCKET is a distinct type of the Windows size. A call with a SOCKET resolves to the host's
//   function, a call with a POSIX descriptor to the C library's, also in a unit that sees both
//   (a test's loopback server). socket() alone has the same parameters in both: in such a unit
//   it is called qualified, ::socket or host::winsock::socket;
// - fd_set is a macro for the host's set, and FD_SET and friends are redefined with the Windows
//   meaning. <sys/select.h> is included first for that: the C library's <stdlib.h> pulls it into
//   almost every unit, and included after the macro its fd_set would clash with the host's.
// The address family and socket type macros are left to POSIX: the driver passes numbers.
#pragma once

#include "types.h"

#include <sys/select.h>

enum class SOCKET : UINT_PTR
{
};
#define INVALID_SOCKET ((SOCKET)(~0))
#define SOCKET_ERROR   (-1)

// ---- Start-up ---------------------------------------------------------------------------------
#define WSADESCRIPTION_LEN 256
#define WSASYS_STATUS_LEN  128
typedef struct WSAData
{
    WORD wVersion;
    WORD wHighVersion;
    USHORT iMaxSockets;
    USHORT iMaxUdpDg;
    char* lpVendorInfo;
    char szDescription[WSADESCRIPTION_LEN + 1];
    char szSystemStatus[WSASYS_STATUS_LEN + 1];
} WSADATA, *LPWSADATA;

// ---- Addresses --------------------------------------------------------------------------------
// The same 16 bytes as POSIX's: family, then data. The family has the Windows value
// (AF_INET 2, AF_INET6 23); the driver passes addresses on without looking into them.
struct sockaddr;
typedef struct sockaddr SOCKADDR, *PSOCKADDR, *LPSOCKADDR;

typedef struct ADDRINFOA
{
    int ai_flags;
    int ai_family;
    int ai_socktype;
    int ai_protocol;
    size_t ai_addrlen;
    char* ai_canonname;
    struct sockaddr* ai_addr;
    struct ADDRINFOA* ai_next;
} ADDRINFOA, *PADDRINFOA;

// ---- select: a set is a count and an array of sockets, not a bit mask --------------------------
#undef FD_SETSIZE
#undef FD_SET
#undef FD_CLR
#undef FD_ZERO
#undef FD_ISSET
#define FD_SETSIZE 64
struct QLMHostFdSet
{
    UINT fd_count;
    SOCKET fd_array[FD_SETSIZE];
};
#define fd_set QLMHostFdSet
// The C library's timeval: the same two fields, seconds and microseconds, only wider.
typedef struct timeval TIMEVAL, *PTIMEVAL;

inline void QLMHostFdAdd(SOCKET s, QLMHostFdSet* set)
{
    UINT i = 0;
    while (i < set->fd_count && set->fd_array[i] != s) {
        ++i;
    }
    if (i == set->fd_count && set->fd_count < FD_SETSIZE) {
        set->fd_array[set->fd_count++] = s;
    }
}
inline void QLMHostFdRemove(SOCKET s, QLMHostFdSet* set)
{
    for (UINT i = 0; i < set->fd_count && i < FD_SETSIZE; ++i) {
        if (set->fd_array[i] == s) {
            for (; i + 1 < set->fd_count; ++i) {
                set->fd_array[i] = set->fd_array[i + 1];
            }
            set->fd_count--;
            return;
        }
    }
}
inline int QLMHostFdIsSet(SOCKET s, const QLMHostFdSet* set)
{
    for (UINT i = 0; i < set->fd_count && i < FD_SETSIZE; ++i) {
        if (set->fd_array[i] == s) {
            return 1;
        }
    }
    return 0;
}
#define FD_SET(fd, set)   QLMHostFdAdd((SOCKET)(fd), (set))
#define FD_CLR(fd, set)   QLMHostFdRemove((SOCKET)(fd), (set))
#define FD_ZERO(set)      ((set)->fd_count = 0)
#define FD_ISSET(fd, set) QLMHostFdIsSet((SOCKET)(fd), (set))

// ---- Functions ------------------------------------------------------------------------------
extern "C" {
// 0, or the code (not set as the last error): WSAEFAULT, WSAVERNOTSUPPORTED for major 0.
int WINAPI WSAStartup(WORD wVersionRequested, LPWSADATA lpWSAData);
// 0, or SOCKET_ERROR with WSANOTINITIALISED. The last one closes the sockets left open.
int WINAPI WSACleanup(void);
// The calling thread's last error: the same word as GetLastError, as on Windows.
int WINAPI WSAGetLastError(void);
void WINAPI WSASetLastError(int iError);
int WINAPI closesocket(SOCKET s);
}

namespace host::winsock {
SOCKET WINAPI socket(int af, int type, int protocol);
int WINAPI connect(SOCKET s, const struct sockaddr* name, int namelen);
int WINAPI send(SOCKET s, const char* buf, int len, int flags);
int WINAPI recv(SOCKET s, char* buf, int len, int flags);
// 0, or SOCKET_ERROR: WSAENOTSOCK, WSAEFAULT for a null or short value, WSAENOPROTOOPT for an
// option the host does not carry (it carries TCP_NODELAY at IPPROTO_TCP).
int WINAPI setsockopt(SOCKET s, int level, int optname, const char* optval, int optlen);
// nfds is ignored. The number of ready sockets, 0 on time-out, SOCKET_ERROR on error; each set
// keeps only its ready sockets. All sets empty or absent is WSAEINVAL, as on Windows.
int WINAPI select(int nfds, QLMHostFdSet* readfds, QLMHostFdSet* writefds, QLMHostFdSet* exceptfds,
                  const TIMEVAL* timeout);
// 0, or a WSA code (also the last error): WSAHOST_NOT_FOUND for an unknown name.
int WINAPI getaddrinfo(const char* pNodeName, const char* pServiceName, const ADDRINFOA* pHints,
                       PADDRINFOA* ppResult);
void WINAPI freeaddrinfo(PADDRINFOA pAddrInfo);
} // namespace host::winsock
using namespace host::winsock;

// The option the driver sets. The C library's own names (an enumerator and macros) win where a
// file sees both; the values are the same.
namespace host::winsock {
#ifndef IPPROTO_TCP
constexpr int IPPROTO_TCP = 6;
#endif
#ifndef TCP_NODELAY
constexpr int TCP_NODELAY = 0x0001;
#endif
} // namespace host::winsock

// ---- Error codes (winerror.h) -----------------------------------------------------------------
#define WSA_NOT_ENOUGH_MEMORY 8L
#define WSAEINTR              10004L
#define WSAEBADF              10009L
#define WSAEACCES             10013L
#define WSAEFAULT             10014L
#define WSAEINVAL             10022L
#define WSAEMFILE             10024L
#define WSAEWOULDBLOCK        10035L
#define WSAEINPROGRESS        10036L
#define WSAEALREADY           10037L
#define WSAENOTSOCK           10038L
#define WSAEDESTADDRREQ       10039L
#define WSAEMSGSIZE           10040L
#define WSAEPROTOTYPE         10041L
#define WSAENOPROTOOPT        10042L
#define WSAEPROTONOSUPPORT    10043L
#define WSAESOCKTNOSUPPORT    10044L
#define WSAEOPNOTSUPP         10045L
#define WSAEPFNOSUPPORT       10046L
#define WSAEAFNOSUPPORT       10047L
#define WSAEADDRINUSE         10048L
#define WSAEADDRNOTAVAIL      10049L
#define WSAENETDOWN           10050L
#define WSAENETUNREACH        10051L
#define WSAENETRESET          10052L
#define WSAECONNABORTED       10053L
#define WSAECONNRESET         10054L
#define WSAENOBUFS            10055L
#define WSAEISCONN            10056L
#define WSAENOTCONN           10057L
#define WSAESHUTDOWN          10058L
#define WSAETIMEDOUT          10060L
#define WSAECONNREFUSED       10061L
#define WSAEHOSTDOWN          10064L
#define WSAEHOSTUNREACH       10065L
#define WSASYSNOTREADY        10091L
#define WSAVERNOTSUPPORTED    10092L
#define WSANOTINITIALISED     10093L
#define WSASYSCALLFAILURE     10107L
#define WSATYPE_NOT_FOUND     10109L
#define WSAHOST_NOT_FOUND     11001L
#define WSATRY_AGAIN          11002L
#define WSANO_RECOVERY        11003L
#define WSANO_DATA            11004L

// ---- Message texts --------------------------------------------------------------------------
// The system's message table. On the host it holds the texts of success and of the socket
// errors above: the only codes whose text the driver asks for.
#define FORMAT_MESSAGE_IGNORE_INSERTS 0x00000200
#define FORMAT_MESSAGE_FROM_SYSTEM    0x00001000
#define FORMAT_MESSAGE_MAX_WIDTH_MASK 0x000000FF
#define ERROR_MR_MID_NOT_FOUND        317L
extern "C" {
// The length written without the terminator, or 0: ERROR_MR_MID_NOT_FOUND for a code not in
// the table, ERROR_INSUFFICIENT_BUFFER when nSize is too small, ERROR_INVALID_PARAMETER for
// another source than the system. Texts end in CR LF, as the system's do, unless a line width
// is given.
DWORD WINAPI FormatMessageW(DWORD dwFlags, LPCVOID lpSource, DWORD dwMessageId, DWORD dwLanguageId,
                            LPWSTR lpBuffer, DWORD nSize, va_list* Arguments);
}

static_assert(sizeof(SOCKET) == 8, "SOCKET");
static_assert(sizeof(WSADATA) == 408, "WSADATA");
static_assert(sizeof(ADDRINFOA) == 48, "ADDRINFOA");
static_assert(offsetof(ADDRINFOA, ai_canonname) == 24, "ADDRINFOA.ai_canonname");
static_assert(offsetof(ADDRINFOA, ai_addr) == 32, "ADDRINFOA.ai_addr");
