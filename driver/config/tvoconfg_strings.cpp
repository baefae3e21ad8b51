// The configuration's texts: strings of the resource library, and list tables into combo boxes.
#include "tvoconfg.h"

#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "tvoconfg_internal.h"

namespace {

// One row into the box at index i, its failures traced; the loop goes on.
void InsertListRow(HWND hWnd, DWORD dwControl, int i, const WCHAR* pszText, DWORD dwValue)
{
    LRESULT rc = SendDlgItemMessageW(hWnd, static_cast<int>(dwControl), CB_INSERTSTRING,
                                     static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(pszText));
    if (rc == CB_ERR || rc == CB_ERRSPACE)
        Trace(TEXT("ERROR %d adding string:%s, index:%d"), static_cast<int>(rc), pszText, i);
    rc = SendDlgItemMessageW(hWnd, static_cast<int>(dwControl), CB_SETITEMDATA,
                             static_cast<WPARAM>(i), static_cast<LPARAM>(dwValue));
    if (rc == CB_ERR || rc == CB_ERRSPACE)
        Trace(TEXT("ERROR %d setting item data for string:%s, index:%d"), static_cast<int>(rc),
              pszText, i);
}

} // namespace

BOOL TVOPrinterConfiguration::fillComboBox1(HWND hWnd, DWORD dwControl, TVOList list,
                                            DWORD dwSelect)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::fillComboBox1"), g_bTraceTVOConfig);
    SendDlgItemMessageW(hWnd, static_cast<int>(dwControl), CB_RESETCONTENT, 0, 0);
    int selection = 0;
    for (int i = 0; list && list[i].dwResourceId; ++i) {
        InsertListRow(hWnd, dwControl, i, getResourceString(list[i].dwResourceId), list[i].dwValue);
        if (list[i].dwValue == dwSelect)
            selection = i;
    }
    SendDlgItemMessageW(hWnd, static_cast<int>(dwControl), CB_SETCURSEL,
                        static_cast<WPARAM>(selection), 0);
    return 1;
}

BOOL TVOPrinterConfiguration::fillComboBox2(HWND hWnd, DWORD dwControl, TVOList list,
                                            DWORD dwSelect)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::fillComboBox2"), g_bTraceTVOConfig);
    const LRESULT oldSelection =
        SendDlgItemMessageW(hWnd, static_cast<int>(dwControl), CB_GETCURSEL, 0, 0);
    int matched = -1;
    int count = 0;
    for (; list && list[count].dwResourceId; ++count) {
        InsertListRow(hWnd, dwControl, count, getResourceString(list[count].dwResourceId),
                      list[count].dwValue);
        if (list[count].dwValue == dwSelect)
            matched = count;
    }
    // Without a match the item selected before stays selected, now count places further on.
    const LRESULT selection = matched >= 0 ? matched : oldSelection + count;
    SendDlgItemMessageW(hWnd, static_cast<int>(dwControl), CB_SETCURSEL,
                        static_cast<WPARAM>(selection), 0);
    return 1;
}

LPWSTR TVOPrinterConfiguration::getResourceString(UINT id)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getResourceString"), TraceConfig());
    const int cch = static_cast<int>(sizeof(m_szResourceString) / sizeof(WCHAR));
    if (LoadStringW(m_hResources, id, m_szResourceString, cch) == 0) {
        DWORD dwError = GetLastError();
        if (dwError != 0)
            WstrPrintf(m_szResourceString, cch, TEXT("LoadString Error=%02d (0X%X)"), dwError,
                       dwError);
        else
            m_szResourceString[0] = 0;
    }
    return m_szResourceString;
}
