// user32's dialogs: templates (DLGTEMPLATEEX and the old DLGTEMPLATE) read bounds-checked from
// a module's RT_DIALOG resources or from memory, dialog creation in the order of the dialog
// manager, the default dialog procedure, modal runs fed by the user simulation, and the
// dialog item helpers.
#include "modules.h"
#include "wininternal.h"

#include <algorithm>
#include <climits>

namespace host::detail {

namespace {

// A template in memory without a size (the Indirect functions) is read up to this far.
constexpr size_t kUnboundedTemplate = size_t(1) << 20;

struct DialogItem
{
    DWORD helpId = 0, exStyle = 0, style = 0;
    short x = 0, y = 0, cx = 0, cy = 0;
    DWORD id = 0;
    SzOrOrd windowClass, title;
    std::vector<uint8_t> creationData;
};

struct DialogTemplate
{
    bool extended = false;
    DWORD helpId = 0, exStyle = 0, style = 0;
    short x = 0, y = 0, cx = 0, cy = 0;
    SzOrOrd menu, windowClass, title;
    WORD pointSize = 0, weight = 0;
    BYTE italic = 0, charset = 0;
    std::u16string face;
    std::vector<DialogItem> items;
};

bool ParseTemplate(const uint8_t* data, size_t size, DialogTemplate* t)
{
    if (!data) {
        return false;
    }
    TemplateReader r(data, size);
    WORD version = r.Word(), signature = r.Word();
    t->extended = version == 1 && signature == 0xFFFF;
    WORD count;
    if (t->extended) {
        t->helpId = r.Dword();
        t->exStyle = r.Dword();
        t->style = r.Dword();
    } else {
        t->style = DWORD(version) | (DWORD(signature) << 16);
        t->exStyle = r.Dword();
    }
    count = r.Word();
    t->x = r.Short();
    t->y = r.Short();
    t->cx = r.Short();
    t->cy = r.Short();
    t->menu = r.Name();
    t->windowClass = r.Name();
    t->title = r.Name();
    if (t->style & DS_SETFONT) {
        t->pointSize = r.Word();
        if (t->extended) {
            t->weight = r.Word();
            t->italic = r.Byte();
            t->charset = r.Byte();
        }
        t->face = r.String();
    }
    for (WORD i = 0; i < count && r.ok(); ++i) {
        DialogItem item;
        r.AlignDword();
        if (t->extended) {
            item.helpId = r.Dword();
            item.exStyle = r.Dword();
            item.style = r.Dword();
        } else {
            item.style = r.Dword();
            item.exStyle = r.Dword();
        }
        item.x = r.Short();
        item.y = r.Short();
        item.cx = r.Short();
        item.cy = r.Short();
        item.id = t->extended ? r.Dword() : r.Word();
        item.windowClass = r.Name();
        item.title = r.Name();
        WORD extra = r.Word();
        if (extra) {
            // The old format counts the size word itself; the extended one does not.
            size_t n = t->extended ? extra : (extra >= 2 ? extra - 2 : 0);
            item.creationData.resize(n);
            r.Read(item.creationData.data(), n);
        }
        if (!item.windowClass.ordinal && item.windowClass.text.empty()) {
            return false;
        }
        t->items.push_back(std::move(item));
    }
    return r.ok();
}

const char16_t* PredefinedClass(WORD atom)
{
    switch (atom) {
    case 0x80:
        return u"Button";
    case 0x81:
        return u"Edit";
    case 0x82:
        return u"Static";
    case 0x83:
        return u"ListBox";
    case 0x84:
        return u"ScrollBar";
    case 0x85:
        return u"ComboBox";
    default:
        return nullptr;
    }
}

int MulDivRound(int a, int b, int c)
{
    long long p = (long long)a * b;
    return int(p >= 0 ? (p + c / 2) / c : -((-p + c / 2) / c));
}

RECT DluToPixels(int x, int y, int cx, int cy)
{
    int left = MulDivRound(x, kBaseUnitX, 4), top = MulDivRound(y, kBaseUnitY, 8);
    return RECT{left, top, left + MulDivRound(cx, kBaseUnitX, 4),
                top + MulDivRound(cy, kBaseUnitY, 8)};
}

// The first control that takes the focus by Tab: visible, enabled, WS_TABSTOP.
HWND FirstTabStop(HWND dialog)
{
    for (HWND c = GetWindow(dialog, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT)) {
        LONG style = GetWindowLongW(c, GWL_STYLE);
        if ((style & WS_TABSTOP) && (style & WS_VISIBLE) && !(style & WS_DISABLED)) {
            return c;
        }
    }
    return nullptr;
}

bool IsEdit(HWND hwnd)
{
    WindowPtr w = FindWindowQuiet(hwnd);
    return w && w->kind == ControlKind::Edit;
}

HWND CreateFromParsed(HINSTANCE instance, const DialogTemplate& t, HWND parent, DLGPROC proc,
                      LPARAM param, const std::u16string& name)
{
    bool child = (t.style & WS_CHILD) != 0;
    RECT client = DluToPixels(t.x, t.y, t.cx, t.cy);
    DWORD style = t.style & ~DWORD(WS_VISIBLE);
    DWORD exStyle = t.exStyle;
    if (t.style & DS_MODALFRAME) {
        exStyle |= WS_EX_DLGMODALFRAME;
    }
    if (t.style & DS_CONTROL) {
        exStyle |= WS_EX_CONTROLPARENT;
    }
    // The window around the client area the template gives.
    RECT frame{0, 0, 0, 0};
    {
        int f = (style & WS_THICKFRAME)                                      ? 8
                : ((style & WS_DLGFRAME) || (exStyle & WS_EX_DLGMODALFRAME)) ? 3
                : (style & WS_BORDER)                                        ? 1
                                                                             : 0;
        frame = RECT{f, f + (((style & WS_CAPTION) == WS_CAPTION) ? 23 : 0), f, f};
    }
    int width = client.right - client.left + frame.left + frame.right;
    int height = client.bottom - client.top + frame.top + frame.bottom;
    int x = client.left, y = client.top;
    if (!child) {
        RECT area{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
        if (parent && IsWindow(parent)) {
            HWND root = GetAncestor(parent, GA_ROOT);
            if (t.style & DS_CENTER) {
                GetWindowRect(root, &area);
            } else if (!(t.style & DS_ABSALIGN)) {
                POINT o{0, 0};
                ClientToScreen(root, &o);
                x += o.x;
                y += o.y;
            }
        }
        if (t.style & DS_CENTER) {
            x = area.left + ((area.right - area.left) - width) / 2;
            y = area.top + ((area.bottom - area.top) - height) / 2;
        }
    }
    std::u16string title = t.title.ordinal ? u"" : t.title.text;
    std::u16string className = u"#32770";
    if (t.windowClass.ordinal) {
        className = u"#" + Utf8ToUtf16(std::to_string(t.windowClass.id));
    } else if (!t.windowClass.text.empty()) {
        className = t.windowClass.text;
    }
    LPCWSTR classArg = t.windowClass.ordinal ? MAKEINTATOM(t.windowClass.id) : className.c_str();
    if (t.windowClass.ordinal && t.windowClass.id == 0x8002) {
        classArg = u"#32770";
    }
    HWND hwnd = CreateWindowExW(exStyle, classArg, title.c_str(), style, x, y, width, height,
                                parent, nullptr, instance, nullptr);
    if (!hwnd) {
        return nullptr;
    }
    {
        WindowPtr w = FindWindowQuiet(hwnd);
        Lock lock(StateMutex());
        if (!w->dialog) {
            w->dialog = std::make_unique<DialogData>();
        }
        w->dialog->proc = proc;
        w->dialog->templateName = name;
    }
    // The dialog manager makes the template's font, gives it to the dialog and its controls,
    // and deletes it with the dialog.
    HFONT font = nullptr;
    if (t.style & DS_SETFONT) {
        LOGFONTW lf{};
        lf.lfHeight = -MulDivRound(t.pointSize, 96, 72);
        lf.lfWeight = t.weight ? t.weight : 400;
        lf.lfItalic = t.italic;
        lf.lfCharSet = t.charset;
        size_t n = std::min<size_t>(t.face.size(), 31);
        std::memcpy(lf.lfFaceName, t.face.data(), n * sizeof(WCHAR));
        font = CreateFontIndirectW(&lf);
        {
            WindowPtr w = FindWindowQuiet(hwnd);
            Lock lock(StateMutex());
            w->dialog->font = font;
        }
        SendMessageW(hwnd, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    }
    for (const DialogItem& item : t.items) {
        if (!IsWindow(hwnd)) {
            return nullptr;
        }
        std::u16string itemClass;
        if (item.windowClass.ordinal) {
            const char16_t* predefined = PredefinedClass(item.windowClass.id);
            itemClass = predefined ? predefined : u"";
        } else {
            itemClass = item.windowClass.text;
        }
        WCHAR ordinalTitle[3] = {0xFFFF, item.title.id, 0};
        LPCWSTR text = item.title.ordinal ? ordinalTitle : item.title.text.c_str();
        RECT r = DluToPixels(item.x, item.y, item.cx, item.cy);
        HWND control = CreateWindowExW(
            item.exStyle | WS_EX_NOPARENTNOTIFY, itemClass.empty() ? u"?" : itemClass.c_str(), text,
            item.style | WS_CHILD, r.left, r.top, r.right - r.left, r.bottom - r.top, hwnd,
            reinterpret_cast<HMENU>(uintptr_t(item.id)), instance,
            item.creationData.empty() ? nullptr : const_cast<uint8_t*>(item.creationData.data()));
        if (!control) {
            if (t.style & DS_NOFAILCREATE) {
                continue;
            }
            DWORD error = GetLastError();
            DestroyWindow(hwnd);
            SetLastError(error);
            return nullptr;
        }
        if (t.style & DS_SETFONT) {
            SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        }
    }
    HWND first = FirstTabStop(hwnd);
    if (SendMessageW(hwnd, WM_INITDIALOG, reinterpret_cast<WPARAM>(first), param) &&
        IsWindow(hwnd)) {
        first = FirstTabStop(hwnd);
        if (first && !child) {
            SetFocus(first);
            if (IsEdit(first)) {
                SendMessageW(first, EM_SETSEL, 0, -1);
            }
        }
    }
    if (IsWindow(hwnd) && (t.style & WS_VISIBLE)) {
        ShowWindow(hwnd, SW_SHOWNORMAL);
    }
    return IsWindow(hwnd) ? hwnd : nullptr;
}

std::u16string TemplateName(LPCWSTR name)
{
    if (IS_INTRESOURCE(name)) {
        return Utf8ToUtf16(std::to_string(LOWORD(name)));
    }
    return FromW(name);
}

bool FindTemplate(HINSTANCE instance, LPCWSTR name, const uint8_t** data, DWORD* size)
{
    if (!name) {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return false;
    }
    return FindResourceData(instance, RT_DIALOG, name, kAnyLanguage, data, size);
}

bool IsDialog(HWND hwnd)
{
    WindowPtr w = FindWindowObject(hwnd);
    if (!w) {
        return false;
    }
    Lock lock(StateMutex());
    return w->dialog != nullptr;
}

} // namespace

HWND CreateDialogFromTemplate(HINSTANCE instance, const uint8_t* data, size_t size, HWND parent,
                              DLGPROC proc, LPARAM param, const std::u16string& name)
{
    DialogTemplate t;
    if (!ParseTemplate(data, size, &t)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (parent == GetDesktopWindow()) {
        parent = nullptr;
    }
    if (parent && !IsWindow(parent)) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return nullptr;
    }
    return CreateFromParsed(instance, t, parent, proc, param, name);
}

bool PressDialogButton(HWND dialog, int id)
{
    WindowPtr button;
    for (HWND c = GetWindow(dialog, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT)) {
        WindowPtr w = FindWindowQuiet(c);
        if (w && int(w->id) == id && w->kind == ControlKind::Button) {
            button = w;
            break;
        }
    }
    if (!button) {
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0);
        return true;
    }
    if (!IsWindowEnabled(button->handle) || !IsWindowVisible(button->handle)) {
        return false;
    }
    SetFocus(button->handle);
    SendMessageW(button->handle, BM_CLICK, 0, 0);
    return true;
}

INT_PTR RunModal(HWND dialog)
{
    WindowPtr w = FindWindowQuiet(dialog);
    if (!w || !w->dialog) {
        return -1;
    }
    HWND owner;
    {
        Lock lock(StateMutex());
        owner = w->owner;
    }
    // The owner takes no input while the dialog runs, as on Windows.
    bool disabledOwner = owner && IsWindowEnabled(owner);
    if (disabledOwner) {
        EnableWindow(owner, FALSE);
    }
    if (!IsWindowVisible(dialog)) {
        ShowWindow(dialog, SW_SHOWNORMAL);
    }
    auto ended = [&] {
        Lock lock(StateMutex());
        return w->dialog->ended || !FindWindowQuiet(dialog);
    };
    // As Esc: WM_COMMAND(IDCANCEL) from the Cancel button unless it is disabled; the focus
    // stays where it is.
    auto endAsCancel = [&] {
        HWND cancel = GetDlgItem(dialog, IDCANCEL);
        if (!cancel || IsWindowEnabled(cancel)) {
            SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED),
                         reinterpret_cast<LPARAM>(cancel));
        }
        while (!ended() && DispatchPostedMessage()) {
        }
        if (!ended()) {
            EndDialog(dialog, IDCANCEL);
        }
    };
    while (!ended()) {
        if (DispatchPostedMessage()) {
            continue;
        }
        UserAction action;
        if (!TakeUserAction(&action)) {
            endAsCancel();
            break;
        }
        const std::string& verb = action.verb;
        if (verb == "ok" || verb == "cancel") {
            if (!PressDialogButton(dialog, verb == "ok" ? IDOK : IDCANCEL)) {
                RecordUserScriptFailure(action, "the " + verb + " button is disabled or hidden");
            }
        } else if (verb == "tab" || verb == "apply" || verb == "expect-apply") {
            RecordUserScriptFailure(action, "'" + verb + "' does not apply to a dialog");
            endAsCancel();
        } else if (verb == "answer" || verb == "file" || verb == "menu") {
            RecordUserScriptFailure(action, "'" + verb + "' while no " +
                                                (verb == "answer" ? "message box"
                                                 : verb == "file" ? "file picker"
                                                                  : "menu") +
                                                " is open");
        } else {
            PerformUserAction(dialog, action);
        }
    }
    INT_PTR result;
    {
        Lock lock(StateMutex());
        result = w->dialog->result;
    }
    if (disabledOwner && IsWindow(owner)) {
        EnableWindow(owner, TRUE);
    }
    if (IsWindow(dialog)) {
        DestroyWindow(dialog);
    }
    if (owner && IsWindow(owner)) {
        SetActiveWindow(owner);
    }
    return result;
}

