// A person at a Windows desktop: script actions performed on real windows through the input a
// person's mouse and keyboard give them, so that user32 and comctl32 choose which
// notifications come and in which order. Nothing here sends a control's parent a notification
// made by hand.
#pragma once

#include "platform/usersim/userscript.h"
#include "platform/win32.h"

#include <string>

namespace winuser {

// Performs a control action (click, check, uncheck, select, select-text, type, key, spin,
// slide, expect) on the control of window whose id the action names. False with *failure when
// the control is missing, hidden, disabled or of the wrong kind, or an expect does not hold.
bool PerformControlAction(HWND window, const usersim::UserAction& action, std::string* failure);

// Presses the button of window whose id is given, as a click on it does; false when the window
// has no such button that is visible and enabled.
bool PressButton(HWND window, int id);

// Types text into an edit control: selects what it holds, deletes it, and sends the characters
// through the edit's own window procedure.
void TypeText(HWND edit, const std::string& utf8);

} // namespace winuser
