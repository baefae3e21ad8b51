// user32's windows: the window table, classes, messages, window data, focus, enabling and
// showing, positions, and the system metrics of the host's screen.
#include "wininternal.h"

#include <algorithm>
#include <unordered_map>

namespace host::detail {

namespace {

struct WindowClass
{
    std::u16string name;
    WNDPROC proc = nullptr;
    int wndExtra = 0;
    HINSTANCE instance = nullptr;
    ControlKind kind = ControlKind::None;
    ATOM atom = 0;
};

struct WindowTable
{
    std::unordered_map<uintptr_t, WindowPtr> windows;
    // Window handles are 32-bit values as on Windows, from a range of their own, never reused.
    uintptr_t next = 0x00400010;
    std::vector<HWND> topLevel; // z-order, first on top
    std::vector<WindowClass> classes;
    ATOM nextAtom = 0xC000;
    HWND focus = nullptr;
    HWND active = nullptr;
    std::deque<MSG> posted;
    int screenX = 1920, screenY = 1080;
    int beeps = 0;
};

WindowTable& Table()
{
    static auto* table = new WindowTable;
    return *table;
}

void AddPredefinedClasses(WindowTable& t)
{
    if (!t.classes.empty()) {
        return;
    }
    const struct
    {
        const char16_t* name;
        WNDPROC proc;
        ControlKind kind;
        ATOM atom;
    } predefined[] = {
        {u"Button", ButtonProc, ControlKind::Button, 0x80},
        {u"Edit", EditProc, ControlKind::Edit, 0x81},
        {u"Static", StaticProc, ControlKind::Static, 0x82},
        {u"ListBox", ListBoxProc, ControlKind::ListBox, 0x83},
        {u"ComboBox", ComboBoxProc, ControlKind::ComboBox, 0x85},
        {u"msctls_updown32", UpDownProc, ControlKind::UpDown, 0xC001},
        {u"msctls_trackbar32", TrackbarProc, ControlKind::Trackbar, 0xC002},
        {u"#32770", DialogWindowProc, ControlKind::Dialog, 0x8002},
    };
    for (const auto& p : predefined) {
        WindowClass c;
        c.name = p.name;
        c.proc = p.proc;
        c.kind = p.kind;
        c.atom = p.atom;
        c.wndExtra = p.kind == ControlKind::Dialog ? DLGWINDOWEXTRA : 0;
        t.classes.push_back(c);
    }
    t.nextAtom = 0xC010;
}

WindowClass* FindClass(WindowTable& t, LPCWSTR name)
{
    AddPredefinedClasses(t);
    for (auto& c : t.classes) {
        if (IS_INTRESOURCE(name) ? c.atom == LOWORD(name) : EqualNoCase(c.name, FromW(name))) {
            return &c;
        }
    }
    return nullptr;
}

// The frame a window's style puts around its client area, as AdjustWindowRectEx gives it at
// 96 DPI: caption 23, thick frame 4 + 4 padded, dialog frame 3, border 1, client edge 2.
RECT Insets(DWORD style, DWORD exStyle)
{
    int frame = 0;
    if (style & WS_THICKFRAME) {
        frame = 8;
    } else if ((style & WS_DLGFRAME) || (exStyle & WS_EX_DLGMODALFRAME)) {
        frame = 3;
    } else if (style & WS_BORDER) {
        frame = 1;
    }
    if (exStyle & WS_EX_CLIENTEDGE) {
        frame += 2;
    }
    if (exStyle & WS_EX_STATICEDGE) {
        frame += 1;
    }
    RECT r{frame, frame, frame, frame};
    if ((style & WS_CAPTION) == WS_CAPTION) {
        r.top += 23;
    }
    return r;
}

// The screen position of the client area's origin.
POINT ClientOrigin(const WindowTable& t, const Window& w)
{
    RECT in = Insets(w.style, w.exStyle);
    POINT p{w.rect.left + in.left, w.rect.top + in.top};
    if ((w.style & WS_CHILD) && w.parent) {
        auto it = t.windows.find(reinterpret_cast<uintptr_t>(w.parent));
        if (it != t.windows.end()) {
            POINT o = ClientOrigin(t, *it->second);
            p.x += o.x;
            p.y += o.y;
        }
    }
    return p;
}

std::vector<HWND>* Siblings(WindowTable& t, const Window& w)
{
    if ((w.style & WS_CHILD) && w.parent) {
        auto it = t.windows.find(reinterpret_cast<uintptr_t>(w.parent));
        return it == t.windows.end() ? nullptr : &it->second->children;
    }
    return &t.topLevel;
}

LRESULT Call(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp)
{
    WindowPtr w = FindWindowQuiet(hwnd);
    if (!w) {
        return 0;
    }
    WNDPROC proc;
    {
        Lock lock(StateMutex());
        proc = w->proc;
    }
    return proc ? proc(hwnd, msg, wp, lp) : DefWindowProcW(hwnd, msg, wp, lp);
}

bool IsDescendant(const WindowTable& t, HWND parent, HWND child)
{
    while (child) {
        auto it = t.windows.find(reinterpret_cast<uintptr_t>(child));
        if (it == t.windows.end() || !(it->second->style & WS_CHILD)) {
            return false;
        }
        child = it->second->parent;
        if (child == parent) {
            return true;
        }
    }
    return false;
}

void Unlink(WindowTable& t, const WindowPtr& w)
{
    if (auto* s = Siblings(t, *w)) {
        s->erase(std::remove(s->begin(), s->end(), w->handle), s->end());
    }
}

void SendDestroy(HWND hwnd)
{
    Call(hwnd, WM_DESTROY, 0, 0);
    WindowPtr w = FindWindowQuiet(hwnd);
    if (!w) {
        return;
    }
    std::vector<HWND> children;
    {
        Lock lock(StateMutex());
        children = w->children;
    }
    for (HWND c : children) {
        SendDestroy(c);
    }
}

void SendNcDestroyAndRemove(HWND hwnd)
{
    WindowPtr w = FindWindowQuiet(hwnd);
    if (!w) {
        return;
    }
    std::vector<HWND> children;
    {
        Lock lock(StateMutex());
        children = w->children;
    }
    for (HWND c : children) {
        SendNcDestroyAndRemove(c);
    }
    Call(hwnd, WM_NCDESTROY, 0, 0);
    HFONT font = nullptr;
    {
        Lock lock(StateMutex());
        if (w->dialog) {
            std::swap(font, w->dialog->font);
        }
    }
    if (font) {
        DeleteObject(font);
    }
    Lock lock(StateMutex());
    WindowTable& t = Table();
    Unlink(t, w);
    t.windows.erase(reinterpret_cast<uintptr_t>(hwnd));
    if (t.focus == hwnd) {
        t.focus = nullptr;
    }
    if (t.active == hwnd) {
        t.active = nullptr;
    }
}

HWND ParentOf(const Window& w)
{
    return (w.style & WS_CHILD) ? w.parent : nullptr;
}

} // namespace

WindowPtr FindWindowQuiet(HWND hwnd)
{
    Lock lock(StateMutex());
    auto& t = Table();
    auto it = t.windows.find(reinterpret_cast<uintptr_t>(hwnd));
    return it == t.windows.end() ? nullptr : it->second;
}

WindowPtr FindWindowObject(HWND hwnd)
{
    WindowPtr w = FindWindowQuiet(hwnd);
    if (!w) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    }
    return w;
}

