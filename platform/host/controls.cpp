// The standard controls of user32 and comctl32 on the host: buttons, edits, statics, combo
// boxes, list boxes, up-downs and trackbars, with the messages, return values and
// notifications of Windows. Each keeps its state in its window's ControlData; no procedure
// holds the host's lock while it sends a message.
#include "wininternal.h"

#include <algorithm>

namespace host::detail {

namespace {

WindowPtr Self(HWND hwnd)
{
    return FindWindowQuiet(hwnd);
}

HWND ParentOf(HWND hwnd)
{
    WindowPtr w = Self(hwnd);
    if (!w) {
        return nullptr;
    }
    Lock lock(StateMutex());
    return (w->style & WS_CHILD) ? w->parent : nullptr;
}

DWORD StyleOf(const WindowPtr& w)
{
    Lock lock(StateMutex());
    return w->style;
}

// ---- Lists of the combo box and the list box ------------------------------------------------

int CompareNoCase(const std::u16string& a, const std::u16string& b)
{
    size_t n = std::min(a.size(), b.size());
    for (size_t i = 0; i < n; ++i) {
        char16_t x = FoldChar(a[i]), y = FoldChar(b[i]);
        if (x != y) {
            return x < y ? -1 : 1;
        }
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

bool StartsWithNoCase(const std::u16string& text, const std::u16string& prefix)
{
    return text.size() >= prefix.size() &&
           CompareNoCase(text.substr(0, prefix.size()), prefix) == 0;
}

// The first item after start (all items when start is -1 or out of range), wrapping around.
int FindItem(const std::vector<ListItem>& items, WPARAM start, LPCWSTR text, bool exact)
{
    int n = int(items.size());
    // An empty text matches nothing, not every item as a prefix would.
    if (!text || !text[0] || n == 0) {
        return -1;
    }
    std::u16string s = FromW(text);
    int from = int(start);
    int first = (from < 0 || from >= n) ? 0 : (from + 1) % n;
    for (int k = 0; k < n; ++k) {
        int i = (first + k) % n;
        if (exact ? CompareNoCase(items[i].text, s) == 0 : StartsWithNoCase(items[i].text, s)) {
            return i;
        }
    }
    return -1;
}

int InsertItem(ControlData& c, int index, std::u16string text, bool sorted)
{
    if (sorted) {
        index = 0;
        while (index < int(c.items.size()) && CompareNoCase(c.items[index].text, text) <= 0) {
            ++index;
        }
    } else if (index < 0) {
        index = int(c.items.size());
    }
    if (index > int(c.items.size())) {
        return -1;
    }
    c.items.insert(c.items.begin() + index, ListItem{std::move(text), 0});
    if (c.selection >= index) {
        ++c.selection;
    }
    return index;
}

// The messages the two lists share; false when msg is not one of them. Combo box messages are
// mapped to their list box twins by the caller.
bool ListMessage(const WindowPtr& w, UINT msg, WPARAM wp, LPARAM lp, bool sorted, LRESULT* result)
{
    Lock lock(StateMutex());
    ControlData& c = w->control;
    int n = int(c.items.size());
    int index = int(wp);
    bool inRange = index >= 0 && index < n;
    switch (msg) {
    case LB_ADDSTRING:
        *result = InsertItem(c, -1, FromW(reinterpret_cast<LPCWSTR>(lp)), sorted);
        return true;
    case LB_INSERTSTRING:
        *result = InsertItem(c, index, FromW(reinterpret_cast<LPCWSTR>(lp)), false);
        return true;
    case LB_DELETESTRING:
        if (!inRange) {
            *result = LB_ERR;
            return true;
        }
        c.items.erase(c.items.begin() + index);
        if (c.selection == index) {
            c.selection = -1;
        } else if (c.selection > index) {
            --c.selection;
        }
        *result = LRESULT(c.items.size());
        return true;
    case LB_RESETCONTENT:
        c.items.clear();
        c.selection = -1;
        *result = 0;
        return true;
    case LB_GETCOUNT:
        *result = n;
        return true;
    case LB_GETCURSEL:
        *result = c.selection;
        return true;
    case LB_GETITEMDATA:
        *result = inRange ? c.items[index].data : LB_ERR;
        return true;
    case LB_SETITEMDATA:
        if (!inRange) {
            *result = LB_ERR;
            return true;
        }
        c.items[index].data = lp;
        *result = LB_OKAY;
        return true;
    case LB_GETTEXT:
        if (!inRange || !lp) {
            *result = LB_ERR;
            return true;
        }
        PutW(reinterpret_cast<LPWSTR>(lp), c.items[index].text);
        *result = LRESULT(c.items[index].text.size());
        return true;
    case LB_GETTEXTLEN:
        *result = inRange ? LRESULT(c.items[index].text.size()) : LB_ERR;
        return true;
    case LB_FINDSTRING:
    case LB_FINDSTRINGEXACT:
        *result = FindItem(c.items, wp, reinterpret_cast<LPCWSTR>(lp), msg == LB_FINDSTRINGEXACT);
        return true;
    default:
        return false;
    }
}

UINT ComboToList(UINT msg)
{
    switch (msg) {
    case CB_ADDSTRING:
        return LB_ADDSTRING;
    case CB_INSERTSTRING:
        return LB_INSERTSTRING;
    case CB_DELETESTRING:
        return LB_DELETESTRING;
    case CB_GETCOUNT:
        return LB_GETCOUNT;
    case CB_GETCURSEL:
        return LB_GETCURSEL;
    case CB_GETITEMDATA:
        return LB_GETITEMDATA;
    case CB_SETITEMDATA:
        return LB_SETITEMDATA;
    case CB_GETLBTEXT:
        return LB_GETTEXT;
    case CB_GETLBTEXTLEN:
        return LB_GETTEXTLEN;
    case CB_FINDSTRING:
        return LB_FINDSTRING;
    case CB_FINDSTRINGEXACT:
        return LB_FINDSTRINGEXACT;
    default:
        return 0;
    }
}

// ---- Buttons --------------------------------------------------------------------------------

bool IsCheckable(DWORD type)
{
    return type == BS_CHECKBOX || type == BS_AUTOCHECKBOX || type == BS_RADIOBUTTON ||
           type == BS_3STATE || type == BS_AUTO3STATE || type == BS_AUTORADIOBUTTON;
}

// An auto radio button's group: from the WS_GROUP sibling at or before it to the next one.
void UncheckGroup(HWND button)
{
    HWND first = button;
    for (HWND h = button; h; h = GetWindow(h, GW_HWNDPREV)) {
        first = h;
        if (GetWindowLongW(h, GWL_STYLE) & WS_GROUP) {
            break;
        }
    }
    for (HWND h = first; h; h = GetWindow(h, GW_HWNDNEXT)) {
        if (h != first && (GetWindowLongW(h, GWL_STYLE) & WS_GROUP)) {
            break;
        }
        WindowPtr o = Self(h);
        if (h != button && o && o->kind == ControlKind::Button &&
            (StyleOf(o) & BS_TYPEMASK) == BS_AUTORADIOBUTTON &&
            SendMessageW(h, BM_GETCHECK, 0, 0) != BST_UNCHECKED) {
            SendMessageW(h, BM_SETCHECK, BST_UNCHECKED, 0);
        }
    }
}

void ClickButton(HWND hwnd, const WindowPtr& w)
{
    DWORD type = StyleOf(w) & BS_TYPEMASK;
    if (type == BS_AUTOCHECKBOX || type == BS_AUTO3STATE) {
        int check;
        {
            Lock lock(StateMutex());
            check = w->control.check;
        }
        int next = type == BS_AUTO3STATE ? (check + 1) % 3 : (check ? 0 : 1);
        SendMessageW(hwnd, BM_SETCHECK, WPARAM(next), 0);
    } else if (type == BS_AUTORADIOBUTTON) {
        SendMessageW(hwnd, BM_SETCHECK, BST_CHECKED, 0);
        UncheckGroup(hwnd);
    }
    if (type != BS_GROUPBOX) {
        NotifyParent(hwnd, BN_CLICKED);
    }
}

// ---- Edits ----------------------------------------------------------------------------------

void NotifyChange(HWND hwnd)
{
    NotifyParent(hwnd, EN_UPDATE);
    NotifyParent(hwnd, EN_CHANGE);
}

// Replaces the selection with text as typing does; false (with a beep) when the limit, the
// style or the read-only state refuses it.
bool ReplaceSelection(const WindowPtr& w, const std::u16string& input, bool typed)
{
    Lock lock(StateMutex());
    ControlData& c = w->control;
    std::u16string text = input;
    if (w->style & ES_UPPERCASE) {
        for (auto& ch : text) {
            ch = (ch >= u'a' && ch <= u'z') ? char16_t(ch - 32) : ch;
        }
    } else if (w->style & ES_LOWERCASE) {
        for (auto& ch : text) {
            ch = FoldChar(ch);
        }
    }
    size_t start = std::min<size_t>(c.selStart, w->text.size());
    size_t end = std::min<size_t>(std::max(c.selStart, c.selEnd), w->text.size());
    size_t room =
        c.limit > w->text.size() - (end - start) ? c.limit - (w->text.size() - (end - start)) : 0;
    if (text.size() > room) {
        if (typed) {
            return false;
        }
        text.resize(room);
    }
    w->text.replace(start, end - start, text);
    c.selStart = c.selEnd = DWORD(start + text.size());
    c.modified = true;
    return true;
}

void Beep()
{
    MessageBeep(0);
}

LRESULT EditChar(HWND hwnd, const WindowPtr& w, WCHAR ch)
{
    DWORD style = StyleOf(w);
    if (style & ES_READONLY) {
        Beep();
        return 0;
    }
    if (ch == VK_BACK) {
        bool changed = false;
        {
            Lock lock(StateMutex());
            ControlData& c = w->control;
            size_t start = std::min<size_t>(std::min(c.selStart, c.selEnd), w->text.size());
            size_t end = std::min<size_t>(std::max(c.selStart, c.selEnd), w->text.size());
            if (start == end && start > 0) {
                --start;
            }
            if (end > start) {
                w->text.erase(start, end - start);
                c.selStart = c.selEnd = DWORD(start);
                c.modified = changed = true;
            }
        }
        if (changed) {
            NotifyChange(hwnd);
        }
        return 0;
    }
    if (ch < 0x20) {
        return 0; // other control characters do not edit a single line
    }
    if ((style & ES_NUMBER) && !(ch >= u'0' && ch <= u'9')) {
        Beep();
        return 0;
    }
    if (!ReplaceSelection(w, std::u16string(1, ch), true)) {
        NotifyParent(hwnd, EN_MAXTEXT);
        return 0;
    }
    NotifyChange(hwnd);
    return 0;
}

// ---- Up-downs -------------------------------------------------------------------------------

std::u16string FormatBuddy(int value, int base, bool thousands)
{
    if (base == 16) {
        char buffer[16];
        snprintf(buffer, sizeof buffer, "0x%04X", unsigned(value));
        return Utf8ToUtf16(buffer);
    }
    std::string digits = std::to_string(value < 0 ? -(long long)value : (long long)value);
    std::string grouped = value < 0 ? "-" : "";
    for (size_t i = 0; i < digits.size(); ++i) {
        if (thousands && i && (digits.size() - i) % 3 == 0) {
            grouped += ',';
        }
        grouped += digits[i];
    }
    return Utf8ToUtf16(grouped);
}

void SetBuddyText(HWND updown)
{
    WindowPtr w = Self(updown);
    if (!w) {
        return;
    }
    HWND buddy;
    std::u16string text;
    {
        Lock lock(StateMutex());
        if (!(w->style & UDS_SETBUDDYINT) || !w->control.buddy) {
            return;
        }
        buddy = w->control.buddy;
        text = FormatBuddy(w->control.position, w->control.base, !(w->style & UDS_NOTHOUSANDS));
    }
    // comctl32 leaves a buddy that already reads the number alone (compared without regard to
    // case), so the buddy's owner hears of no change.
    WCHAR old[64] = {};
    GetWindowTextW(buddy, old, 64);
    if (CompareNoCase(FromW(old), text) == 0) {
        return;
    }
    SetWindowTextW(buddy, text.c_str());
}

int Clamp(int v, int a, int b)
{
    return std::clamp(v, std::min(a, b), std::max(a, b));
}

void AttachBuddy(HWND updown, HWND buddy)
{
    WindowPtr w = Self(updown);
    WindowPtr b = Self(buddy);
    if (!w || !b) {
        return;
    }
    RECT br, ur;
    DWORD style;
    {
        Lock lock(StateMutex());
        style = w->style;
        br = b->rect;
        ur = w->rect;
    }
    if (!(style & (UDS_ALIGNRIGHT | UDS_ALIGNLEFT))) {
        return;
    }
    // The up-down takes its width from the buddy's side and the buddy's height.
    int width = ur.right - ur.left, height = br.bottom - br.top;
    if (style & UDS_ALIGNRIGHT) {
        MoveWindow(buddy, br.left, br.top, br.right - br.left - width, height, FALSE);
        MoveWindow(updown, br.right - width, br.top, width, height, FALSE);
    } else {
        MoveWindow(buddy, br.left + width, br.top, br.right - br.left - width, height, FALSE);
        MoveWindow(updown, br.left, br.top, width, height, FALSE);
    }
}

void SetTrackbarPos(const WindowPtr& w, int pos)
{
    Lock lock(StateMutex());
    w->control.position = Clamp(pos, w->control.rangeMin, w->control.rangeMax);
}

} // namespace

bool ReadBuddyPosition(HWND updown, int* position)
{
    WindowPtr w = Self(updown);
    if (!w) {
        return false;
    }
    HWND buddy;
    int base, lo, hi;
    {
        Lock lock(StateMutex());
        buddy = w->control.buddy;
        base = w->control.base;
        lo = std::min(w->control.rangeMin, w->control.rangeMax);
        hi = std::max(w->control.rangeMin, w->control.rangeMax);
    }
    WindowPtr b = Self(buddy);
    if (!b || b->kind != ControlKind::Edit) {
        return false;
    }
    WCHAR buffer[64];
    int n = GetWindowTextW(buddy, buffer, 64);
    std::string text;
    for (int i = 0; i < n; ++i) {
        if (buffer[i] != u',' && buffer[i] > 0x20 && buffer[i] < 0x80) {
            text.push_back(char(buffer[i]));
        }
    }
    if (text.empty()) {
        return false;
    }
    char* end = nullptr;
    long long v = strtoll(text.c_str(), &end, base == 16 ? 16 : 10);
    if (*end || v < lo || v > hi) {
        return false;
    }
    *position = int(v);
    return true;
}

bool SpinUpDown(HWND updown, bool up)
{
    WindowPtr w = Self(updown);
    HWND parent = ParentOf(updown);
    if (!w || w->kind != ControlKind::UpDown) {
        return false;
    }
    int pos;
    if (ReadBuddyPosition(updown, &pos)) {
        Lock lock(StateMutex());
        w->control.position = pos;
    }
    NMUPDOWN nm{};
    {
        Lock lock(StateMutex());
        nm.hdr = NMHDR{updown, UINT_PTR(w->id), UINT(UDN_DELTAPOS)};
        nm.iPos = w->control.position;
        // comctl32 counts "up" towards the maximum: with a reversed range, such as the
        // default 100..0, the up arrow gives -1.
        bool reversed = w->control.rangeMax < w->control.rangeMin;
        nm.iDelta = (up != reversed) ? 1 : -1;
    }
    if (parent &&
        SendMessageW(parent, WM_NOTIFY, WPARAM(nm.hdr.idFrom), reinterpret_cast<LPARAM>(&nm))) {
        return true; // the parent refused the change
    }
    bool horizontal;
    {
        Lock lock(StateMutex());
        ControlData& c = w->control;
        int lo = std::min(c.rangeMin, c.rangeMax), hi = std::max(c.rangeMin, c.rangeMax);
        long long next = (long long)c.position + nm.iDelta;
        if ((w->style & UDS_WRAP) && (next < lo || next > hi)) {
            next = next < lo ? hi : lo;
        }
        c.position = int(std::clamp<long long>(next, lo, hi));
        pos = c.position;
        horizontal = (w->style & UDS_HORZ) != 0;
    }
    SetBuddyText(updown);
    if (parent) {
        UINT msg = horizontal ? WM_HSCROLL : WM_VSCROLL;
        SendMessageW(parent, msg, MAKEWPARAM(SB_THUMBPOSITION, pos),
                     reinterpret_cast<LPARAM>(updown));
        SendMessageW(parent, msg, MAKEWPARAM(SB_ENDSCROLL, pos), reinterpret_cast<LPARAM>(updown));
    }
    return true;
}

void SlideTrackbar(HWND trackbar, int position)
{
    WindowPtr w = Self(trackbar);
    HWND parent = ParentOf(trackbar);
    if (!w) {
        return;
    }
    SetTrackbarPos(w, position);
    int pos;
    UINT msg;
    {
        Lock lock(StateMutex());
        pos = w->control.position;
        msg = (w->style & TBS_VERT) ? WM_VSCROLL : WM_HSCROLL;
    }
    if (parent) {
        auto lp = reinterpret_cast<LPARAM>(trackbar);
        SendMessageW(parent, msg, MAKEWPARAM(TB_THUMBTRACK, pos), lp);
        SendMessageW(parent, msg, MAKEWPARAM(TB_THUMBPOSITION, pos), lp);
        SendMessageW(parent, msg, MAKEWPARAM(TB_ENDTRACK, 0), lp);
    }
}

LRESULT CALLBACK ButtonProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp)
{
    WindowPtr w = Self(hwnd);
    if (!w) {
        return 0;
    }
    DWORD style = StyleOf(w);
    DWORD type = style & BS_TYPEMASK;
    switch (msg) {
    case BM_GETCHECK: {
        Lock lock(StateMutex());
        return IsCheckable(type) ? w->control.check : BST_UNCHECKED;
    }
    case BM_SETCHECK: {
        Lock lock(StateMutex());
        if (IsCheckable(type)) {
            // A state beyond the button's last is its last: any non-zero value checks a
            // two-state box.
            bool threeState = type == BS_3STATE || type == BS_AUTO3STATE;
            WPARAM last = threeState ? BST_INDETERMINATE : BST_CHECKED;
            w->control.check = int(wp > last ? last : wp);
        }
        return 0;
    }
    case BM_GETSTATE: {
        Lock lock(StateMutex());
        return (IsCheckable(type) ? w->control.check : 0) | (w->control.pushed ? BST_PUSHED : 0) |
               (GetFocus() == hwnd ? BST_FOCUS : 0);
    }
    case BM_SETSTATE: {
        Lock lock(StateMutex());
        w->control.pushed = wp != 0;
        return 0;
    }
    case BM_SETSTYLE: {
        Lock lock(StateMutex());
        w->style = (w->style & 0xFFFF0000u) | LOWORD(wp);
        return 0;
    }
    case BM_CLICK:
        ClickButton(hwnd, w);
        return 0;
    case BM_SETIMAGE: {
        Lock lock(StateMutex());
        HANDLE old = w->control.image;
        w->control.image = reinterpret_cast<HANDLE>(lp);
        return reinterpret_cast<LRESULT>(old);
    }
    case BM_GETIMAGE: {
        Lock lock(StateMutex());
        return reinterpret_cast<LRESULT>(w->control.image);
    }
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        if (style & BS_NOTIFY) {
            NotifyParent(hwnd, msg == WM_SETFOCUS ? BN_SETFOCUS : BN_KILLFOCUS);
        }
        return 0;
    default:
        return DefWindowProcW(hwnd, msg, wp, lp);
    }
}

LRESULT CALLBACK EditProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp)
{
    WindowPtr w = Self(hwnd);
    if (!w) {
        return 0;
    }
    switch (msg) {
    case WM_SETTEXT: {
        bool multiline;
        {
            Lock lock(StateMutex());
            w->text = FromW(reinterpret_cast<LPCWSTR>(lp));
            w->control.selStart = w->control.selEnd = 0;
            w->control.modified = false;
            multiline = (w->style & ES_MULTILINE) != 0;
        }
        if (!multiline) {
            NotifyChange(hwnd);
        }
        return TRUE;
    }
    case EM_LIMITTEXT: {
        Lock lock(StateMutex());
        w->control.limit = wp ? DWORD(wp) : ((w->style & ES_MULTILINE) ? 0xFFFFFFFFu : 0x7FFFFFFEu);
        return 0;
    }
    case EM_GETLIMITTEXT: {
        Lock lock(StateMutex());
        return LRESULT(w->control.limit);
    }
    case EM_SETSEL: {
        Lock lock(StateMutex());
        auto size = int(w->text.size());
        int start = int(wp), end = int(lp);
        if (start == -1) {
            w->control.selStart = w->control.selEnd;
            return 0;
        }
        if (end < 0 || end > size) {
            end = size;
        }
        start = std::clamp(start, 0, size);
        w->control.selStart = DWORD(std::min(start, end));
        w->control.selEnd = DWORD(std::max(start, end));
        return 0;
    }
    case EM_GETSEL: {
        Lock lock(StateMutex());
        DWORD s = w->control.selStart, e = w->control.selEnd;
        if (wp) {
            *reinterpret_cast<DWORD*>(wp) = s;
        }
        if (lp) {
            *reinterpret_cast<DWORD*>(lp) = e;
        }
        return (s > 0xFFFF || e > 0xFFFF) ? -1 : MAKELRESULT(s, e);
    }
    case EM_REPLACESEL:
        ReplaceSelection(w, FromW(reinterpret_cast<LPCWSTR>(lp)), false);
        NotifyChange(hwnd);
        return 0;
    case EM_GETMODIFY: {
        Lock lock(StateMutex());
        return w->control.modified;
    }
    case EM_SETMODIFY: {
        Lock lock(StateMutex());
        w->control.modified = wp != 0;
        return 0;
    }
    case EM_SETREADONLY: {
        Lock lock(StateMutex());
        if (wp) {
            w->style |= ES_READONLY;
        } else {
            w->style &= ~DWORD(ES_READONLY);
        }
        return TRUE;
    }
    case WM_CHAR:
        return EditChar(hwnd, w, WCHAR(wp));
    case WM_KEYDOWN:
        if (wp == VK_DELETE) {
            if (StyleOf(w) & ES_READONLY) {
                return 0;
            }
            bool changed = false;
            {
                Lock lock(StateMutex());
                ControlData& c = w->control;
                size_t start = std::min<size_t>(c.selStart, w->text.size());
                size_t end = std::min<size_t>(std::max(c.selStart, c.selEnd), w->text.size());
                if (start == end && end < w->text.size()) {
                    ++end;
                }
                if (end > start) {
                    w->text.erase(start, end - start);
                    c.selStart = c.selEnd = DWORD(start);
                    c.modified = changed = true;
                }
            }
            if (changed) {
                NotifyChange(hwnd);
            }
        } else if (wp == VK_HOME || wp == VK_END) {
            Lock lock(StateMutex());
            w->control.selStart = w->control.selEnd = wp == VK_HOME ? 0 : DWORD(w->text.size());
        }
        return 0;
    case WM_CLEAR: {
        bool changed = false;
        {
            Lock lock(StateMutex());
            ControlData& c = w->control;
            if (!(w->style & ES_READONLY) && c.selEnd > c.selStart && c.selEnd <= w->text.size()) {
                w->text.erase(c.selStart, c.selEnd - c.selStart);
                c.selEnd = c.selStart;
                changed = true;
            }
        }
        if (changed) {
            NotifyChange(hwnd);
        }
        return 0;
    }
    case WM_SETFOCUS:
        NotifyParent(hwnd, EN_SETFOCUS);
        return 0;
    case WM_KILLFOCUS:
        NotifyParent(hwnd, EN_KILLFOCUS);
        return 0;
    default:
        return DefWindowProcW(hwnd, msg, wp, lp);
    }
}

LRESULT CALLBACK StaticProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp)
{
    WindowPtr w = Self(hwnd);
    if (!w) {
        return 0;
    }
    switch (msg) {
    case WM_NCCREATE: {
        auto* cs = reinterpret_cast<const CREATESTRUCTW*>(lp);
        if (cs && cs->lpszName && !IS_INTRESOURCE(cs->lpszName) && cs->lpszName[0] == 0xFFFF) {
            Lock lock(StateMutex());
            w->control.resourceId = cs->lpszName[1];
        }
        return DefWindowProcW(hwnd, msg, wp, lp);
    }
    case STM_SETIMAGE:
    case STM_SETICON: {
        Lock lock(StateMutex());
        HANDLE& slot =
            (msg == STM_SETICON || wp == IMAGE_ICON) ? w->control.icon : w->control.image;
        HANDLE old = slot;
        slot = reinterpret_cast<HANDLE>(msg == STM_SETICON ? wp : WPARAM(lp));
        return reinterpret_cast<LRESULT>(old);
    }
    case STM_GETIMAGE:
    case STM_GETICON: {
        Lock lock(StateMutex());
        bool icon = msg == STM_GETICON || wp == IMAGE_ICON;
        return reinterpret_cast<LRESULT>(icon ? w->control.icon : w->control.image);
    }
    default:
        return DefWindowProcW(hwnd, msg, wp, lp);
    }
}