// The dialog class's procedure: the dialog procedure first, then the dialog manager's defaults.
LRESULT CALLBACK DialogWindowProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp)
{
    WindowPtr w = FindWindowQuiet(hwnd);
    if (!w) {
        return 0;
    }
    DLGPROC proc;
    {
        Lock lock(StateMutex());
        proc = w->dialog ? w->dialog->proc : nullptr;
    }
    INT_PTR handled = proc ? proc(hwnd, msg, wp, lp) : 0;
    if (handled) {
        switch (msg) {
        case WM_CTLCOLORMSGBOX:
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORLISTBOX:
        case WM_CTLCOLORBTN:
        case WM_CTLCOLORDLG:
        case WM_CTLCOLORSCROLLBAR:
        case WM_CTLCOLORSTATIC:
        case WM_COMPAREITEM:
        case WM_VKEYTOITEM:
        case WM_CHARTOITEM:
        case WM_QUERYDRAGICON:
        case WM_INITDIALOG:
            return handled;
        default: {
            Lock lock(StateMutex());
            return w->dialog ? w->dialog->msgResult : 0;
        }
        }
    }
    if (!FindWindowQuiet(hwnd)) {
        return 0;
    }
    switch (msg) {
    case WM_CLOSE: {
        // As the system menu's Close: the Cancel button's click, unless it is disabled.
        HWND cancel = GetDlgItem(hwnd, IDCANCEL);
        if (!cancel || IsWindowEnabled(cancel)) {
            PostMessageW(hwnd, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED),
                         reinterpret_cast<LPARAM>(cancel));
        }
        return 0;
    }
    case DM_GETDEFID: {
        Lock lock(StateMutex());
        return w->dialog ? MAKELRESULT(w->dialog->defId, DC_HASDEFID) : 0;
    }
    case DM_SETDEFID: {
        Lock lock(StateMutex());
        if (w->dialog) {
            w->dialog->defId = int(wp);
        }
        return TRUE;
    }
    case WM_NEXTDLGCTL: {
        HWND target = LOWORD(lp) ? reinterpret_cast<HWND>(wp) : nullptr;
        if (!target) {
            target = FirstTabStop(hwnd);
        }
        if (target) {
            SetFocus(target);
            if (IsEdit(target)) {
                SendMessageW(target, EM_SETSEL, 0, -1);
            }
        }
        return 0;
    }
    case WM_INITDIALOG:
    case WM_COMMAND:
    case WM_NOTIFY:
    case WM_HSCROLL:
    case WM_VSCROLL:
        return 0;
    default:
        return DefWindowProcW(hwnd, msg, wp, lp);
    }
}

} // namespace host::detail

