// The socket transport to the printer: connect, send a line, read a reply up to its formfeed.
#include "qlmsocket.h"

#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"

#include <climits>
#include <cstring>

namespace {

constexpr LONG kTIMEOUT_SECONDS = 5;
constexpr DWORD kCLOSED_PEER_PAUSE_MS = 10;
constexpr char kFORMFEED = 12;
constexpr DWORD kERROR_TEXT_CCH = 1024;
constexpr size_t kNAME_CCH = 32;

// The text results, one set per thread, as refreshes may run on several threads at once.
thread_local WCHAR s_szErrorText[kERROR_TEXT_CCH];
thread_local WCHAR s_szSocketTypeName[kNAME_CCH];
thread_local WCHAR s_szAddressFamilyName[kNAME_CCH];

struct NameRow
{
    int number;
    const WCHAR* name;
};

constexpr NameRow kSocketTypes[] = {
    {1, TEXT("SOCK_STREAM")}, {2, TEXT("SOCK_DGRAM")},     {3, TEXT("SOCK_RAW")},
    {4, TEXT("SOCK_RDM")},    {5, TEXT("SOCK_SEQPACKET")},
};

// Windows' numbering; 17 has no name.
constexpr NameRow kAddressFamilies[] = {
    {0, TEXT("AF_UNSPEC")},    {1, TEXT("AF_UNIX")},       {2, TEXT("AF_INET")},
    {3, TEXT("AF_IMPLINK")},   {4, TEXT("AF_PUP")},        {5, TEXT("AF_CHAOS")},
    {6, TEXT("AF_NS/AF_IPX")}, {7, TEXT("AF_ISO/AF_OSI")}, {8, TEXT("AF_ECMA")},
    {9, TEXT("AF_DATAKIT")},   {10, TEXT("AF_CCITT")},     {11, TEXT("AF_SNA")},
    {12, TEXT("AF_DECnet")},   {13, TEXT("AF_DLI")},       {14, TEXT("AF_LAT")},
    {15, TEXT("AF_HYLINK")},   {16, TEXT("AF_APPLETALK")}, {18, TEXT("AF_VOICEVIEW")},
    {19, TEXT("AF_FIREFOX")},  {20, TEXT("AF_UNKNOWN1")},  {21, TEXT("AF_BAN")},
    {22, TEXT("AF_ATM")},      {23, TEXT("AF_INET6")},
};

template <size_t N> const WCHAR* LookUpName(const NameRow (&rows)[N], int number, WCHAR* buffer)
{
    const WCHAR* name = TEXT("???");
    for (const NameRow& row : rows) {
        if (row.number == number) {
            name = row.name;
            break;
        }
    }
    WstrCopy(buffer, kNAME_CCH, name);
    return buffer;
}

BOOL TraceSocket()
{
    return g_bTraceQLMSocket | g_bTraceTVOSocket;
}

// The system's text of an error code, or an empty text when it has none.
const WCHAR* ErrorText(int code)
{
    s_szErrorText[0] = 0;
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, DWORD(code),
                   MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), s_szErrorText, kERROR_TEXT_CCH,
                   nullptr);
    return s_szErrorText;
}

// Waits up to ms milliseconds for the socket to become readable or writable: select's result.
int WaitFor(SOCKET s, bool bWrite, DWORD ms)
{
    fd_set set;
    FD_ZERO(&set);
    FD_SET(s, &set);
    timeval tv;
    tv.tv_sec = LONG(ms / 1000);
    tv.tv_usec = LONG(ms % 1000) * 1000;
    return select(0, bWrite ? nullptr : &set, bWrite ? &set : nullptr, nullptr, &tv);
}

// The offset of the first formfeed in the zero-terminated text of buffer, or -1. The search
// goes no further than the buffer, terminated or not.
int FindFormfeed(const char* buffer, int size)
{
    for (int i = 0; i < size && buffer[i]; i++) {
        if (buffer[i] == kFORMFEED)
            return i;
    }
    return -1;
}

} // namespace

const WCHAR* QLMGetSocketTypeName(int type)
{
    return LookUpName(kSocketTypes, type, s_szSocketTypeName);
}

const WCHAR* QLMGetAddressFamilyName(int family)
{
    return LookUpName(kAddressFamilies, family, s_szAddressFamilyName);
}

QLMSocket::QLMSocket() : m_s(INVALID_SOCKET) {}

QLMSocket::~QLMSocket()
{
    ASSERT(m_s == (SOCKET)(~0));
}

