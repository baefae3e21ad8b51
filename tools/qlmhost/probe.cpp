// The probe: the test dialog "All controls" with a procedure that writes down, in order, what
// its controls tell it, run by a script on either platform. Two platforms' logs of the same
// script differ exactly where their controls do.
#include "commands.h"
#include "records.h"
#include "scriptcase.h"
#include "sheetrun.h"

#include "tests/fixtures/testdialogs.h"

#include <cstdio>
#include <string>
#include <vector>

namespace {

struct ProbeRun
{
    std::vector<std::string> events;
    std::vector<usersim::ControlState> controls;
};
ProbeRun* g_pProbe = nullptr;

std::string WindowText(HWND window)
{
    WCHAR text[128] = {};
    int n = GetWindowTextW(window, text, 128);
    return usersim::Utf16ToUtf8(
        std::u16string(reinterpret_cast<const char16_t*>(text), size_t(n > 0 ? n : 0)));
}

void Log(const std::string& event)
{
    if (g_pProbe)
        g_pProbe->events.push_back(event);
}

void Fill(HWND dialog, int id, bool combo)
{
    const struct
    {
        const char16_t* text;
        LPARAM data;
    } kItems[] = {{u"A4", 274}, {u"A3", 273}, {u"A0", 270}};
    for (const auto& item : kItems) {
        LRESULT i = SendDlgItemMessageW(dialog, id, combo ? CB_ADDSTRING : LB_ADDSTRING, 0,
                                        reinterpret_cast<LPARAM>(item.text));
        SendDlgItemMessageW(dialog, id, combo ? CB_SETITEMDATA : LB_SETITEMDATA, WPARAM(i),
                            item.data);
    }
}

// What GetDlgItemInt makes of the name box, signed and unsigned.
std::string ReadInt(HWND dialog, BOOL bSigned)
{
    BOOL translated = 2;
    UINT value = GetDlgItemInt(dialog, IDC_NAME, &translated, bSigned);
    return std::string(bSigned ? "signed " : "unsigned ") +
           (translated ? std::to_string(bSigned ? long(int(value)) : long(value)) : "failed");
}

// Focus comes and goes differently with no person at the keyboard; the rest is logged.
bool Logged(int id, int code)
{
    if (id == IDC_PAPER || id == IDC_ADDRESS)
        return code != CBN_SETFOCUS && code != CBN_KILLFOCUS;
    if (id == IDC_LIST)
        return code != LBN_SETFOCUS && code != LBN_KILLFOCUS;
    return code == BN_CLICKED && id != IDOK && id != IDCANCEL;
}

INT_PTR CALLBACK ProbeProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        Fill(dialog, IDC_PAPER, true);
        Fill(dialog, IDC_ADDRESS, true);
        Fill(dialog, IDC_LIST, false);
        // A range with a negative minimum, as one call: comctl32 reads both words signed.
        SendDlgItemMessageW(dialog, IDC_QUALITY, TBM_SETRANGE, TRUE, MAKELONG(-10, 10));
        // The up-down keeps the range it was made with.
        return TRUE;
    case WM_COMMAND: {
        int id = LOWORD(wParam), code = HIWORD(wParam);
        if (id == IDOK || id == IDCANCEL) {
            Log(ReadInt(dialog, TRUE));
            Log(ReadInt(dialog, FALSE));
            if (g_pProbe)
                g_pProbe->controls = usersim::DescribeControls(dialog);
            EndDialog(dialog, id);
            return TRUE;
        }
        if (!Logged(id, code))
            return FALSE;
        HWND control = reinterpret_cast<HWND>(lParam);
        std::string event = "command " + std::to_string(id) + " " + std::to_string(code);
        if (id == IDC_PAPER || id == IDC_ADDRESS)
            event += " selection " +
                     std::to_string(int(SendMessageW(control, CB_GETCURSEL, 0, 0))) + " text \"" +
                     WindowText(control) + "\"";
        Log(event);
        return FALSE;
    }
    case WM_NOTIFY: {
        auto* hdr = reinterpret_cast<NMHDR*>(lParam);
        if (hdr->code == UDN_DELTAPOS) {
            auto* nm = reinterpret_cast<NMUPDOWN*>(lParam);
            Log("deltapos " + std::to_string(hdr->idFrom) + " " + std::to_string(nm->iPos) + " " +
                std::to_string(nm->iDelta));
        }
        return FALSE;
    }
    case WM_HSCROLL:
    case WM_VSCROLL: {
        HWND control = reinterpret_cast<HWND>(lParam);
        int id = GetDlgCtrlID(control);
        int position = id == IDC_QUALITY ? int(SendMessageW(control, TBM_GETPOS, 0, 0))
                                         : short(HIWORD(wParam));
        Log(std::string(message == WM_HSCROLL ? "hscroll " : "vscroll ") + std::to_string(id) +
            " " + std::to_string(LOWORD(wParam)) + " " + std::to_string(position));
        return FALSE;
    }
    default:
        return FALSE;
    }
}

} // namespace