using namespace host::detail;

extern "C" {

LRESULT WINAPI DefDlgProcW(HWND hDlg, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    return DialogWindowProc(hDlg, Msg, wParam, lParam);
}

HWND WINAPI CreateDialogIndirectParamW(HINSTANCE hInstance, LPCDLGTEMPLATEW lpTemplate,
                                       HWND hWndParent, DLGPROC lpDialogFunc, LPARAM dwInitParam)
{
    return CreateDialogFromTemplate(hInstance, reinterpret_cast<const uint8_t*>(lpTemplate),
                                    kUnboundedTemplate, hWndParent, lpDialogFunc, dwInitParam,
                                    u"(memory)");
}

HWND WINAPI CreateDialogParamW(HINSTANCE hInstance, LPCWSTR lpTemplateName, HWND hWndParent,
                               DLGPROC lpDialogFunc, LPARAM dwInitParam)
{
    const uint8_t* data = nullptr;
    DWORD size = 0;
    if (!FindTemplate(hInstance, lpTemplateName, &data, &size)) {
        return nullptr;
    }
    return CreateDialogFromTemplate(hInstance, data, size, hWndParent, lpDialogFunc, dwInitParam,
                                    TemplateName(lpTemplateName));
}

INT_PTR WINAPI DialogBoxParamW(HINSTANCE hInstance, LPCWSTR lpTemplateName, HWND hWndParent,
                               DLGPROC lpDialogFunc, LPARAM dwInitParam)
{
    const uint8_t* data = nullptr;
    DWORD size = 0;
    if (!FindTemplate(hInstance, lpTemplateName, &data, &size)) {
        return -1;
    }
    HWND dialog = CreateDialogFromTemplate(hInstance, data, size, hWndParent, lpDialogFunc,
                                           dwInitParam, TemplateName(lpTemplateName));
    return dialog ? RunModal(dialog) : -1;
}

INT_PTR WINAPI DialogBoxIndirectParamW(HINSTANCE hInstance, LPCDLGTEMPLATEW hDialogTemplate,
                                       HWND hWndParent, DLGPROC lpDialogFunc, LPARAM dwInitParam)
{
    HWND dialog = CreateDialogIndirectParamW(hInstance, hDialogTemplate, hWndParent, lpDialogFunc,
                                             dwInitParam);
    return dialog ? RunModal(dialog) : -1;
}

BOOL WINAPI EndDialog(HWND hDlg, INT_PTR nResult)
{
    WindowPtr w = FindWindowObject(hDlg);
    if (!w || !w->dialog) {
        if (w) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        }
        return FALSE;
    }
    {
        Lock lock(StateMutex());
        w->dialog->ended = true;
        w->dialog->result = nResult;
    }
    ShowWindow(hDlg, SW_HIDE);
    return TRUE;
}

