// The parser of the script language: one action a line, checked whole before any is taken.
#include "userscript.h"

#include <cerrno>
#include <climits>
#include <cstdlib>

namespace usersim {

namespace {

constexpr long long kBackspace = 0x08; // VK_BACK, as WM_CHAR carries it
constexpr long long kUp = 0x26;        // VK_UP
constexpr long long kDown = 0x28;      // VK_DOWN

// The one UTF-16 unit of a text that is a single character of the basic plane.
bool OneCharacter(const std::string& utf8, long long* unit)
{
    const auto* s = reinterpret_cast<const unsigned char*>(utf8.c_str());
    size_t n = utf8.size();
    if (n == 1 && s[0] < 0x80) {
        *unit = s[0];
        return true;
    }
    if (n == 2 && (s[0] & 0xE0) == 0xC0 && (s[1] & 0xC0) == 0x80) {
        *unit = ((s[0] & 0x1F) << 6) | (s[1] & 0x3F);
        return *unit >= 0x80;
    }
    if (n == 3 && (s[0] & 0xF0) == 0xE0 && (s[1] & 0xC0) == 0x80 && (s[2] & 0xC0) == 0x80) {
        *unit = ((s[0] & 0x0F) << 12) | ((s[1] & 0x3F) << 6) | (s[2] & 0x3F);
        return *unit >= 0x800 && (*unit < 0xD800 || *unit > 0xDFFF);
    }
    return false;
}

std::string Trim(const std::string& s)
{
    size_t b = s.find_first_not_of(" \t\r\n");
    if (b == std::string::npos) {
        return "";
    }
    size_t e = s.find_last_not_of(" \t\r\n");
    return s.substr(b, e - b + 1);
}

// Splits off the first word of text.
std::string Word(std::string* text)
{
    std::string t = Trim(*text);
    size_t space = t.find_first_of(" \t");
    std::string word = t.substr(0, space);
    *text = space == std::string::npos ? "" : t.substr(space + 1);
    return word;
}

bool ParseNumber(const std::string& word, long long* value)
{
    if (word.empty()) {
        return false;
    }
    const char* s = word.c_str();
    bool negative = *s == '-';
    if (negative) {
        ++s;
    }
    int base = 10;
    if (s[0] == '0' && (s[1] == 'x' || s[1] == 'X')) {
        base = 16;
        s += 2;
    }
    if (!*s) {
        return false;
    }
    char* end = nullptr;
    errno = 0;
    unsigned long long v = strtoull(s, &end, base);
    if (*end || errno) {
        return false;
    }
    *value = negative ? -(long long)v : (long long)v;
    return true;
}

const char* const kAnswers[] = {"yes",   "no",     "ok",    "cancel",
                                "retry", "ignore", "abort", "continue"};

bool ParseLine(const std::string& raw, int line, UserAction* action, std::string* why)
{
    std::string rest = raw;
    action->line = line;
    action->verb = Word(&rest);
    const std::string& verb = action->verb;
    auto id = [&]() {
        long long v;
        std::string w = Word(&rest);
        if (!ParseNumber(w, &v) || v < INT32_MIN || v > INT32_MAX) {
            *why = "'" + verb + "' needs a control id" + (w.empty() ? "" : ", not '" + w + "'");
            return false;
        }
        action->id = int(v);
        return true;
    };
    auto number = [&](const char* what) {
        std::string w = Word(&rest);
        if (!ParseNumber(w, &action->number)) {
            *why = "'" + verb + "' needs " + what + (w.empty() ? "" : ", not '" + w + "'");
            return false;
        }
        return true;
    };
    auto nothingMore = [&] {
        if (!Trim(rest).empty()) {
            *why = "unexpected '" + Trim(rest) + "' after '" + verb + "'";
            return false;
        }
        return true;
    };
    if (verb == "ok" || verb == "cancel" || verb == "apply") {
        return nothingMore();
    }
    if (verb == "tab" || verb == "click" || verb == "check" || verb == "uncheck") {
        return id() && nothingMore();
    }
    if (verb == "select") {
        return id() && number("the item data") && nothingMore();
    }
    if (verb == "spin") {
        // spin ID up|down [COUNT]: the arrow pressed COUNT times, once by default.
        if (!id()) {
            return false;
        }
        action->text = Word(&rest);
        if (action->text != "up" && action->text != "down") {
            *why = "'spin' needs up or down" +
                   (action->text.empty() ? std::string() : ", not '" + action->text + "'");
            return false;
        }
        action->number = 1;
        if (!Trim(rest).empty() && (!number("a count") || action->number < 1)) {
            if (why->empty()) {
                *why = "'spin' needs a count of 1 or more";
            }
            return false;
        }
        return nothingMore();
    }
    if (verb == "slide") {
        return id() && number("a position") && nothingMore();
    }
    if (verb == "menu") {
        return number("a command") && nothingMore();
    }
    if (verb == "select-text" || verb == "type" || verb == "key") {
        if (!id()) {
            return false;
        }
        // The text starts after the one blank that ends the id.
        action->text = Trim(rest);
        if (verb == "select-text" && action->text.empty()) {
            *why = "'select-text' needs a text";
            return false;
        }
        if (verb == "key") {
            long long ch = 0;
            if (action->text == "backspace") {
                action->number = kBackspace;
            } else if (action->text == "space") {
                action->number = ' ';
            } else if (action->text == "down" || action->text == "up") {
                // An arrow key, which a combo box takes as a choice of the next item.
                action->number = action->text == "down" ? kDown : kUp;
            } else if (OneCharacter(action->text, &ch)) {
                action->number = ch;
            } else {
                *why = "'key' needs one character, backspace, space, down or up";
                return false;
            }
        }
        return true;
    }
    if (verb == "answer") {
        // answer WORD [TEXT]: the button, and a text the message must hold.
        action->text = Word(&rest);
        action->expected = Trim(rest);
        for (const char* a : kAnswers) {
            if (action->text == a) {
                return true;
            }
        }
        *why = "'answer' needs yes, no, ok, cancel, retry, ignore, abort or continue";
        return false;
    }
    if (verb == "file") {
        action->text = Trim(rest);
        if (action->text.empty()) {
            *why = "'file' needs a path or cancel";
            return false;
        }
        return true;
    }
    if (verb == "expect-apply") {
        // The sheet's Apply button: lit once a page has reported a change.
        action->text = Word(&rest);
        if (action->text != "lit" && action->text != "unlit") {
            *why = "'expect-apply' needs lit or unlit";
            return false;
        }
        return nothingMore();
    }
    if (verb == "expect") {
        if (!id()) {
            return false;
        }
        action->text = Word(&rest);
        const std::string& what = action->text;
        if (what == "enabled" || what == "disabled" || what == "checked" || what == "unchecked" ||
            what == "visible" || what == "hidden" || what == "focused") {
            return nothingMore();
        }
        if (what == "text") {
            action->text = "text " + Trim(rest);
            return true;
        }
        if (what == "data") {
            return number("the item data") && nothingMore();
        }
        if (what == "below") {
            // below ID GAP: the other control, then the pixels between them.
            if (!number("the control above")) {
                return false;
            }
            const long long above = action->number;
            if (!number("a gap in pixels")) {
                return false;
            }
            action->gap = action->number;
            action->number = above;
            return nothingMore();
        }
        *why = "'expect' needs enabled, disabled, checked, unchecked, visible, hidden, focused, "
               "text, data or below";
        return false;
    }
    *why = "unknown action '" + verb + "'";
    return false;
}

} // namespace

bool ParseUserScript(const std::string& script, std::vector<UserAction>* parsed, std::string* error)
{
    std::vector<UserAction> actions;
    size_t start = 0;
    int line = 0;
    while (start <= script.size()) {
        size_t end = script.find('\n', start);
        if (end == std::string::npos) {
            end = script.size();
        }
        std::string text = script.substr(start, end - start);
        start = end + 1;
        ++line;
        size_t hash = text.find('#');
        if (hash != std::string::npos) {
            text.resize(hash);
        }
        if (Trim(text).empty()) {
            continue;
        }
        UserAction action;
        std::string why;
        if (!ParseLine(text, line, &action, &why)) {
            if (error) {
                *error = "line " + std::to_string(line) + ": " + why;
            }
            return false;
        }
        actions.push_back(std::move(action));
    }
    parsed->insert(parsed->end(), actions.begin(), actions.end());
    return true;
}

std::string FailureText(const UserAction& action, const std::string& message)
{
    return "line " + std::to_string(action.line) + ": " + message;
}

} // namespace usersim