void NotifyParent(HWND control, WORD code)
{
    WindowPtr w = FindWindowQuiet(control);
    if (!w) {
        return;
    }
    HWND parent;
    WORD id;
    {
        Lock lock(StateMutex());
        parent = ParentOf(*w);
        id = WORD(w->id);
    }
    if (parent) {
        SendMessageW(parent, WM_COMMAND, MAKEWPARAM(id, code), reinterpret_cast<LPARAM>(control));
    }
}

bool DispatchPostedMessage()
{
    MSG m;
    {
        Lock lock(StateMutex());
        auto& q = Table().posted;
        if (q.empty()) {
            return false;
        }
        m = q.front();
        q.pop_front();
    }
    if (m.hwnd && IsWindow(m.hwnd)) {
        SendMessageW(m.hwnd, m.message, m.wParam, m.lParam);
    }
    return true;
}

size_t LiveWindowCount()
{
    Lock lock(StateMutex());
    return Table().windows.size();
}

} // namespace host::detail

using namespace host::detail;

namespace host {

void SetScreenSize(int cx, int cy)
{
    Lock lock(StateMutex());
    Table().screenX = cx;
    Table().screenY = cy;
}

int MessageBeepCount()
{
    Lock lock(StateMutex());
    return Table().beeps;
}

} // namespace host