BOOL WINAPI MapDialogRect(HWND hDlg, LPRECT lpRect)
{
    if (!lpRect || !IsDialog(hDlg)) {
        if (IsWindow(hDlg)) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        }
        return FALSE;
    }
    lpRect->left = MulDivRound(lpRect->left, kBaseUnitX, 4);
    lpRect->right = MulDivRound(lpRect->right, kBaseUnitX, 4);
    lpRect->top = MulDivRound(lpRect->top, kBaseUnitY, 8);
    lpRect->bottom = MulDivRound(lpRect->bottom, kBaseUnitY, 8);
    return TRUE;
}

// The system font's units, which GetDialogBaseUnits reports whatever the dialogs use.
LONG WINAPI GetDialogBaseUnits(void)
{
    return MAKELONG(8, 16);
}

UINT WINAPI GetDlgItemTextW(HWND hDlg, int nIDDlgItem, LPWSTR lpString, int cchMax)
{
    if (lpString && cchMax > 0) {
        lpString[0] = 0;
    }
    HWND item = GetDlgItem(hDlg, nIDDlgItem);
    return item ? UINT(GetWindowTextW(item, lpString, cchMax)) : 0;
}

BOOL WINAPI SetDlgItemTextW(HWND hDlg, int nIDDlgItem, LPCWSTR lpString)
{
    HWND item = GetDlgItem(hDlg, nIDDlgItem);
    return item ? SetWindowTextW(item, lpString) : FALSE;
}

