// The conversation half of a refresh: address, six queries, one buffer, then the decoding.
#include "qlmrefresh.h"

#include "../config/tvoconfg.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/qlmswitches.h"
#include "../foundation/qlmutils.h"
#include "pjlgrammar.h"
#include "qlmport.h"
#include "qlmrefresh_decode.h"
#include "qlmsocket.h"
#include "tvoparsepjl.h"

#include <cstring>
#include <new>

namespace {

// The address dialog is not part of the driver yet: without it the user can only cancel.
BOOL AskAddressCancel(LPCWSTR, TVOPrinterConfiguration*, DEVMODEEX*, HWND, char*, size_t)
{
    Trace(TEXT("no printer address dialog: treated as Cancel"));
    return FALSE;
}

BOOL AskFileDefault(HWND hwnd, WCHAR* path, DWORD cchPath)
{
    path[0] = 0;
    OPENFILENAMEW ofn = {};
    ofn.lStructSize = sizeof(ofn);
    ofn.hwndOwner = hwnd;
    ofn.lpstrFilter = TEXT("Text files\0*.TXT\0All files\0*.*\0");
    ofn.nFilterIndex = 1;
    ofn.lpstrFile = path;
    ofn.nMaxFile = cchPath;
    ofn.lpstrTitle = TEXT("pick a pjl file");
    ofn.Flags = OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST;
    return GetOpenFileNameW(&ofn);
}

// Installed at load (the address dialog) or by a host before its calls, and only read by the
// refreshes: one for the process.
QLMRefreshQuestions g_questions = {AskAddressCancel, AskFileDefault};

template <typename C> void CopyCut(C* out, const C* in, size_t cchOut)
{
    size_t i = 0;
    for (; i + 1 < cchOut && in[i]; ++i)
        out[i] = in[i];
    out[i] = 0;
}

// One capture of the six replies, at most cbBuffer bytes of it; the read is not checked.
void ReadReplyFile(const WCHAR* path, char* buffer, DWORD cbBuffer)
{
    HANDLE hFile = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                               FILE_ATTRIBUTE_NORMAL, nullptr);
    if (hFile == INVALID_HANDLE_VALUE) {
        Trace(TEXT("Can't open the pjl file, GetLastError is %d"), GetLastError());
        return;
    }
    DWORD cbRead = 0;
    ReadFile(hFile, buffer, cbBuffer, &cbRead, nullptr);
    CloseHandle(hFile);
    Trace(TEXT("read %u bytes from the pjl file"), cbRead);
}

// The socket's connection on the port's own addresses: the name as it stands, then the
// address derived from it.
BOOL ConnectByPort(QLMSocket& socket, HANDLE hPrinter, LPCWSTR pPortName)
{
    const char* name = QLMGetPortName(hPrinter);
    if (name) {
        char copy[kQLM_PORT_CB];
        CopyCut(copy, name, sizeof(copy));
        if (socket.Connect(copy, 0, 1, kPJLService))
            return 1;
    }
    const char* address = QLMGetIPAddressFromPort(hPrinter, pPortName);
    if (address) {
        char copy[kQLM_ADDRESS_CB];
        CopyCut(copy, address, sizeof(copy));
        if (socket.Connect(copy, 0, 1, kPJLService))
            return 1;
    }
    return 0;
}

void Converse(QLMSocket& socket, char* buffer)
{
    // The last byte stays as it was: the text ends before it.
    memset(buffer, 0, kPJL_REPLY_BUFFER_SIZE - 1);
    DWORD total = 0;
    for (int i = 0; kPJLQueries[i]; ++i) {
        BOOL bSent = socket.SocketSend(kPJLQueries[i]);
        int n = 0;
        BOOL bRecv =
            socket.SocketRecv(buffer + total, static_cast<int>(kPJL_REPLY_BUFFER_SIZE - total), &n);
        Trace(TEXT("query %d: send %d, recv %d, %d bytes"), i, bSent, bRecv, n);
        if (n > 0)
            total += static_cast<DWORD>(n);
        if (total > kPJL_REPLY_BUFFER_SIZE)
            total = kPJL_REPLY_BUFFER_SIZE;
    }
    socket.Close();
    socket.SocketCleanup();
}

} // namespace