LRESULT CALLBACK ComboBoxProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp)
{
    WindowPtr w = Self(hwnd);
    if (!w) {
        return 0;
    }
    DWORD style = StyleOf(w);
    DWORD type = style & 3;
    HWND edit;
    {
        Lock lock(StateMutex());
        edit = w->control.edit;
    }
    // Sets the edit's text without the notifications of a person's typing.
    auto setEditText = [&](const std::u16string& text) {
        if (!edit) {
            return;
        }
        {
            Lock lock(StateMutex());
            w->control.quietEdit = true;
        }
        SetWindowTextW(edit, text.c_str());
        Lock lock(StateMutex());
        w->control.quietEdit = false;
    };
    if (UINT list = ComboToList(msg)) {
        LRESULT r = CB_ERR;
        ListMessage(w, list, wp, lp, (style & CBS_SORT) != 0, &r);
        return r;
    }
    switch (msg) {
    case WM_CREATE:
        if (type == CBS_DROPDOWN || type == CBS_SIMPLE) {
            RECT r{};
            GetClientRect(hwnd, &r);
            HWND e = CreateWindowExW(0, u"Edit", u"",
                                     WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL |
                                         ((style & CBS_UPPERCASE) ? ES_UPPERCASE : 0),
                                     0, 0, r.right, std::min<LONG>(r.bottom, 21), hwnd,
                                     reinterpret_cast<HMENU>(1001), nullptr, nullptr);
            Lock lock(StateMutex());
            w->control.edit = e;
        }
        return 0;
    case CB_DELETESTRING:
    case CB_RESETCONTENT: {
        LRESULT r = CB_ERR;
        ListMessage(w, msg == CB_RESETCONTENT ? LB_RESETCONTENT : LB_DELETESTRING, wp, lp, false,
                    &r);
        if (msg == CB_RESETCONTENT) {
            setEditText(u""); // the edit empties with the list
        }
        return r;
    }
    case CB_SETCURSEL: {
        int index = int(wp);
        std::u16string text;
        bool valid;
        {
            Lock lock(StateMutex());
            valid = index >= 0 && index < int(w->control.items.size());
            w->control.selection = valid ? index : -1;
            if (valid) {
                text = w->control.items[size_t(index)].text;
            }
        }
        setEditText(text);
        return valid ? index : CB_ERR;
    }
    case CB_SELECTSTRING: {
        int index;
        {
            Lock lock(StateMutex());
            index = FindItem(w->control.items, wp, reinterpret_cast<LPCWSTR>(lp), false);
        }
        return index < 0 ? CB_ERR : ComboBoxProc(hwnd, CB_SETCURSEL, WPARAM(index), 0);
    }
    case CB_LIMITTEXT:
        if (edit) {
            SendMessageW(edit, EM_LIMITTEXT, wp, 0);
        }
        return TRUE;
    case CB_GETEDITSEL:
        return edit ? SendMessageW(edit, EM_GETSEL, wp, lp) : CB_ERR;
    case CB_SETEDITSEL:
        if (!edit) {
            return CB_ERR;
        }
        SendMessageW(edit, EM_SETSEL, WPARAM(SHORT(LOWORD(lp))), LPARAM(SHORT(HIWORD(lp))));
        return TRUE;
    case CB_SHOWDROPDOWN:
    case CB_SETEXTENDEDUI:
        return TRUE;
    case CB_GETDROPPEDSTATE:
    case CB_GETEXTENDEDUI:
    case CB_SETITEMHEIGHT:
    case CB_SETTOPINDEX:
    case CB_SETDROPPEDWIDTH:
        return 0;
    case CB_GETITEMHEIGHT:
        return 15;
    case CB_INITSTORAGE:
        return LRESULT(wp);
    case WM_SETTEXT:
        if (!edit) {
            return CB_ERR;
        }
        setEditText(FromW(reinterpret_cast<LPCWSTR>(lp)));
        return TRUE;
    case WM_GETTEXT:
    case WM_GETTEXTLENGTH: {
        if (edit) {
            return SendMessageW(edit, msg, wp, lp);
        }
        std::u16string text;
        {
            Lock lock(StateMutex());
            if (w->control.selection >= 0) {
                text = w->control.items[size_t(w->control.selection)].text;
            }
        }
        if (msg == WM_GETTEXTLENGTH) {
            return LRESULT(text.size());
        }
        auto* buffer = reinterpret_cast<LPWSTR>(lp);
        if (!buffer || !wp) {
            return 0;
        }
        size_t n = std::min<size_t>(text.size(), wp - 1);
        std::memcpy(buffer, text.data(), n * sizeof(WCHAR));
        buffer[n] = 0;
        return LRESULT(n);
    }
    case WM_COMMAND:
        if (edit && reinterpret_cast<HWND>(lp) == edit) {
            bool quiet;
            {
                Lock lock(StateMutex());
                quiet = w->control.quietEdit;
                if (!quiet && HIWORD(wp) == EN_CHANGE) {
                    w->control.selection = -1; // typed text is no item of the list
                }
            }
            switch (HIWORD(wp)) {
            case EN_CHANGE:
                if (!quiet) {
                    NotifyParent(hwnd, CBN_EDITCHANGE);
                }
                break;
            case EN_UPDATE:
                if (!quiet) {
                    NotifyParent(hwnd, CBN_EDITUPDATE);
                }
                break;
            case EN_SETFOCUS:
                NotifyParent(hwnd, CBN_SETFOCUS);
                break;
            case EN_KILLFOCUS:
                // Leaving a combo box ends any selection in it as cancelled.
                NotifyParent(hwnd, CBN_SELENDCANCEL);
                NotifyParent(hwnd, CBN_KILLFOCUS);
                break;
            }
        }
        return 0;
    case WM_SETFOCUS:
        if (edit) {
            SetFocus(edit);
        } else {
            NotifyParent(hwnd, CBN_SETFOCUS);
        }
        return 0;
    case WM_KILLFOCUS:
        if (!edit) {
            NotifyParent(hwnd, CBN_SELENDCANCEL);
            NotifyParent(hwnd, CBN_KILLFOCUS);
        }
        return 0;
    case WM_ENABLE:
        if (edit) {
            EnableWindow(edit, BOOL(wp));
        }
        return 0;
    case WM_SETFONT:
        if (edit) {
            SendMessageW(edit, WM_SETFONT, wp, lp);
        }
        return DefWindowProcW(hwnd, msg, wp, lp);
    default:
        return DefWindowProcW(hwnd, msg, wp, lp);
    }
}