// Leading and trailing blanks are allowed; anything else that is not the number fails it.
UINT WINAPI GetDlgItemInt(HWND hDlg, int nIDDlgItem, BOOL* lpTranslated, BOOL bSigned)
{
    if (lpTranslated) {
        *lpTranslated = FALSE;
    }
    HWND item = GetDlgItem(hDlg, nIDDlgItem);
    if (!item) {
        return 0;
    }
    WCHAR buffer[64];
    int n = GetWindowTextW(item, buffer, 64);
    int i = 0;
    while (i < n && buffer[i] == u' ') {
        ++i;
    }
    // Only a minus sign may lead, as user32 reads it: "+12" fails.
    bool negative = false;
    if (i < n && buffer[i] == u'-') {
        negative = true;
        if (!bSigned) {
            return 0;
        }
        ++i;
    }
    long long value = 0;
    int digits = 0;
    while (i < n && buffer[i] >= u'0' && buffer[i] <= u'9') {
        value = value * 10 + (buffer[i] - u'0');
        if (value > 0xFFFFFFFFll) {
            return 0;
        }
        ++i;
        ++digits;
    }
    // Nothing may follow the digits, not even blanks: "12 " fails.
    if (!digits || i != n) {
        return 0;
    }
    if (negative) {
        value = -value;
    }
    if (bSigned ? (value < INT_MIN || value > INT_MAX) : value > UINT_MAX) {
        return 0;
    }
    if (lpTranslated) {
        *lpTranslated = TRUE;
    }
    return UINT(value);
}

