// QLMSocket: the small blocking TCP client through which the driver talks to the printer. One
// connection carries one short conversation: a line goes out, bytes come back until a formfeed.
//
// Order of calls: construct, Connect, any number of SocketSend and SocketRecv, Close,
// SocketCleanup, destruct. A failed Connect leaves the object unconnected, and Connect may be
// tried again on it (each try starts Windows Sockets again). Failures are traced, never shown.
#pragma once

#include "../../platform/win32.h"

class QLMSocket
{
public:
    QLMSocket();
    // Asserts that Close ran: the destructor does not close the connection.
    ~QLMSocket();
    QLMSocket(const QLMSocket&) = delete;
    QLMSocket& operator=(const QLMSocket&) = delete;

    // 1 when connected to the first address of host that accepts, else 0. host is a dotted
    // address or a name; family and socktype are the platform's numbers (callers pass 0 and 1);
    // service is the port ("2000"). connect itself has no time-out of its own: a host that is
    // switched off costs the system's connect wait.
    BOOL Connect(const char* host, int family, int socktype, const char* service);
    // Sends text and a line feed; an empty text sends the line feed alone. 1, or 0 when the
    // socket stays unwritable for 5 seconds or send fails.
    BOOL SocketSend(const char* text);
    // Reads into buffer until a formfeed, searched from the buffer's start up to its first zero
    // byte (so the buffer must be zeroed, and a later reply given a position behind the earlier
    // one). Stops, in this order of test, at 5 seconds without data (result 0), a receive error
    // (0, but 1 for WSAEFAULT), a formfeed (1), a full buffer (1). A size below 1 reads nothing.
    // *pBytes gets the count read in every case. A peer that closes without a formfeed sends
    // no more data: that read ends as a time-out 5 seconds after its last byte.
    BOOL SocketRecv(char* buffer, int size, int* pBytes);
    // closesocket's result, or 0 when there was nothing to close.
    int Close();
    // WSACleanup's result. Pairs with Connect's start-up; not part of Close.
    int SocketCleanup();

private:
    SOCKET m_s;
};

// Names of socket types and address families for traces, in a buffer of each function that
// the next call overwrites; "???" for a number without a name.
const WCHAR* QLMGetSocketTypeName(int type);
const WCHAR* QLMGetAddressFamilyName(int family);