QLMRefreshQuestions QLMDefaultRefreshQuestions()
{
    return {AskAddressCancel, AskFileDefault};
}

QLMRefreshQuestions QLMSetRefreshQuestions(const QLMRefreshQuestions& questions)
{
    QLMRefreshQuestions old = g_questions;
    g_questions.askAddress = questions.askAddress ? questions.askAddress : AskAddressCancel;
    g_questions.askFile = questions.askFile ? questions.askFile : AskFileDefault;
    return old;
}

int QLMRefresh(TVOPrinterConfiguration* config, DEVMODEEX* dm, HWND hwnd)
{
    QLM_TRACE_SCOPE(TEXT("QLMRefresh"), g_bTraceQLMRefresh);
    QLMWaitCursor cursor;
    QLMSocket socket;
    HANDLE hPrinter = config ? config->m_hPrinter : nullptr;

    // Zeroed once, so that a reply file without its zero byte ends the text at the file's end
    // rather than at stale heap bytes; the parse is bounded by the buffer's end in any case.
    char* rcv = new (std::nothrow) char[kPJL_REPLY_BUFFER_SIZE]();
    if (!rcv) {
        ASSERT(0 != rcv);
        Trace(TEXT("malloc failed in QLMRefresh"));
        return 0;
    }

    BOOL bFromFile = 0;
    ReadDebugSwitch(hPrinter, TEXT("DBG_BidiFromFile"), &bFromFile);
    if (bFromFile) {
        WCHAR path[kQLM_REFRESH_FILE_CCH] = {};
        if (!g_questions.askFile(hwnd, path, kQLM_REFRESH_FILE_CCH)) {
            delete[] rcv;
            return 0;
        }
        path[kQLM_REFRESH_FILE_CCH - 1] = 0;
        ReadReplyFile(path, rcv, kPJL_REPLY_BUFFER_SIZE);
    } else {
        const WCHAR* portU = QLMGetPortNameU(hPrinter);
        if (!portU) {
            Trace(TEXT("Can't refresh because can't get port name"));
            delete[] rcv;
            return 0;
        }
        WCHAR portName[kQLM_PORT_CB];
        CopyCut(portName, portU, kQLM_PORT_CB);

        if (!ConnectByPort(socket, hPrinter, portName)) {
            // Kept across questions: an answer without an address tries the last one again.
            // Room for the 127 characters the address box takes, and a terminator.
            char address[kQLM_ADDRESS_CB + 1] = {};
            for (;;) {
                if (g_questions.askAddress(portName, config, dm, hwnd, address, sizeof(address)) !=
                    1) {
                    socket.Close();
                    socket.SocketCleanup();
                    delete[] rcv;
                    return 0;
                }
                address[sizeof(address) - 1] = 0;
                if (socket.Connect(address, 0, 1, kPJLService))
                    break;
            }
        }
        Converse(socket, rcv);
    }

    TVOParsePJL* pParser = new (std::nothrow) TVOParsePJL();
    if (!pParser) {
        ASSERT(pParser);
        Trace(TEXT("Cannot allocate PJL parser."));
        delete[] rcv;
        return 0;
    }
    TVOPJLConfig* pConfig = new (std::nothrow) TVOPJLConfig;
    if (!pConfig) {
        ASSERT(pConfig);
        Trace(TEXT("Cannot allocate memory for PJL parser config data."));
        delete[] rcv;
        delete pParser;
        return 0;
    }
    QLMInitPJLConfig(pConfig);

    PJLTokenValue tokens[kPJL_MAX_TOKENS] = {};
    DWORD count = 0;
    const char* end = nullptr;
    int status = pParser->getAllPJLTokens(rcv, kPJL_REPLY_BUFFER_SIZE, kPJL_MAX_TOKENS, tokens,
                                          &count, &end);
    Trace(TEXT("getAllPJLTokens returned #%d tokens, status=%d(0x%X)"), count, status, status);
    getValuesFromTokens(pConfig, tokens, count, rcv, kPJL_REPLY_BUFFER_SIZE);
    writeValuesToDevmode(pConfig, dm);

    delete pParser;
    QLMFreePJLConfig(pConfig);
    delete pConfig;
    delete[] rcv;
    return 1;
}