BOOL QLMSocket::Connect(const char* host, int family, int socktype, const char* service)
{
    QLM_TRACE_SCOPE(TEXT("QLMSocket::Connect"), TraceSocket());
    if (m_s != INVALID_SOCKET) {
        ASSERT(m_s == INVALID_SOCKET);
        Trace(TEXT("socket is NOT invalid in Connect, calling multiple times?"));
        return 0;
    }

    WSADATA wsaData;
    int error = WSAStartup(MAKEWORD(1, 0), &wsaData);
    if (error != 0) {
        Trace(TEXT("WSAStartup failed with error %d: %s"), error, ErrorText(error));
        WSACleanup();
        return 0;
    }

    ADDRINFOA hints;
    std::memset(&hints, 0, sizeof hints);
    hints.ai_family = family;
    hints.ai_socktype = socktype;
    PADDRINFOA pList = nullptr;
    error = getaddrinfo(host, service, &hints, &pList);
    if (error != 0) {
        Trace(TEXT("Cannot resolve address [%S] and port [%S], error %d: %s"), host ? host : "",
              service ? service : "", error, ErrorText(error));
        WSACleanup();
        return 0;
    }
    if (!pList)
        return 0;

    BOOL bConnected = 0;
    for (PADDRINFOA p = pList; p && !bConnected; p = p->ai_next) {
        SOCKET s = socket(p->ai_family, p->ai_socktype, p->ai_protocol);
        if (s == INVALID_SOCKET) {
            int le = WSAGetLastError();
            Trace(TEXT("Error Opening socket, error %d: %s"), le, ErrorText(le));
            continue;
        }
        int cbAddress = p->ai_addrlen > size_t(INT_MAX) ? INT_MAX : int(p->ai_addrlen);
        if (connect(s, p->ai_addr, cbAddress) == SOCKET_ERROR) {
            closesocket(s);
            continue;
        }
        // The line and its line feed go out in two sends: without this, Nagle's algorithm holds
        // the line feed until the printer's delayed acknowledgement, some 40 ms per query.
        BOOL bNoDelay = TRUE;
        setsockopt(s, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&bNoDelay),
                   sizeof(bNoDelay));
        m_s = s;
        bConnected = 1;
        Trace(TEXT("socket created & connected on family: %s"),
              QLMGetAddressFamilyName(p->ai_family));
    }
    freeaddrinfo(pList);
    return bConnected;
}

BOOL QLMSocket::SocketSend(const char* text)
{
    QLM_TRACE_SCOPE(TEXT("QLMSocket::SocketSend (PJL)"), TraceSocket());
    size_t n = text ? std::strlen(text) : 0;
    size_t sent = 0;
    int calls = 0;
    while (sent < n) {
        if (WaitFor(m_s, true, kTIMEOUT_SECONDS * 1000) == 0) {
            int le = WSAGetLastError();
            Trace(TEXT("***timeout, send error, le=%d (0x%X)"), le, le);
            return 0;
        }
        size_t left = n - sent;
        int count = send(m_s, text + sent, left > size_t(INT_MAX) ? INT_MAX : int(left), 0);
        calls++;
        if (count == SOCKET_ERROR) {
            int le = WSAGetLastError();
            Trace(TEXT("send error, le=%d (0x%X)"), le, le);
            return 0;
        }
        sent += size_t(count);
    }
    // The line end goes in a call of its own; a failure shows in the reply that does not come.
    send(m_s, "\n", 1, 0);
    Trace(TEXT("SocketSend complete in %d call%s"), calls, calls == 1 ? TEXT("") : TEXT("s"));
    return 1;
}

BOOL QLMSocket::SocketRecv(char* buffer, int size, int* pBytes)
{
    QLM_TRACE_SCOPE(TEXT("QLMSocket::SocketRecv"), TraceSocket());
    DWORD dwStart = GetTickCount();
    BOOL result = 1;
    int total = 0;
    int calls = 0;
    int remainingbytes = size;

    if (remainingbytes >= 1) {
        char* pWrite = buffer;
        int count = 0;
        // The time-out counts from the last byte that came: a pause between pieces restarts
        // it, and a peer that has closed (each read then gives nothing) ends as one.
        DWORD dwLastData = GetTickCount();
        for (;;) {
            pWrite += count;
            DWORD dwSilent = GetTickCount() - dwLastData;
            DWORD dwWait = kTIMEOUT_SECONDS * 1000;
            dwWait = dwSilent < dwWait ? dwWait - dwSilent : 0;
            if (dwWait == 0 || WaitFor(m_s, false, dwWait) == 0) {
                result = 0;
                Trace(TEXT("exitting loop because: timeout"));
                break;
            }
            count = recv(m_s, pWrite, remainingbytes, 0);
            if (count == SOCKET_ERROR) {
                int le = WSAGetLastError();
                if (le == WSAEFAULT) {
                    Trace(TEXT("exitting loop because: wsaefault"));
                } else {
                    result = 0;
                    Trace(TEXT("exitting loop because: recv error, le=%d (0x%X)"), le, le);
                }
                break;
            }
            total += count;
            remainingbytes -= count;
            calls++;
            if (count > 0)
                dwLastData = GetTickCount();
            else
                // A peer that has closed reads as ready at once and gives nothing: a short
                // pause keeps the wait for the time-out from spinning.
                Sleep(kCLOSED_PEER_PAUSE_MS);
            int formfeed = FindFormfeed(buffer, size);
            if (formfeed >= 0) {
                Trace(TEXT("exitting loop because: found a formfeed at 0x%X"), formfeed);
                break;
            }
            if (remainingbytes < 1) {
                ASSERT(remainingbytes > 0);
                Trace(TEXT("exitting loop because: buffer full"));
                break;
            }
        }
    }

    DWORD dwEnd = GetTickCount();
    if (g_bTrace && buffer)
        TraceMemory(buffer, DWORD(total), TEXT("rcv buffer in socket::recv"));
    Trace(TEXT("SocketRecv, result=%s, %d bytes complete in %d calls, %d milliseconds\n"),
          TraceBOOL(result), total, calls, int(dwEnd - dwStart));
    if (pBytes)
        *pBytes = total;
    return result;
}

int QLMSocket::Close()
{
    QLM_TRACE_SCOPE(TEXT("QLMSocket::Close"), TraceSocket());
    ASSERT(m_s != (SOCKET)(~0));
    if (m_s == INVALID_SOCKET)
        return 0;
    int result = closesocket(m_s);
    m_s = INVALID_SOCKET;
    return result;
}

int QLMSocket::SocketCleanup()
{
    QLM_TRACE_SCOPE(TEXT("QLMSocket::SocketCleanup"), TraceSocket());
    return WSACleanup();
}
