// The host's sheet: CommonPropertySheetUIW of the host's common printer UI, with the script
// installed for its simulated user.
#include "sheetrun.h"

#include "scriptcase.h"

#include "platform/host/host.h"
#include "platform/host/hostsheet.h"

#include "server.h"

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

namespace {

class SimulatedPrinter : public CasePrinter
{
public:
    explicit SimulatedPrinter(std::unique_ptr<pjlsim::Server> server) : m_server(std::move(server))
    {
    }
    ~SimulatedPrinter() override { m_server->Stop(); }

private:
    std::unique_ptr<pjlsim::Server> m_server;
};

} // namespace

// words: those of the case's "#: pjlsim" line.
std::unique_ptr<CasePrinter> StartCasePrinter(const std::string& queue, const std::string& words,
                                              std::string* error)
{
    CasePjlsim setting;
    if (!ParseCasePjlsim(words, &setting, error))
        return nullptr;
    host::PrinterRecord printer;
    if (!host::GetPrinterRecord(host::Utf8ToUtf16(queue), &printer)) {
        *error = "no printer named '" + queue + "'";
        return nullptr;
    }
    const std::string port = host::Utf16ToUtf8(printer.portName);
    if (port.compare(0, 3, "IP_") != 0) {
        *error = "the printer '" + queue + "' is on port '" + port + "', not on IP_ADDRESS";
        return nullptr;
    }
    std::optional<pjlsim::Profile> loaded =
        setting.profile.empty()
            ? pjlsim::ParseProfile(pjlsim::DefaultProfileText(), "built-in", error)
            : pjlsim::LoadProfile(setting.profile, error);
    if (!loaded)
        return nullptr;
    pjlsim::ServerOptions options;
    options.address = setting.address.empty() ? port.substr(3) : setting.address;
    for (const std::string& text : setting.faults) {
        std::optional<pjlsim::Fault> fault = pjlsim::ParseFault(text, error);
        if (!fault)
            return nullptr;
        options.faults.push_back(*fault);
    }
    if (setting.delayMs)
        options.delayMs = *setting.delayMs;
    auto server = std::make_unique<pjlsim::Server>(std::move(*loaded), options);
    if (!server->Start(error))
        return nullptr;
    return std::make_unique<SimulatedPrinter>(std::move(server));
}