extern "C" {

BOOL WINAPI MessageBeep(UINT)
{
    Lock lock(StateMutex());
    ++Table().beeps;
    return TRUE;
}

ATOM WINAPI RegisterClassExW(const WNDCLASSEXW* wc)
{
    if (!wc || wc->cbSize != sizeof(WNDCLASSEXW) || !wc->lpszClassName || !wc->lpfnWndProc ||
        wc->cbWndExtra < 0 || wc->cbWndExtra > 40000) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    Lock lock(StateMutex());
    WindowTable& t = Table();
    if (FindClass(t, wc->lpszClassName)) {
        SetLastError(ERROR_CLASS_ALREADY_EXISTS);
        return 0;
    }
    if (IS_INTRESOURCE(wc->lpszClassName)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    WindowClass c;
    c.name = FromW(wc->lpszClassName);
    c.proc = wc->lpfnWndProc;
    c.wndExtra = wc->cbWndExtra;
    c.instance = wc->hInstance;
    c.atom = t.nextAtom++;
    t.classes.push_back(c);
    return c.atom;
}

ATOM WINAPI RegisterClassW(const WNDCLASSW* wc)
{
    if (!wc) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    WNDCLASSEXW ex{sizeof(WNDCLASSEXW), wc->style,        wc->lpfnWndProc,   wc->cbClsExtra,
                   wc->cbWndExtra,      wc->hInstance,    wc->hIcon,         wc->hCursor,
                   wc->hbrBackground,   wc->lpszMenuName, wc->lpszClassName, nullptr};
    return RegisterClassExW(&ex);
}

BOOL WINAPI UnregisterClassW(LPCWSTR lpClassName, HINSTANCE)
{
    Lock lock(StateMutex());
    WindowTable& t = Table();
    WindowClass* c = FindClass(t, lpClassName);
    if (!c || c->kind != ControlKind::None) {
        SetLastError(ERROR_CLASS_DOES_NOT_EXIST);
        return FALSE;
    }
    t.classes.erase(t.classes.begin() + (c - t.classes.data()));
    return TRUE;
}

int WINAPI GetClassNameW(HWND hWnd, LPWSTR lpClassName, int nMaxCount)
{
    WindowPtr w = FindWindowObject(hWnd);
    if (!w || !lpClassName || nMaxCount <= 0) {
        if (w) {
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
        }
        return 0;
    }
    Lock lock(StateMutex());
    size_t n = std::min<size_t>(w->className.size(), size_t(nMaxCount - 1));
    std::memcpy(lpClassName, w->className.data(), n * sizeof(WCHAR));
    lpClassName[n] = 0;
    return int(n);
}

HWND WINAPI CreateWindowExW(DWORD dwExStyle, LPCWSTR lpClassName, LPCWSTR lpWindowName,
                            DWORD dwStyle, int X, int Y, int nWidth, int nHeight, HWND hWndParent,
                            HMENU hMenu, HINSTANCE hInstance, LPVOID lpParam)
{
    auto w = std::make_shared<Window>();
    if (hWndParent == GetDesktopWindow()) {
        // A window on the desktop is a top-level window without an owner.
        hWndParent = nullptr;
        dwStyle &= ~DWORD(WS_CHILD);
    }
    {
        Lock lock(StateMutex());
        WindowTable& t = Table();
        WindowClass* c = lpClassName ? FindClass(t, lpClassName) : nullptr;
        if (!c) {
            SetLastError(ERROR_CANNOT_FIND_WND_CLASS);
            return nullptr;
        }
        if (hWndParent && hWndParent != HWND_MESSAGE &&
            !t.windows.count(reinterpret_cast<uintptr_t>(hWndParent))) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
            return nullptr;
        }
        if ((dwStyle & WS_CHILD) && !hWndParent) {
            SetLastError(1406); // ERROR_TLW_WITH_WSCHILD
            return nullptr;
        }
        w->className = c->name;
        w->kind = c->kind;
        w->proc = c->proc;
        w->extra.assign(size_t(c->wndExtra), 0);
        if (c->kind == ControlKind::Dialog) {
            w->dialog = std::make_unique<DialogData>();
        }
        w->instance = hInstance;
        w->style = dwStyle;
        w->exStyle = dwExStyle;
        if (X == CW_USEDEFAULT) {
            X = Y = 100;
        }
        if (nWidth == CW_USEDEFAULT) {
            nWidth = 640;
            nHeight = 480;
        }
        w->rect = RECT{X, Y, X + nWidth, Y + nHeight};
        if (dwStyle & WS_CHILD) {
            w->parent = hWndParent;
            w->id = reinterpret_cast<LONG_PTR>(hMenu);
        } else if (hWndParent && hWndParent != HWND_MESSAGE) {
            // The owner of a top-level window is the top-level window of the one given.
            HWND owner = hWndParent;
            for (;;) {
                auto& o = t.windows.at(reinterpret_cast<uintptr_t>(owner));
                if (!(o->style & WS_CHILD) || !o->parent) {
                    break;
                }
                owner = o->parent;
            }
            w->owner = owner;
        }
        w->handle = reinterpret_cast<HWND>(t.next);
        t.next += 2;
        t.windows.emplace(reinterpret_cast<uintptr_t>(w->handle), w);
        if (auto* s = Siblings(t, *w)) {
            if (dwStyle & WS_CHILD) {
                s->push_back(w->handle);
            } else {
                s->insert(s->begin(), w->handle);
            }
        }
    }
    HWND hwnd = w->handle;
    CREATESTRUCTW cs{lpParam, hInstance, hMenu,         hWndParent,   nHeight,     nWidth,
                     Y,       X,         LONG(dwStyle), lpWindowName, lpClassName, dwExStyle};
    if (!SendMessageW(hwnd, WM_NCCREATE, 0, reinterpret_cast<LPARAM>(&cs))) {
        DestroyWindow(hwnd);
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (!IsWindow(hwnd) || SendMessageW(hwnd, WM_CREATE, 0, reinterpret_cast<LPARAM>(&cs)) == -1) {
        DestroyWindow(hwnd);
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (!IsWindow(hwnd)) {
        return nullptr;
    }
    RECT client{};
    GetClientRect(hwnd, &client);
    SendMessageW(hwnd, WM_SIZE, 0, MAKELPARAM(client.right, client.bottom));
    SendMessageW(hwnd, WM_MOVE, 0, MAKELPARAM(w->rect.left, w->rect.top));
    return IsWindow(hwnd) ? hwnd : nullptr;
}

BOOL WINAPI DestroyWindow(HWND hWnd)
{
    WindowPtr w = FindWindowObject(hWnd);
    if (!w) {
        return FALSE;
    }
    std::vector<HWND> owned;
    HWND parent = nullptr;
    bool hadFocus = false;
    {
        Lock lock(StateMutex());
        if (w->destroying) {
            return TRUE;
        }
        w->destroying = true;
        WindowTable& t = Table();
        for (auto& [value, o] : t.windows) {
            if (o->owner == hWnd && !(o->style & WS_CHILD)) {
                owned.push_back(o->handle);
            }
        }
        parent = ParentOf(*w);
        hadFocus = t.focus && (t.focus == hWnd || IsDescendant(t, hWnd, t.focus));
    }
    for (HWND o : owned) {
        DestroyWindow(o);
    }
    if (hadFocus) {
        // Focus goes to the parent, as it does on Windows; a top-level window leaves none.
        if (!parent || !SetFocus(parent)) {
            SetFocus(nullptr);
        }
    }
    if (w->dialog) {
        Lock lock(StateMutex());
        w->dialog->ended = true;
    }
    SendDestroy(hWnd);
    SendNcDestroyAndRemove(hWnd);
    return TRUE;
}

BOOL WINAPI IsWindow(HWND hWnd)
{
    return hWnd == GetDesktopWindow() || FindWindowQuiet(hWnd) != nullptr;
}

BOOL WINAPI IsChild(HWND hWndParent, HWND hWnd)
{
    Lock lock(StateMutex());
    return IsDescendant(Table(), hWndParent, hWnd);
}

HWND WINAPI GetParent(HWND hWnd)
{
    WindowPtr w = FindWindowObject(hWnd);
    if (!w) {
        return nullptr;
    }
    Lock lock(StateMutex());
    if (w->style & WS_CHILD) {
        return w->parent;
    }
    return (w->style & WS_POPUP) ? w->owner : nullptr;
}

HWND WINAPI GetAncestor(HWND hwnd, UINT gaFlags)
{
    WindowPtr w = FindWindowObject(hwnd);
    if (!w) {
        return nullptr;
    }
    Lock lock(StateMutex());
    WindowTable& t = Table();
    if (gaFlags == GA_PARENT) {
        return (w->style & WS_CHILD) ? w->parent : GetDesktopWindow();
    }
    WindowPtr root = w;
    while ((root->style & WS_CHILD) && root->parent) {
        root = t.windows.at(reinterpret_cast<uintptr_t>(root->parent));
    }
    if (gaFlags == GA_ROOTOWNER) {
        while (root->owner && t.windows.count(reinterpret_cast<uintptr_t>(root->owner))) {
            root = t.windows.at(reinterpret_cast<uintptr_t>(root->owner));
        }
    }
    return root->handle;
}

HWND WINAPI GetWindow(HWND hWnd, UINT uCmd)
{
    WindowPtr w = FindWindowObject(hWnd);
    if (!w) {
        return nullptr;
    }
    Lock lock(StateMutex());
    WindowTable& t = Table();
    switch (uCmd) {
    case GW_CHILD:
        return w->children.empty() ? nullptr : w->children.front();
    case GW_OWNER:
        return (w->style & WS_CHILD) ? nullptr : w->owner;
    case GW_HWNDFIRST:
    case GW_HWNDLAST:
    case GW_HWNDNEXT:
    case GW_HWNDPREV: {
        std::vector<HWND>* s = Siblings(t, *w);
        if (!s || s->empty()) {
            return nullptr;
        }
        if (uCmd == GW_HWNDFIRST) {
            return s->front();
        }
        if (uCmd == GW_HWNDLAST) {
            return s->back();
        }
        auto it = std::find(s->begin(), s->end(), hWnd);
        if (it == s->end()) {
            return nullptr;
        }
        if (uCmd == GW_HWNDNEXT) {
            return ++it == s->end() ? nullptr : *it;
        }
        return it == s->begin() ? nullptr : *--it;
    }
    case GW_ENABLEDPOPUP:
        return nullptr;
    default:
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
}

HWND WINAPI GetDlgItem(HWND hDlg, int nIDDlgItem)
{
    WindowPtr w = FindWindowObject(hDlg);
    if (!w) {
        return nullptr;
    }
    Lock lock(StateMutex());
    WindowTable& t = Table();
    for (HWND c : w->children) {
        auto& child = t.windows.at(reinterpret_cast<uintptr_t>(c));
        if (int(child->id) == nIDDlgItem) {
            return c;
        }
    }
    SetLastError(ERROR_CONTROL_ID_NOT_FOUND);
    return nullptr;
}

int WINAPI GetDlgCtrlID(HWND hWnd)
{
    WindowPtr w = FindWindowObject(hWnd);
    if (!w) {
        return 0;
    }
    Lock lock(StateMutex());
    return (w->style & WS_CHILD) ? int(w->id) : 0;
}

BOOL WINAPI SetWindowTextW(HWND hWnd, LPCWSTR lpString)
{
    if (!FindWindowObject(hWnd)) {
        return FALSE;
    }
    return SendMessageW(hWnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(lpString)) > 0;
}

int WINAPI GetWindowTextW(HWND hWnd, LPWSTR lpString, int nMaxCount)
{
    if (!FindWindowObject(hWnd) || !lpString || nMaxCount <= 0) {
        return 0;
    }
    lpString[0] = 0;
    return int(
        SendMessageW(hWnd, WM_GETTEXT, WPARAM(nMaxCount), reinterpret_cast<LPARAM>(lpString)));
}

int WINAPI GetWindowTextLengthW(HWND hWnd)
{
    if (!FindWindowObject(hWnd)) {
        return 0;
    }
    return int(SendMessageW(hWnd, WM_GETTEXTLENGTH, 0, 0));
}

LONG_PTR WINAPI GetWindowLongPtrW(HWND hWnd, int nIndex)
{
    WindowPtr w = FindWindowObject(hWnd);
    if (!w) {
        return 0;
    }
    Lock lock(StateMutex());
    switch (nIndex) {
    case GWL_STYLE:
        return LONG(w->style);
    case GWL_EXSTYLE:
        return LONG(w->exStyle);
    case GWLP_ID:
        return w->id;
    case GWLP_USERDATA:
        return w->userData;
    case GWLP_WNDPROC:
        return reinterpret_cast<LONG_PTR>(w->proc);
    case GWLP_HINSTANCE:
        return reinterpret_cast<LONG_PTR>(w->instance);
    case GWLP_HWNDPARENT:
        return reinterpret_cast<LONG_PTR>((w->style & WS_CHILD) ? w->parent : w->owner);
    default:
        break;
    }
    if (w->dialog) {
        switch (nIndex) {
        case DWLP_MSGRESULT:
            return w->dialog->msgResult;
        case DWLP_DLGPROC:
            return reinterpret_cast<LONG_PTR>(w->dialog->proc);
        case DWLP_USER:
            return w->dialog->user;
        }
    }
    if (nIndex >= 0 && size_t(nIndex) + sizeof(LONG_PTR) <= w->extra.size()) {
        LONG_PTR v;
        std::memcpy(&v, w->extra.data() + nIndex, sizeof v);
        return v;
    }
    SetLastError(ERROR_INVALID_INDEX);
    return 0;
}

LONG_PTR WINAPI SetWindowLongPtrW(HWND hWnd, int nIndex, LONG_PTR dwNewLong)
{
    WindowPtr w = FindWindowObject(hWnd);
    if (!w) {
        return 0;
    }
    Lock lock(StateMutex());
    LONG_PTR old = 0;
    switch (nIndex) {
    case GWL_STYLE:
        old = LONG(w->style);
        w->style = DWORD(dwNewLong);
        return old;
    case GWL_EXSTYLE:
        old = LONG(w->exStyle);
        w->exStyle = DWORD(dwNewLong);
        return old;
    case GWLP_ID:
        old = w->id;
        w->id = dwNewLong;
        return old;
    case GWLP_USERDATA:
        old = w->userData;
        w->userData = dwNewLong;
        return old;
    case GWLP_WNDPROC:
        if (!dwNewLong) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return 0;
        }
        old = reinterpret_cast<LONG_PTR>(w->proc);
        w->proc = reinterpret_cast<WNDPROC>(dwNewLong);
        return old;
    case GWLP_HINSTANCE:
        old = reinterpret_cast<LONG_PTR>(w->instance);
        w->instance = reinterpret_cast<HINSTANCE>(dwNewLong);
        return old;
    case GWLP_HWNDPARENT:
        if (w->style & WS_CHILD) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return 0;
        }
        old = reinterpret_cast<LONG_PTR>(w->owner);
        w->owner = reinterpret_cast<HWND>(dwNewLong);
        return old;
    default:
        break;
    }
    if (w->dialog) {
        switch (nIndex) {
        case DWLP_MSGRESULT:
            old = w->dialog->msgResult;
            w->dialog->msgResult = dwNewLong;
            return old;
        case DWLP_DLGPROC:
            old = reinterpret_cast<LONG_PTR>(w->dialog->proc);
            w->dialog->proc = reinterpret_cast<DLGPROC>(dwNewLong);
            return old;
        case DWLP_USER:
            old = w->dialog->user;
            w->dialog->user = dwNewLong;
            return old;
        }
    }
    if (nIndex >= 0 && size_t(nIndex) + sizeof(LONG_PTR) <= w->extra.size()) {
        std::memcpy(&old, w->extra.data() + nIndex, sizeof old);
        std::memcpy(w->extra.data() + nIndex, &dwNewLong, sizeof dwNewLong);
        return old;
    }
    SetLastError(ERROR_INVALID_INDEX);
    return 0;
}

LONG WINAPI GetWindowLongW(HWND hWnd, int nIndex)
{
    if (nIndex == GWLP_WNDPROC || nIndex == GWLP_HINSTANCE || nIndex == GWLP_HWNDPARENT) {
        SetLastError(ERROR_INVALID_INDEX); // pointers do not fit 32 bits on x64
        return 0;
    }
    WindowPtr w = FindWindowObject(hWnd);
    if (!w) {
        return 0;
    }
    if (nIndex >= 0 && !w->dialog) {
        Lock lock(StateMutex());
        if (size_t(nIndex) + sizeof(LONG) > w->extra.size()) {
            SetLastError(ERROR_INVALID_INDEX);
            return 0;
        }
        LONG v;
        std::memcpy(&v, w->extra.data() + nIndex, sizeof v);
        return v;
    }
    return LONG(GetWindowLongPtrW(hWnd, nIndex));
}

LONG WINAPI SetWindowLongW(HWND hWnd, int nIndex, LONG dwNewLong)
{
    if (nIndex == GWLP_WNDPROC || nIndex == GWLP_HINSTANCE || nIndex == GWLP_HWNDPARENT) {
        SetLastError(ERROR_INVALID_INDEX);
        return 0;
    }
    WindowPtr w = FindWindowObject(hWnd);
    if (!w) {
        return 0;
    }
    if (nIndex >= 0 && !w->dialog) {
        Lock lock(StateMutex());
        if (size_t(nIndex) + sizeof(LONG) > w->extra.size()) {
            SetLastError(ERROR_INVALID_INDEX);
            return 0;
        }
        LONG old;
        std::memcpy(&old, w->extra.data() + nIndex, sizeof old);
        std::memcpy(w->extra.data() + nIndex, &dwNewLong, sizeof dwNewLong);
        return old;
    }
    return LONG(SetWindowLongPtrW(hWnd, nIndex, dwNewLong));
}

LRESULT WINAPI CallWindowProcW(WNDPROC lpPrevWndFunc, HWND hWnd, UINT Msg, WPARAM wParam,
                               LPARAM lParam)
{
    return lpPrevWndFunc ? lpPrevWndFunc(hWnd, Msg, wParam, lParam) : 0;
}

LRESULT WINAPI DefWindowProcW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    WindowPtr w = FindWindowQuiet(hWnd);
    if (!w) {
        return 0;
    }
    switch (Msg) {
    case WM_NCCREATE: {
        auto* cs = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        Lock lock(StateMutex());
        // An ordinal in place of a text (0xFFFF, id) names an image, not a caption.
        if (cs && cs->lpszName && !IS_INTRESOURCE(cs->lpszName) && cs->lpszName[0] != 0xFFFF) {
            w->text = FromW(cs->lpszName);
        }
        return TRUE;
    }
    case WM_SETTEXT: {
        Lock lock(StateMutex());
        w->text = FromW(reinterpret_cast<LPCWSTR>(lParam));
        return TRUE;
    }
    case WM_GETTEXT: {
        auto* buffer = reinterpret_cast<LPWSTR>(lParam);
        if (!buffer || wParam == 0) {
            return 0;
        }
        Lock lock(StateMutex());
        size_t n = std::min<size_t>(w->text.size(), wParam - 1);
        std::memcpy(buffer, w->text.data(), n * sizeof(WCHAR));
        buffer[n] = 0;
        return LRESULT(n);
    }
    case WM_GETTEXTLENGTH: {
        Lock lock(StateMutex());
        return LRESULT(w->text.size());
    }
    case WM_SETFONT: {
        Lock lock(StateMutex());
        w->font = reinterpret_cast<HANDLE>(wParam);
        return 0;
    }
    case WM_GETFONT: {
        Lock lock(StateMutex());
        return reinterpret_cast<LRESULT>(w->font);
    }
    case WM_CLOSE:
        DestroyWindow(hWnd);
        return 0;
    default:
        return 0;
    }
}

LRESULT WINAPI SendMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    if (!FindWindowObject(hWnd)) {
        return 0;
    }
    return Call(hWnd, Msg, wParam, lParam);
}