LRESULT CALLBACK ListBoxProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp)
{
    WindowPtr w = Self(hwnd);
    if (!w) {
        return 0;
    }
    DWORD style = StyleOf(w);
    LRESULT r = LB_ERR;
    if (msg == LB_SETITEMDATA && int(wp) == -1) {
        Lock lock(StateMutex());
        for (auto& item : w->control.items) {
            item.data = lp;
        }
        return LB_OKAY;
    }
    if (ListMessage(w, msg, wp, lp, (style & LBS_SORT) != 0, &r)) {
        return r;
    }
    switch (msg) {
    case LB_SETCURSEL: {
        Lock lock(StateMutex());
        int index = int(wp);
        if (index == -1) {
            w->control.selection = -1;
            return LB_ERR;
        }
        if (index < 0 || index >= int(w->control.items.size())) {
            return LB_ERR;
        }
        w->control.selection = index;
        return index;
    }
    case LB_GETSEL: {
        Lock lock(StateMutex());
        int index = int(wp);
        if (index < 0 || index >= int(w->control.items.size())) {
            return LB_ERR;
        }
        return index == w->control.selection ? 1 : 0;
    }
    case LB_SELECTSTRING: {
        int index;
        {
            Lock lock(StateMutex());
            index = FindItem(w->control.items, wp, reinterpret_cast<LPCWSTR>(lp), false);
        }
        return index < 0 ? LB_ERR : ListBoxProc(hwnd, LB_SETCURSEL, WPARAM(index), 0);
    }
    case LB_GETSELCOUNT: {
        Lock lock(StateMutex());
        if (!(style & (LBS_MULTIPLESEL | LBS_EXTENDEDSEL))) {
            return LB_ERR;
        }
        return w->control.selection >= 0 ? 1 : 0;
    }
    case LB_GETTOPINDEX:
    case LB_SETTOPINDEX:
        return 0;
    case LB_GETITEMHEIGHT:
        return 13;
    case LB_SETITEMHEIGHT:
        return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        if (style & LBS_NOTIFY) {
            NotifyParent(hwnd, msg == WM_SETFOCUS ? LBN_SETFOCUS : LBN_KILLFOCUS);
        }
        return 0;
    default:
        return DefWindowProcW(hwnd, msg, wp, lp);
    }
}

