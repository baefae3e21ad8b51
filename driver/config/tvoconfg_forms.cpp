// The user forms of a printer, kept in its printer data as "UserFormCount" and "UserForm%d".
#include "tvoconfg.h"

#include "../foundation/qlmsnapshot.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "tvoconfg_internal.h"

namespace {

constexpr WCHAR kUserFormCount[] = TEXT("UserFormCount");

// "UserForm%d" of a form's index (1-based in the store).
void FormatUserFormName(WCHAR* pszName, size_t cch, int index)
{
    WstrPrintf(pszName, cch, TEXT("UserForm%d"), index + 1);
}

} // namespace

void TVOPrinterConfiguration::getUserForms(HANDLE hPrinter)
{
    QLMPrinterSnapshot snapshot(hPrinter);
    getUserForms(snapshot);
}

void TVOPrinterConfiguration::getUserForms(QLMPrinterSnapshot& snapshot)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getUserForms"), TraceConfig());
    DWORD dwCount = 0;
    DWORD dwType = 0;
    DWORD cbNeeded = 0;
    DWORD dwError =
        snapshot.GetData(QLM_DRIVER_DATA_KEY, kUserFormCount, &dwType,
                         reinterpret_cast<LPBYTE>(&dwCount), sizeof(dwCount), &cbNeeded);
    if (dwError != 0) {
        Trace(TEXT("Couldn't get userformcount, dwError=%d, GetLastError()=%d"), dwError,
              GetLastError());
        m_UserFormCount = 0;
        return;
    }
    // The count is a 16-bit number in a 32-bit value: 65536 reads as no forms.
    m_UserFormCount = LOWORD(dwCount);
    if (dwCount == 0)
        return;
    if (m_UserFormCount > kMAX_USER_FORMS)
        m_UserFormCount = kMAX_USER_FORMS;

    for (int i = 0; i < m_UserFormCount; i++) {
        WCHAR szName[32];
        FormatUserFormName(szName, 32, i);
        // A missing record stays as it was; one of another size is taken as far as it goes.
        snapshot.GetData(QLM_DRIVER_DATA_KEY, szName, &dwType,
                         reinterpret_cast<LPBYTE>(&m_UserForms[i]), sizeof(USERFORM), &cbNeeded);
    }
}

void TVOPrinterConfiguration::setUserForms(HANDLE hPrinter)
{
    QLMPrinterSnapshot snapshot(hPrinter);
    setUserForms(snapshot);
}

void TVOPrinterConfiguration::setUserForms(QLMPrinterSnapshot& snapshot)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::setUserForms"), TraceConfig());
    HANDLE hPrinter = snapshot.Printer();
    DWORD dwStored = 0;
    DWORD dwType = 0;
    DWORD cbNeeded = 0;
    snapshot.GetData(QLM_DRIVER_DATA_KEY, kUserFormCount, &dwType,
                     reinterpret_cast<LPBYTE>(&dwStored), sizeof(dwStored), &cbNeeded);
    // Every value up to the old count's low word is emptied, however large: after one close the
    // stored count is the new one, so the long write happens once.
    const int oldCount = LOWORD(dwStored);

    if (m_UserFormCount > kMAX_USER_FORMS)
        m_UserFormCount = kMAX_USER_FORMS;
    if (m_UserFormCount < 0)
        m_UserFormCount = 0;

    // A value that already holds what would be written is left as it is: the store ends the
    // same, and the sheet's close costs no call per form.
    bool bWritten = false;
    auto store = [&](LPWSTR pszName, DWORD dwValueType, const void* pData, DWORD cbData) {
        const BYTE* pBytes = static_cast<const BYTE*>(pData);
        if (snapshot.Holds(QLM_DRIVER_DATA_KEY, pszName, dwValueType, pBytes, cbData))
            return;
        SetPrinterDataW(hPrinter, pszName, dwValueType, const_cast<LPBYTE>(pBytes), cbData);
        bWritten = true;
    };
    DWORD dwCount = static_cast<DWORD>(m_UserFormCount);
    store(ValueName(kUserFormCount), REG_DWORD, &dwCount, sizeof(dwCount));

    // Records behind the new count are emptied, not deleted: nothing reads past the count.
    const int rounds = oldCount > m_UserFormCount ? oldCount : m_UserFormCount;
    for (int i = 0; i < rounds; i++) {
        WCHAR szName[32];
        FormatUserFormName(szName, 32, i);
        if (i < m_UserFormCount)
            store(szName, REG_BINARY, &m_UserForms[i], sizeof(USERFORM));
        else
            store(szName, REG_BINARY, nullptr, 0);
    }
    if (bWritten)
        snapshot.DataStored(QLM_DRIVER_DATA_KEY);
}