BOOL WINAPI PostMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    if (hWnd && !FindWindowObject(hWnd)) {
        return FALSE;
    }
    Lock lock(StateMutex());
    Table().posted.push_back(MSG{hWnd, Msg, wParam, lParam, 0, {}});
    return TRUE;
}

BOOL WINAPI EnableWindow(HWND hWnd, BOOL bEnable)
{
    WindowPtr w = FindWindowObject(hWnd);
    if (!w) {
        return FALSE;
    }
    bool wasDisabled, focusInside;
    {
        Lock lock(StateMutex());
        wasDisabled = (w->style & WS_DISABLED) != 0;
        if (wasDisabled == !bEnable) {
            return wasDisabled;
        }
        if (bEnable) {
            w->style &= ~DWORD(WS_DISABLED);
        } else {
            w->style |= WS_DISABLED;
        }
        WindowTable& t = Table();
        focusInside = t.focus && (t.focus == hWnd || IsDescendant(t, hWnd, t.focus));
    }
    if (!bEnable && focusInside) {
        SetFocus(nullptr);
    }
    SendMessageW(hWnd, WM_ENABLE, bEnable ? TRUE : FALSE, 0);
    return wasDisabled;
}

BOOL WINAPI IsWindowEnabled(HWND hWnd)
{
    WindowPtr w = FindWindowObject(hWnd);
    if (!w) {
        return FALSE;
    }
    Lock lock(StateMutex());
    return !(w->style & WS_DISABLED);
}