LRESULT CALLBACK UpDownProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp)
{
    WindowPtr w = Self(hwnd);
    if (!w) {
        return 0;
    }
    switch (msg) {
    case WM_CREATE: {
        HWND buddy = nullptr;
        {
            // Windows' default range runs from 100 down to 0.
            Lock lock(StateMutex());
            w->control.rangeMin = 100;
            w->control.rangeMax = 0;
            w->control.position = 0;
        }
        if (StyleOf(w) & UDS_AUTOBUDDY) {
            buddy = GetWindow(hwnd, GW_HWNDPREV);
        }
        if (buddy) {
            UpDownProc(hwnd, UDM_SETBUDDY, reinterpret_cast<WPARAM>(buddy), 0);
        }
        return 0;
    }
    case UDM_SETBUDDY: {
        HWND old;
        {
            Lock lock(StateMutex());
            old = w->control.buddy;
            w->control.buddy = reinterpret_cast<HWND>(wp);
        }
        AttachBuddy(hwnd, reinterpret_cast<HWND>(wp));
        return reinterpret_cast<LRESULT>(old);
    }
    case UDM_GETBUDDY: {
        Lock lock(StateMutex());
        return reinterpret_cast<LRESULT>(w->control.buddy);
    }
    case UDM_SETRANGE: {
        Lock lock(StateMutex());
        w->control.rangeMax = SHORT(LOWORD(lp));
        w->control.rangeMin = SHORT(HIWORD(lp));
        return 0;
    }
    case UDM_GETRANGE: {
        Lock lock(StateMutex());
        return MAKELRESULT(WORD(w->control.rangeMax), WORD(w->control.rangeMin));
    }
    case UDM_SETRANGE32: {
        Lock lock(StateMutex());
        w->control.rangeMin = int(wp);
        w->control.rangeMax = int(lp);
        return 0;
    }
    case UDM_GETRANGE32: {
        Lock lock(StateMutex());
        if (wp) {
            *reinterpret_cast<int*>(wp) = w->control.rangeMin;
        }
        if (lp) {
            *reinterpret_cast<int*>(lp) = w->control.rangeMax;
        }
        return 0;
    }
    case UDM_SETPOS:
    case UDM_SETPOS32: {
        int old;
        {
            Lock lock(StateMutex());
            old = w->control.position;
            int pos = msg == UDM_SETPOS ? SHORT(LOWORD(lp)) : int(lp);
            w->control.position = Clamp(pos, w->control.rangeMin, w->control.rangeMax);
        }
        SetBuddyText(hwnd);
        return msg == UDM_SETPOS ? LRESULT(WORD(old)) : LRESULT(old);
    }
    case UDM_GETPOS:
    case UDM_GETPOS32: {
        bool error = false;
        int pos;
        if (StyleOf(w) & UDS_SETBUDDYINT) {
            if (ReadBuddyPosition(hwnd, &pos)) {
                Lock lock(StateMutex());
                w->control.position = pos;
            } else {
                error = true;
            }
        }
        {
            Lock lock(StateMutex());
            pos = w->control.position;
        }
        if (msg == UDM_GETPOS32) {
            if (lp) {
                *reinterpret_cast<BOOL*>(lp) = error;
            }
            return pos;
        }
        return MAKELRESULT(WORD(pos), error ? 1 : 0);
    }
    case UDM_SETBASE: {
        Lock lock(StateMutex());
        if (wp != 10 && wp != 16) {
            return 0;
        }
        int old = w->control.base;
        w->control.base = int(wp);
        return old;
    }
    case UDM_GETBASE: {
        Lock lock(StateMutex());
        return w->control.base;
    }
    case UDM_SETACCEL:
        return TRUE;
    case UDM_GETACCEL:
        return 0;
    default:
        return DefWindowProcW(hwnd, msg, wp, lp);
    }
}