BOOL WINAPI SetDlgItemInt(HWND hDlg, int nIDDlgItem, UINT uValue, BOOL bSigned)
{
    std::string text = bSigned ? std::to_string(int(uValue)) : std::to_string(uValue);
    return SetDlgItemTextW(hDlg, nIDDlgItem, host::Utf8ToUtf16(text).c_str());
}

LRESULT WINAPI SendDlgItemMessageW(HWND hDlg, int nIDDlgItem, UINT Msg, WPARAM wParam,
                                   LPARAM lParam)
{
    HWND item = GetDlgItem(hDlg, nIDDlgItem);
    return item ? SendMessageW(item, Msg, wParam, lParam) : 0;
}

BOOL WINAPI CheckDlgButton(HWND hDlg, int nIDButton, UINT uCheck)
{
    HWND item = GetDlgItem(hDlg, nIDButton);
    if (!item) {
        return FALSE;
    }
    SendMessageW(item, BM_SETCHECK, uCheck, 0);
    return TRUE;
}

UINT WINAPI IsDlgButtonChecked(HWND hDlg, int nIDButton)
{
    return UINT(SendDlgItemMessageW(hDlg, nIDButton, BM_GETCHECK, 0, 0));
}

BOOL WINAPI CheckRadioButton(HWND hDlg, int nIDFirstButton, int nIDLastButton, int nIDCheckButton)
{
    if (!FindWindowObject(hDlg)) {
        return FALSE;
    }
    for (HWND c = GetWindow(hDlg, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT)) {
        int id = GetDlgCtrlID(c);
        if (id >= nIDFirstButton && id <= nIDLastButton) {
            SendMessageW(c, BM_SETCHECK, id == nIDCheckButton ? BST_CHECKED : BST_UNCHECKED, 0);
        }
    }
    return TRUE;
}

} // extern "C"
