// A property sheet opened around a driver's PFNPROPSHEETUI as the common printer UI opens it,
// with a script of a person's actions run in it, and what came of it. Each platform has its
// own: the host's common printer UI and simulated user, or comctl32's property sheet and a
// person's input on Windows.
#pragma once

#include "platform/usersim/controlstate.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

struct SheetPageReport
{
    int templateId = 0;                          // the page's template, when it is named by number
    bool created = false;                        // the page was shown at least once
    std::u16string title;                        // the page's caption
    std::vector<usersim::ControlState> controls; // as the page stood when the sheet closed
};

struct SheetRunReport
{
    LONG rc = 0;      // what the sheet's function returned: below 0 when it did not open
    DWORD result = 0; // the last result set, CPSUI_OK or CPSUI_CANCEL
    std::vector<SheetPageReport> pages;
    std::vector<std::string> failures; // "line N: ..." of the script
};

// False with *error when the script cannot be parsed; the sheet is not opened then.
bool RunSheet(PFNPROPSHEETUI pfn, LPARAM lParam, const std::string& script, SheetRunReport* report,
              std::string* error);

// Runs a modal dialog, which open shows (and returns its result), with a script taking the
// person's part; the script's failures go to *failures. False with *error when the script
// cannot be parsed.
bool RunDialog(const std::function<INT_PTR()>& open, const std::string& script, INT_PTR* result,
               std::vector<std::string>* failures, std::string* error);

// A printer that answers for the length of a case ("#: pjlsim"): a simulated plotter on the
// loopback address of the queue's standard TCP/IP port (IP_a.b.c.d), from a profile file, or
// the built-in profile when profile is empty. Ends when the object goes. Only the host can run
// one: elsewhere, and for a queue on another port, nothing with *error.
class CasePrinter
{
public:
    virtual ~CasePrinter() = default;
};
std::unique_ptr<CasePrinter> StartCasePrinter(const std::string& queue, const std::string& profile,
                                              std::string* error);