BOOL WINAPI ShowWindow(HWND hWnd, int nCmdShow)
{
    WindowPtr w = FindWindowObject(hWnd);
    if (!w) {
        return FALSE;
    }
    if (nCmdShow < SW_HIDE || nCmdShow > SW_FORCEMINIMIZE) {
        SetLastError(ERROR_INVALID_SHOWWIN_COMMAND);
        return FALSE;
    }
    bool wasVisible, show = nCmdShow != SW_HIDE, focusInside = false;
    HWND parent;
    {
        Lock lock(StateMutex());
        wasVisible = (w->style & WS_VISIBLE) != 0;
        w->maximized = nCmdShow == SW_SHOWMAXIMIZED;
        w->minimized = nCmdShow == SW_SHOWMINIMIZED || nCmdShow == SW_MINIMIZE ||
                       nCmdShow == SW_SHOWMINNOACTIVE || nCmdShow == SW_FORCEMINIMIZE;
        if (show) {
            w->style |= WS_VISIBLE;
        } else {
            w->style &= ~DWORD(WS_VISIBLE);
            WindowTable& t = Table();
            focusInside = t.focus && (t.focus == hWnd || IsDescendant(t, hWnd, t.focus));
        }
        parent = ParentOf(*w);
    }
    if (wasVisible != show) {
        SendMessageW(hWnd, WM_SHOWWINDOW, show, 0);
    }
    if (focusInside && (!parent || !SetFocus(parent))) {
        SetFocus(nullptr);
    }
    return wasVisible;
}

