// The description of a window's controls through the messages every control answers.
#include "controlstate.h"

#include <cstring>

namespace usersim {

namespace {

std::u16string FromWide(const WCHAR* text, size_t cch)
{
    std::u16string out(cch, u'\0');
    if (cch)
        memcpy(out.data(), text, cch * sizeof(WCHAR));
    return out;
}

std::u16string WindowText(HWND window)
{
    int length = GetWindowTextLengthW(window);
    if (length <= 0)
        return {};
    std::vector<WCHAR> buffer(size_t(length) + 1, 0);
    int got = GetWindowTextW(window, buffer.data(), length + 1);
    return FromWide(buffer.data(), size_t(got > 0 ? got : 0));
}

// The class by the name the system registers it under, whatever case the template used.
std::string ClassName(HWND window)
{
    static const char* const kKnown[] = {"Button",
                                         "Edit",
                                         "Static",
                                         "ComboBox",
                                         "ListBox",
                                         "msctls_updown32",
                                         "msctls_trackbar32",
                                         "SysListView32",
                                         "SysTreeView32",
                                         "msctls_progress32"};
    WCHAR buffer[128] = {};
    int n = GetClassNameW(window, buffer, 128);
    std::string name = Utf16ToUtf8(FromWide(buffer, size_t(n > 0 ? n : 0)));
    for (const char* known : kKnown) {
        if (name.size() == strlen(known)) {
            bool same = true;
            for (size_t i = 0; i < name.size() && same; ++i)
                same = (name[i] | 0x20) == (known[i] | 0x20);
            if (same)
                return known;
        }
    }
    return name;
}

std::u16string ItemText(HWND list, bool combo, int index)
{
    LRESULT length = SendMessageW(list, combo ? CB_GETLBTEXTLEN : LB_GETTEXTLEN, WPARAM(index), 0);
    if (length <= 0)
        return {};
    std::vector<WCHAR> buffer(size_t(length) + 1, 0);
    LRESULT got = SendMessageW(list, combo ? CB_GETLBTEXT : LB_GETTEXT, WPARAM(index),
                               reinterpret_cast<LPARAM>(buffer.data()));
    return FromWide(buffer.data(), size_t(got > 0 ? got : 0));
}

void DescribeButton(HWND c, DWORD style, ControlState* s)
{
    static const char* const kinds[] = {"push",  "defpush",  "checkbox",    "checkbox",
                                        "radio", "3state",   "3state",      "groupbox",
                                        "user",  "radio",    "pushbox",     "ownerdraw",
                                        "split", "defsplit", "commandlink", "defcommandlink"};
    s->kind = kinds[style & BS_TYPEMASK];
    s->checked = SendMessageW(c, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void DescribeStatic(DWORD style, ControlState* s)
{
    DWORD type = style & SS_TYPEMASK;
    s->kind = type == SS_ICON                                                        ? "icon"
              : type == SS_BITMAP                                                    ? "bitmap"
              : type == SS_OWNERDRAW                                                 ? "ownerdraw"
              : (type <= SS_RIGHT || type == SS_SIMPLE || type == SS_LEFTNOWORDWRAP) ? "text"
                                                                                     : "frame";
    // An image's static keeps its resource name as text on one platform and not the other.
    if (type == SS_ICON || type == SS_BITMAP)
        s->text.clear();
}

void DescribeList(HWND c, DWORD style, bool combo, ControlState* s)
{
    if (combo) {
        DWORD type = style & 3;
        s->kind = type == CBS_SIMPLE     ? "simple"
                  : type == CBS_DROPDOWN ? "dropdown"
                                         : "dropdownlist";
    } else {
        s->kind = (style & LBS_MULTIPLESEL)   ? "multiple"
                  : (style & LBS_EXTENDEDSEL) ? "extended"
                                              : "single";
    }
    s->selection = int(SendMessageW(c, combo ? CB_GETCURSEL : LB_GETCURSEL, 0, 0));
    if (s->selection < 0)
        s->selection = -1;
    LRESULT count = SendMessageW(c, combo ? CB_GETCOUNT : LB_GETCOUNT, 0, 0);
    for (int i = 0; i < int(count); ++i) {
        LRESULT data = SendMessageW(c, combo ? CB_GETITEMDATA : LB_GETITEMDATA, WPARAM(i), 0);
        s->items.emplace_back(ItemText(c, combo, i), (long long)data);
    }
}

} // namespace

bool CheckExpectation(HWND control, const UserAction& action, std::string* failure)
{
    const std::string& what = action.text;
    const std::string name = "control " + std::to_string(action.id);
    const std::string kind = ClassName(control);
    auto fail = [&](const std::string& message) {
        *failure = message;
        return false;
    };
    if (what == "enabled" || what == "disabled") {
        bool enabled = IsWindowEnabled(control);
        return enabled == (what == "enabled") ||
               fail(name + " is " + (enabled ? "enabled" : "disabled"));
    }
    if (what == "visible" || what == "hidden") {
        bool visible = IsWindowVisible(control);
        return visible == (what == "visible") ||
               fail(name + " is " + (visible ? "visible" : "hidden"));
    }
    if (what == "focused") {
        // A combo box's focus lies in its edit.
        HWND focus = GetFocus();
        return focus == control || (focus && IsChild(control, focus)) ||
               fail(name + " does not have the focus");
    }
    if (what == "checked" || what == "unchecked") {
        if (kind != "Button")
            return fail(name + " is not a button");
        bool checked = SendMessageW(control, BM_GETCHECK, 0, 0) == BST_CHECKED;
        return checked == (what == "checked") ||
               fail(name + " is " + (checked ? "checked" : "unchecked"));
    }
    if (what == "data") {
        if (kind != "ComboBox" && kind != "ListBox")
            return fail(name + " is not a list");
        bool combo = kind == "ComboBox";
        LRESULT sel = SendMessageW(control, combo ? CB_GETCURSEL : LB_GETCURSEL, 0, 0);
        if (sel < 0)
            return fail(name + " has no item selected");
        LRESULT data = SendMessageW(control, combo ? CB_GETITEMDATA : LB_GETITEMDATA, sel, 0);
        return data == LRESULT(action.number) ||
               fail(name + " has data " + std::to_string(data) + " selected");
    }
    if (what == "below") {
        const std::string other = "control " + std::to_string(action.number);
        HWND above = GetDlgItem(GetParent(control), int(action.number));
        if (!above)
            return fail("the window has no " + other);
        RECT mine = {}, theirs = {};
        GetWindowRect(control, &mine);
        GetWindowRect(above, &theirs);
        return mine.top - theirs.bottom == action.gap ||
               fail(name + " stands " + std::to_string(mine.top - theirs.bottom) +
                    " pixels below " + other);
    }
    // "text TEXT": \r, \n and \t stand for what a quoted text shows so, and a backslash
    // keeps any other character as it is, a leading blank too.
    std::string want;
    const std::string written = what.substr(5);
    for (size_t i = 0; i < written.size(); ++i) {
        char c = written[i];
        if (c == '\\' && i + 1 < written.size()) {
            char next = written[++i];
            c = next == 'r' ? '\r' : next == 'n' ? '\n' : next == 't' ? '\t' : next;
        }
        want += c;
    }
    const std::u16string text = WindowText(control);
    std::string have = Utf16ToUtf8(text);
    return have == want || fail(name + " has text " + QuoteText(text));
}

std::vector<ControlState> DescribeControls(HWND window)
{
    std::vector<ControlState> states;
    for (HWND c = GetWindow(window, GW_CHILD); c; c = GetWindow(c, GW_HWNDNEXT)) {
        ControlState s;
        s.id = GetDlgCtrlID(c);
        s.className = ClassName(c);
        s.text = WindowText(c);
        s.enabled = IsWindowEnabled(c) != FALSE;
        // The control's own state: whether its dialog is on screen is the dialog's business.
        s.visible = (GetWindowLongW(c, GWL_STYLE) & WS_VISIBLE) != 0;
        DWORD style = DWORD(GetWindowLongW(c, GWL_STYLE));
        if (s.className == "Button") {
            DescribeButton(c, style, &s);
        } else if (s.className == "Edit") {
            s.kind = (style & ES_MULTILINE)  ? "multiline"
                     : (style & ES_PASSWORD) ? "password"
                                             : "edit";
        } else if (s.className == "Static") {
            DescribeStatic(style, &s);
        } else if (s.className == "ComboBox" || s.className == "ListBox") {
            DescribeList(c, style, s.className == "ComboBox", &s);
        } else if (s.className == "msctls_updown32") {
            s.kind = (style & UDS_HORZ) ? "horizontal" : "vertical";
            BOOL error = FALSE;
            s.position = (int)SendMessageW(c, UDM_GETPOS32, 0, reinterpret_cast<LPARAM>(&error));
            INT low = 0, high = 0;
            SendMessageW(c, UDM_GETRANGE32, reinterpret_cast<WPARAM>(&low),
                         reinterpret_cast<LPARAM>(&high));
            s.rangeMin = low;
            s.rangeMax = high;
        } else if (s.className == "msctls_trackbar32") {
            s.kind = (style & TBS_VERT) ? "vertical" : "horizontal";
            s.position = (int)SendMessageW(c, TBM_GETPOS, 0, 0);
            s.rangeMin = (int)SendMessageW(c, TBM_GETRANGEMIN, 0, 0);
            s.rangeMax = (int)SendMessageW(c, TBM_GETRANGEMAX, 0, 0);
        }
        states.push_back(std::move(s));
    }
    return states;
}

std::string QuoteText(const std::u16string& text)
{
    std::string out = "\"";
    for (char c : Utf16ToUtf8(text)) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '\r') {
            out += "\\r";
        } else if (c == '\t') {
            out += "\\t";
        } else {
            out += c;
        }
    }
    return out + "\"";
}

std::string DumpControls(const std::vector<ControlState>& controls)
{
    std::string out;
    for (const ControlState& s : controls) {
        out += "  " + std::to_string(s.id) + " " + s.className;
        if (!s.kind.empty())
            out += " " + s.kind;
        out += " " + QuoteText(s.text);
        out += s.enabled ? " enabled" : " disabled";
        out += s.visible ? " visible" : " hidden";
        if (s.className == "Button" &&
            (s.kind == "checkbox" || s.kind == "radio" || s.kind == "3state"))
            out += s.checked ? " checked" : " unchecked";
        if (s.className == "ComboBox" || s.className == "ListBox") {
            out += " selection " +
                   (s.selection < 0 ? std::string("none") : std::to_string(s.selection)) + ":";
            if (s.items.empty())
                out += " (empty)";
            for (size_t i = 0; i < s.items.size(); ++i)
                out += std::string(i ? ", " : " ") + (int(i) == s.selection ? "*" : "") +
                       QuoteText(s.items[i].first) + "=" + std::to_string(s.items[i].second);
        }
        if (s.className == "msctls_updown32" || s.className == "msctls_trackbar32")
            out += " position " + std::to_string(s.position) + " range " +
                   std::to_string(s.rangeMin) + ".." + std::to_string(s.rangeMax);
        out += "\n";
    }
    return out;
}

namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf8(std::string& out, char32_t c)
{
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | (c >> 6));
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | (c >> 12));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | (c >> 18));
        out += char(0x80 | ((c >> 12) & 0x3F));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

} // namespace