LRESULT CALLBACK TrackbarProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp)
{
    WindowPtr w = Self(hwnd);
    if (!w) {
        return 0;
    }
    if (msg < TBM_GETPOS || msg > TBM_SETPOSNOTIFY) {
        return DefWindowProcW(hwnd, msg, wp, lp);
    }
    Lock lock(StateMutex());
    ControlData& c = w->control;
    auto defaultPage = [&c] {
        if (!c.userPageSize) {
            c.pageSize = std::max(1, (c.rangeMax - c.rangeMin) / 5);
        }
    };
    switch (msg) {
    case TBM_GETPOS:
        return c.position;
    case TBM_SETPOS:
    case TBM_SETPOSNOTIFY:
        c.position = Clamp(int(lp), c.rangeMin, c.rangeMax);
        return 0;
    case TBM_SETRANGE:
        c.rangeMin = SHORT(LOWORD(lp));
        c.rangeMax = SHORT(HIWORD(lp));
        c.position = Clamp(c.position, c.rangeMin, c.rangeMax);
        defaultPage();
        return 0;
    case TBM_SETRANGEMIN:
        c.rangeMin = int(lp);
        c.position = Clamp(c.position, c.rangeMin, c.rangeMax);
        defaultPage();
        return 0;
    case TBM_SETRANGEMAX:
        c.rangeMax = int(lp);
        c.position = Clamp(c.position, c.rangeMin, c.rangeMax);
        defaultPage();
        return 0;
    case TBM_GETRANGEMIN:
        return c.rangeMin;
    case TBM_GETRANGEMAX:
        return c.rangeMax;
    case TBM_SETTICFREQ:
        c.ticFrequency = std::max(1, int(wp));
        return 0;
    case TBM_GETNUMTICS:
        if (w->style & TBS_NOTICKS) {
            return 0;
        }
        return (w->style & TBS_AUTOTICKS) ? (c.rangeMax - c.rangeMin) / c.ticFrequency + 1 : 2;
    case TBM_SETPAGESIZE: {
        int old = c.pageSize;
        c.pageSize = int(lp);
        c.userPageSize = true;
        return old;
    }
    case TBM_GETPAGESIZE:
        return c.pageSize;
    case TBM_SETLINESIZE: {
        int old = c.lineSize;
        c.lineSize = int(lp);
        return old;
    }
    case TBM_GETLINESIZE:
        return c.lineSize;
    case TBM_SETBUDDY: {
        HWND old = c.buddy;
        c.buddy = reinterpret_cast<HWND>(lp);
        return reinterpret_cast<LRESULT>(old);
    }
    case TBM_GETBUDDY:
        return reinterpret_cast<LRESULT>(c.buddy);
    case TBM_SETTIC:
        return TRUE;
    case TBM_CLEARTICS:
    case TBM_SETSEL:
    case TBM_SETSELSTART:
    case TBM_SETSELEND:
    case TBM_CLEARSEL:
    case TBM_GETSELSTART:
    case TBM_GETSELEND:
        return 0;
    default:
        return DefWindowProcW(hwnd, msg, wp, lp);
    }
}

} // namespace host::detail

extern "C" BOOL WINAPI InitCommonControlsEx(const INITCOMMONCONTROLSEX* picce)
{
    return picce && picce->dwSize == sizeof(INITCOMMONCONTROLSEX);
}