BOOL WINAPI IsWindowVisible(HWND hWnd)
{
    Lock lock(StateMutex());
    WindowTable& t = Table();
    while (hWnd) {
        auto it = t.windows.find(reinterpret_cast<uintptr_t>(hWnd));
        if (it == t.windows.end() || !(it->second->style & WS_VISIBLE)) {
            return FALSE;
        }
        hWnd = ParentOf(*it->second);
    }
    return TRUE;
}

HWND WINAPI SetFocus(HWND hWnd)
{
    HWND previous;
    {
        Lock lock(StateMutex());
        WindowTable& t = Table();
        previous = t.focus;
        if (hWnd) {
            // Neither a disabled window nor one inside a disabled window takes the focus.
            HWND h = hWnd;
            while (h) {
                auto it = t.windows.find(reinterpret_cast<uintptr_t>(h));
                if (it == t.windows.end()) {
                    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
                    return nullptr;
                }
                if (it->second->style & WS_DISABLED) {
                    return nullptr;
                }
                if (!ParentOf(*it->second)) {
                    t.active = h;
                }
                h = ParentOf(*it->second);
            }
        }
        if (previous == hWnd) {
            return previous;
        }
        t.focus = hWnd;
    }
    if (previous && IsWindow(previous)) {
        SendMessageW(previous, WM_KILLFOCUS, reinterpret_cast<WPARAM>(hWnd), 0);
    }
    if (hWnd && IsWindow(hWnd)) {
        SendMessageW(hWnd, WM_SETFOCUS, reinterpret_cast<WPARAM>(previous), 0);
    }
    return previous;
}

