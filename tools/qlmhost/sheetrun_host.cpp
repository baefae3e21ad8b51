// The host's sheet: CommonPropertySheetUIW of the host's common printer UI, with the script
// installed for its simulated user.
#include "sheetrun.h"

#include "platform/host/host.h"
#include "platform/host/hostsheet.h"

bool RunSheet(PFNPROPSHEETUI pfn, LPARAM lParam, const std::string& script, SheetRunReport* report,
              std::string* error)
{
    // Behind the answer to the address dialog (--address), which comes before the sheet opens.
    if (!host::AppendUserScript(script, error))
        return false;
    DWORD result = 0;
    report->rc = CommonPropertySheetUIW(nullptr, pfn, lParam, &result);
    report->result = result;
    host::SheetRun run = host::LastSheetRun();
    for (const host::SheetPage& page : run.pages) {
        SheetPageReport out;
        out.templateId = page.templateId;
        out.created = page.created;
        out.title = page.title;
        out.controls = page.controls;
        report->pages.push_back(std::move(out));
    }
    report->failures = host::UserScriptFailures();
    host::ClearUserScript();
    return true;
}

bool RunDialog(const std::function<INT_PTR()>& open, const std::string& script, INT_PTR* result,
               std::vector<std::string>* failures, std::string* error)
{
    if (!host::AppendUserScript(script, error))
        return false;
    *result = open();
    *failures = host::UserScriptFailures();
    host::ClearUserScript();
    return true;
}