int ProbeCommand(Args& args, const Options& options)
{
    std::string casePath, dialogsPath = options.testDialogs, error;
    if (!args.Take("--case", &casePath))
        return UsageError(args.Called(), "--case names the script");
    args.Take("--dialogs", &dialogsPath);
    args.Flag("--dump"); // the controls are always shown
    int rc;
    if (!Expect(args, 0, 0, &rc))
        return rc;
    std::string script;
    if (!ReadTextFile(casePath, &script))
        return Fail("cannot read the script '" + casePath + "'");
    ScriptCase scriptCase;
    if (!ParseScriptCase(script, &scriptCase, &error) || !CheckScriptActions(script, &error))
        return Fail(casePath + ": " + error);
    std::u16string wide = W(dialogsPath);
    HMODULE module = LoadLibraryW(reinterpret_cast<LPCWSTR>(wide.c_str()));
    if (!module)
        return Fail("cannot load the test dialogs " + dialogsPath);

    ProbeRun run;
    g_pProbe = &run;
    INT_PTR result = 0;
    std::vector<std::string> failures;
    bool ran = RunDialog(
        [&] { return DialogBoxParamW(module, MAKEINTRESOURCEW(IDD_ALL), nullptr, ProbeProc, 0); },
        script, &result, &failures, &error);
    g_pProbe = nullptr;
    FreeLibrary(module);
    if (!ran)
        return Fail(casePath + ": " + error);
    for (const std::string& f : CheckScriptCase(scriptCase, result, nullptr, 0))
        failures.push_back(casePath + ": " + f);

    JsonWriter json;
    json.BeginObject();
    json.Number("result", result);
    json.BeginArray("events");
    for (const std::string& event : run.events)
        json.String(nullptr, event);
    json.EndArray();
    ControlsToJson(json, run.controls);
    json.BeginArray("failures");
    for (const std::string& f : failures)
        json.String(nullptr, f);
    json.EndArray();
    json.EndObject();
    printf("%s\n", json.Text().c_str());
    for (const std::string& f : failures)
        fprintf(stderr, "%s: script %s\n", g_pszToolName, f.c_str());
    return failures.empty() ? 0 : 1;
}

extern const Command g_ProbeCommand = {
    "probe", "--case FILE [--dialogs PATH] [--json]",
    "Runs a script on the test dialog \"All controls\" and shows what its controls told it.",
    ProbeCommand,
    "The dialog's procedure writes down, in order, the notifications of its lists and buttons\n"
    "  (focus aside), up-down deltas and scroll messages, and at OK or Cancel what\n"
    "  GetDlgItemInt reads from the name box; then the controls' states. The trackbar's range\n"
    "  is set to -10..10 in one TBM_SETRANGE; the up-down keeps the range it was made with.\n"
    "  The output is JSON whatever --json says. Exit 1 when a script line or the case fails."};