std::u16string Utf8ToUtf16(const std::string& text)
{
    std::u16string out;
    out.reserve(text.size());
    const auto* s = reinterpret_cast<const unsigned char*>(text.data());
    size_t n = text.size();
    size_t i = 0;
    while (i < n) {
        unsigned char b = s[i];
        char32_t c;
        size_t len;
        if (b < 0x80) {
            c = b;
            len = 1;
        } else if (b >= 0xC2 && b <= 0xDF) {
            c = b & 0x1F;
            len = 2;
        } else if (b >= 0xE0 && b <= 0xEF) {
            c = b & 0x0F;
            len = 3;
        } else if (b >= 0xF0 && b <= 0xF4) {
            c = b & 0x07;
            len = 4;
        } else {
            out += char16_t(kReplacement);
            ++i;
            continue;
        }
        size_t j = 1;
        for (; j < len && i + j < n && (s[i + j] & 0xC0) == 0x80; ++j) {
            c = (c << 6) | (s[i + j] & 0x3F);
        }
        // Truncated, overlong, surrogate or beyond U+10FFFF: one replacement for what was read.
        bool bad = j < len || (len == 3 && c < 0x800) || (len == 4 && c < 0x10000) ||
                   (c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF;
        i += j;
        if (bad) {
            out += char16_t(kReplacement);
        } else if (c >= 0x10000) {
            c -= 0x10000;
            out += char16_t(0xD800 + (c >> 10));
            out += char16_t(0xDC00 + (c & 0x3FF));
        } else {
            out += char16_t(c);
        }
    }
    return out;
}

std::string Utf16ToUtf8(const std::u16string& text)
{
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
            text[i + 1] <= 0xDFFF) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            ++i;
        } else if (c >= 0xD800 && c <= 0xDFFF) {
            c = kReplacement;
        }
        AppendUtf8(out, c);
    }
    return out;
}

} // namespace usersim