HWND WINAPI GetFocus(void)
{
    Lock lock(StateMutex());
    return Table().focus;
}

HWND WINAPI GetActiveWindow(void)
{
    Lock lock(StateMutex());
    return Table().active;
}

HWND WINAPI SetActiveWindow(HWND hWnd)
{
    WindowPtr w = FindWindowObject(hWnd);
    if (!w) {
        return nullptr;
    }
    Lock lock(StateMutex());
    HWND previous = Table().active;
    Table().active = hWnd;
    return previous;
}

BOOL WINAPI SetForegroundWindow(HWND hWnd)
{
    return SetActiveWindow(hWnd) || IsWindow(hWnd);
}

// The desktop window covers the screen.
static bool DesktopRect(HWND hWnd, LPRECT lpRect)
{
    if (hWnd != GetDesktopWindow() || !lpRect) {
        return false;
    }
    *lpRect = RECT{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    return true;
}

BOOL WINAPI GetWindowRect(HWND hWnd, LPRECT lpRect)
{
    if (DesktopRect(hWnd, lpRect)) {
        return TRUE;
    }
    WindowPtr w = FindWindowObject(hWnd);
    if (!w || !lpRect) {
        if (w) {
            SetLastError(ERROR_NOACCESS);
        }
        return FALSE;
    }
    Lock lock(StateMutex());
    WindowTable& t = Table();
    RECT r = w->rect;
    if ((w->style & WS_CHILD) && w->parent) {
        POINT o = ClientOrigin(t, *t.windows.at(reinterpret_cast<uintptr_t>(w->parent)));
        r.left += o.x;
        r.right += o.x;
        r.top += o.y;
        r.bottom += o.y;
    }
    *lpRect = r;
    return TRUE;
}

BOOL WINAPI GetClientRect(HWND hWnd, LPRECT lpRect)
{
    if (DesktopRect(hWnd, lpRect)) {
        return TRUE;
    }
    WindowPtr w = FindWindowObject(hWnd);
    if (!w || !lpRect) {
        if (w) {
            SetLastError(ERROR_NOACCESS);
        }
        return FALSE;
    }
    Lock lock(StateMutex());
    RECT in = Insets(w->style, w->exStyle);
    LONG cx = w->rect.right - w->rect.left - in.left - in.right;
    LONG cy = w->rect.bottom - w->rect.top - in.top - in.bottom;
    *lpRect = RECT{0, 0, std::max<LONG>(cx, 0), std::max<LONG>(cy, 0)};
    return TRUE;
}

BOOL WINAPI SetWindowPos(HWND hWnd, HWND hWndInsertAfter, int X, int Y, int cx, int cy, UINT uFlags)
{
    WindowPtr w = FindWindowObject(hWnd);
    if (!w) {
        return FALSE;
    }
    bool moved = false, sized = false;
    RECT r;
    {
        Lock lock(StateMutex());
        WindowTable& t = Table();
        r = w->rect;
        if (!(uFlags & SWP_NOMOVE) && (X != r.left || Y != r.top)) {
            r = RECT{X, Y, X + (r.right - r.left), Y + (r.bottom - r.top)};
            moved = true;
        }
        if (!(uFlags & SWP_NOSIZE) && (cx != r.right - r.left || cy != r.bottom - r.top)) {
            r.right = r.left + std::max(cx, 0);
            r.bottom = r.top + std::max(cy, 0);
            sized = true;
        }
        w->rect = r;
        if (!(uFlags & SWP_NOZORDER)) {
            if (auto* s = Siblings(t, *w)) {
                s->erase(std::remove(s->begin(), s->end(), hWnd), s->end());
                if (hWndInsertAfter == HWND_BOTTOM) {
                    s->push_back(hWnd);
                } else if (hWndInsertAfter == HWND_TOP || hWndInsertAfter == HWND_TOPMOST ||
                           hWndInsertAfter == HWND_NOTOPMOST) {
                    s->insert(s->begin(), hWnd);
                } else {
                    auto it = std::find(s->begin(), s->end(), hWndInsertAfter);
                    s->insert(it == s->end() ? s->end() : it + 1, hWnd);
                }
            }
        }
    }
    if (uFlags & SWP_SHOWWINDOW) {
        ShowWindow(hWnd, SW_SHOWNA);
    } else if (uFlags & SWP_HIDEWINDOW) {
        ShowWindow(hWnd, SW_HIDE);
    }
    if (moved) {
        SendMessageW(hWnd, WM_MOVE, 0, MAKELPARAM(r.left, r.top));
    }
    if (sized) {
        RECT client{};
        GetClientRect(hWnd, &client);
        SendMessageW(hWnd, WM_SIZE, 0, MAKELPARAM(client.right, client.bottom));
    }
    return TRUE;
}

BOOL WINAPI MoveWindow(HWND hWnd, int X, int Y, int nWidth, int nHeight, BOOL)
{
    return SetWindowPos(hWnd, nullptr, X, Y, nWidth, nHeight, SWP_NOZORDER | SWP_NOACTIVATE);
}

BOOL WINAPI GetWindowPlacement(HWND hWnd, WINDOWPLACEMENT* lpwndpl)
{
    WindowPtr w = FindWindowObject(hWnd);
    if (!w || !lpwndpl) {
        if (w) {
            SetLastError(ERROR_NOACCESS);
        }
        return FALSE;
    }
    Lock lock(StateMutex());
    lpwndpl->length = sizeof(WINDOWPLACEMENT);
    lpwndpl->flags = 0;
    lpwndpl->showCmd = w->minimized   ? SW_SHOWMINIMIZED
                       : w->maximized ? SW_SHOWMAXIMIZED
                                      : SW_SHOWNORMAL;
    lpwndpl->ptMinPosition = POINT{-1, -1};
    lpwndpl->ptMaxPosition = POINT{-1, -1};
    lpwndpl->rcNormalPosition = w->rect;
    return TRUE;
}

BOOL WINAPI SetWindowPlacement(HWND hWnd, const WINDOWPLACEMENT* lpwndpl)
{
    if (!lpwndpl || lpwndpl->length != sizeof(WINDOWPLACEMENT)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (!FindWindowObject(hWnd)) {
        return FALSE;
    }
    const RECT& r = lpwndpl->rcNormalPosition;
    SetWindowPos(hWnd, nullptr, r.left, r.top, r.right - r.left, r.bottom - r.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    ShowWindow(hWnd, int(lpwndpl->showCmd));
    return TRUE;
}

BOOL WINAPI ClientToScreen(HWND hWnd, LPPOINT lpPoint)
{
    WindowPtr w = FindWindowObject(hWnd);
    if (!w || !lpPoint) {
        return FALSE;
    }
    Lock lock(StateMutex());
    POINT o = ClientOrigin(Table(), *w);
    lpPoint->x += o.x;
    lpPoint->y += o.y;
    return TRUE;
}

BOOL WINAPI ScreenToClient(HWND hWnd, LPPOINT lpPoint)
{
    WindowPtr w = FindWindowObject(hWnd);
    if (!w || !lpPoint) {
        return FALSE;
    }
    Lock lock(StateMutex());
    POINT o = ClientOrigin(Table(), *w);
    lpPoint->x -= o.x;
    lpPoint->y -= o.y;
    return TRUE;
}

int WINAPI MapWindowPoints(HWND hWndFrom, HWND hWndTo, LPPOINT lpPoints, UINT cPoints)
{
    POINT from{0, 0}, to{0, 0};
    if ((hWndFrom && hWndFrom != GetDesktopWindow() && !ClientToScreen(hWndFrom, &from)) ||
        (hWndTo && hWndTo != GetDesktopWindow() && !ClientToScreen(hWndTo, &to))) {
        return 0;
    }
    LONG dx = from.x - to.x, dy = from.y - to.y;
    for (UINT i = 0; lpPoints && i < cPoints; ++i) {
        lpPoints[i].x += dx;
        lpPoints[i].y += dy;
    }
    return MAKELONG(WORD(SHORT(dx)), WORD(SHORT(dy)));
}

BOOL WINAPI InvalidateRect(HWND hWnd, const RECT*, BOOL)
{
    return !hWnd || FindWindowObject(hWnd) != nullptr;
}

BOOL WINAPI UpdateWindow(HWND hWnd)
{
    return FindWindowObject(hWnd) != nullptr;
}

// The work area is the screen less a 40-pixel task bar at the bottom; other parameters are
// not kept by the host.
BOOL WINAPI SystemParametersInfoW(UINT uiAction, UINT, PVOID pvParam, UINT)
{
    if (uiAction == SPI_GETWORKAREA && pvParam) {
        *static_cast<RECT*>(pvParam) =
            RECT{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN) - 40};
        return TRUE;
    }
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

// The metrics of a 96-DPI Windows 10 desktop on the host's screen.
int WINAPI GetSystemMetrics(int nIndex)
{
    Lock lock(StateMutex());
    const WindowTable& t = Table();
    switch (nIndex) {
    case SM_CXSCREEN:
    case SM_CXVIRTUALSCREEN:
    case SM_CXFULLSCREEN:
        return t.screenX;
    case SM_CYSCREEN:
    case SM_CYVIRTUALSCREEN:
        return t.screenY;
    case SM_CYFULLSCREEN:
        return t.screenY - 23 - 40; // less the caption and the task bar
    case SM_CXMAXIMIZED:
        return t.screenX + 16;
    case SM_CYMAXIMIZED:
        return t.screenY - 40 + 16;
    case SM_XVIRTUALSCREEN:
    case SM_YVIRTUALSCREEN:
        return 0;
    case SM_CMONITORS:
        return 1;
    case SM_CXVSCROLL:
    case SM_CYHSCROLL:
        return 17;
    case SM_CYCAPTION:
        return 23;
    case SM_CXBORDER:
    case SM_CYBORDER:
        return 1;
    case SM_CXDLGFRAME:
    case SM_CYDLGFRAME:
        return 3;
    case SM_CXFRAME:
    case SM_CYFRAME:
    case SM_CXPADDEDBORDER:
        return 4;
    case SM_CXEDGE:
    case SM_CYEDGE:
        return 2;
    case SM_CXICON:
    case SM_CYICON:
        return 32;
    case SM_CXSMICON:
    case SM_CYSMICON:
        return 16;
    case SM_CYMENU:
        return 20;
    case SM_CXMIN:
        return 136;
    case SM_CYMIN:
        return 39;
    default:
        return 0;
    }
}

} // extern "C"
