// What a person sees of a window's controls, read through Win32 calls alone, so that the host
// and Windows describe the same dialog in the same words and a difference is the platforms'.
#pragma once

#include "../win32.h"
#include "userscript.h"

#include <string>
#include <utility>
#include <vector>

namespace usersim {

struct ControlState
{
    int id = 0;
    std::string className; // "Button", "Edit", "Static", "ComboBox", "ListBox", ...
    std::string kind;      // "push", "checkbox", "radio", "groupbox", "edit", "dropdownlist", ...
    std::u16string text;
    bool enabled = false, visible = false, checked = false;
    int selection = -1;
    std::vector<std::pair<std::u16string, long long>> items;
    long long position = 0, rangeMin = 0, rangeMax = 0;
};

// Whether an "expect" action holds for the control; false with the failure's words, which
// both platforms report alike ("control 1004 has data 274 selected").
bool CheckExpectation(HWND control, const UserAction& action, std::string* failure);

// The child controls of window in z-order.
std::vector<ControlState> DescribeControls(HWND window);

// One line a control:
//   1349 Edit edit "10.0.0.5" enabled visible
//   1004 ComboBox dropdownlist "A3" enabled visible selection 1: "A4"=274, *"A3"=273
std::string DumpControls(const std::vector<ControlState>& controls);

// Text quoted for a dump line: quotes, backslashes and control characters escaped.
std::string QuoteText(const std::u16string& text);

// Conversions that never fail: malformed input becomes U+FFFD.
std::string Utf16ToUtf8(const std::u16string& text);
std::u16string Utf8ToUtf16(const std::string& text);

} // namespace usersim
