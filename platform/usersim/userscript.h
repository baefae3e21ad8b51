// The script language of a person's actions, parsed the same way on both platforms: the host's
// simulated user and the Windows runner take the same scripts.
//
// A script is text, one action a line; `#` starts a comment, blank lines are ignored. Actions:
// tab ID, click ID, check ID, uncheck ID, select ID DATA (the item whose data is DATA),
// select-text ID TEXT, type ID TEXT, key ID CHAR|backspace|space|down|up, spin ID up|down [COUNT],
// slide ID POS, menu COMMAND, answer yes|no|ok|cancel|retry|ignore|abort|continue [TEXT] (TEXT:
// what the message must hold), file PATH, file cancel, ok, cancel, apply, expect ID
// enabled|disabled|checked|unchecked|visible|hidden|focused|text TEXT|data DATA|below ID GAP
// (the control's top edge GAP pixels under the other control's bottom edge), expect-apply
// lit|unlit (the sheet's Apply button). Numbers are decimal or 0x hex; TEXT is the rest of the
// line. An expected text writes a line break as \r and \n, a tab as \t; any other character
// after a backslash stands for itself (\\ a backslash, "\ " a blank that would be trimmed).
#pragma once

#include <string>
#include <vector>

namespace usersim {

struct UserAction
{
    std::string verb;
    int id = 0;
    long long number = 0;
    std::string text;
    int line = 0;
    std::string expected; // answer: a text the message box must hold
    long long gap = 0;    // expect ... below: the pixels between the two controls
};

// Parses a whole script; false with "line N: ..." in *error (when given) and nothing appended.
bool ParseUserScript(const std::string& script, std::vector<UserAction>* actions,
                     std::string* error);

// "line N: message", as failures are reported on both platforms.
std::string FailureText(const UserAction& action, const std::string& message);

} // namespace usersim
