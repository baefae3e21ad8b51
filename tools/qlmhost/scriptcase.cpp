// Directives of a script case, and the check of an outcome against them.
#include "scriptcase.h"

#include "records.h"

#include "platform/usersim/userscript.h"

#include <cctype>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace {

std::string Trim(const std::string& s)
{
    size_t b = s.find_first_not_of(" \t\r");
    if (b == std::string::npos)
        return "";
    return s.substr(b, s.find_last_not_of(" \t\r") - b + 1);
}

// Splits "WORD REST" after the "#:" mark.
void SplitDirective(const std::string& line, std::string* word, std::string* rest)
{
    std::string text = Trim(line.substr(2));
    size_t space = text.find_first_of(" \t");
    *word = text.substr(0, space);
    *rest = space == std::string::npos ? "" : Trim(text.substr(space + 1));
}

// "NAME dword N" or "NAME binary [HEX]".
bool ParseDataValue(const std::string& rest, CaseDataValue* value, std::string* why)
{
    std::istringstream words(rest);
    std::string kind, text, extra;
    words >> value->name >> kind >> text >> extra;
    if (kind == "dword" && !text.empty() && extra.empty()) {
        char* end = nullptr;
        unsigned long long n = strtoull(text.c_str(), &end, 0);
        if (*end == 0 && n <= 0xFFFFFFFFull) {
            value->dword = true;
            for (int i = 0; i < 4; i++)
                value->bytes.push_back(static_cast<unsigned char>(n >> (8 * i)));
            return true;
        }
    } else if (kind == "binary" && extra.empty() && text.size() % 2 == 0) {
        for (size_t i = 0; i < text.size(); i += 2) {
            char* end = nullptr;
            const std::string pair = text.substr(i, 2);
            unsigned long byte = strtoul(pair.c_str(), &end, 16);
            if (*end != 0 || !isxdigit(static_cast<unsigned char>(pair[0])))
                break;
            value->bytes.push_back(static_cast<unsigned char>(byte));
        }
        if (value->bytes.size() * 2 == text.size())
            return true;
    }
    *why = "a printer data value is NAME dword N or NAME binary HEX, not '" + rest + "'";
    return false;
}

bool ParseDirective(const std::string& word, const std::string& rest, ScriptCase* c,
                    std::string* why)
{
    if (word == "printer" && !rest.empty()) {
        c->printer = rest;
    } else if (word == "sheet" && (rest == "document" || rest == "device")) {
        c->device = rest == "device";
    } else if (word == "mode" && !rest.empty()) {
        c->mode = rest;
    } else if (word == "result") {
        char* end = nullptr;
        long long value = strtoll(rest.c_str(), &end, 10);
        if (rest.empty() || *end) {
            *why = "'result' needs a number, not '" + rest + "'";
            return false;
        }
        c->result = value;
    } else if (word == "record" || word == "set") {
        size_t space = rest.find_first_of(" \t");
        if (rest.empty()) {
            *why = "'" + word + "' needs a field and its text";
            return false;
        }
        (word == "set" ? c->set : c->record)
            .emplace_back(rest.substr(0, space),
                          space == std::string::npos ? "" : Trim(rest.substr(space + 1)));
    } else if (word == "data" || word == "stored") {
        CaseDataValue value;
        if (!ParseDataValue(rest, &value, why))
            return false;
        (word == "data" ? c->data : c->stored).push_back(value);
    } else if (word == "pjlsim") {
        CasePjlsim pjlsim;
        if (!ParseCasePjlsim(rest, &pjlsim, why))
            return false;
        c->pjlsim = rest;
    } else if (word == "wine-skip" && !rest.empty()) {
        c->wineSkip = rest;
    } else {
        *why = "unknown directive '#: " + word + (rest.empty() ? "" : " " + rest) + "'";
        return false;
    }
    return true;
}

} // namespace

bool CheckScriptActions(const std::string& script, std::string* error)
{
    // Each press is a message round; a count beyond any up-down's range only keeps the
    // sheet busy for hours at its end.
    constexpr long long kMaxSpins = 10000;
    std::vector<usersim::UserAction> actions;
    if (!usersim::ParseUserScript(script, &actions, error))
        return false;
    if (actions.empty()) {
        *error = "the script has no actions";
        return false;
    }
    for (const usersim::UserAction& a : actions) {
        if (a.verb == "spin" && a.number > kMaxSpins) {
            *error =
                usersim::FailureText(a, "'spin' takes a count up to " + std::to_string(kMaxSpins) +
                                            ", not " + std::to_string(a.number));
            return false;
        }
        if (a.verb == "slide" && (a.number < INT_MIN || a.number > INT_MAX)) {
            *error = usersim::FailureText(a, "'slide' needs a position a trackbar can have, not " +
                                                 std::to_string(a.number));
            return false;
        }
    }
    return true;
}

bool ParseCasePjlsim(const std::string& words, CasePjlsim* pjlsim, std::string* error)
{
    std::istringstream in(words);
    std::string word, value;
    while (in >> word) {
        if (word.compare(0, 2, "--") != 0) {
            if (!pjlsim->profile.empty()) {
                *error =
                    "'pjlsim' takes one profile, not '" + pjlsim->profile + "' and '" + word + "'";
                return false;
            }
            pjlsim->profile = word;
            continue;
        }
        if (!(in >> value)) {
            *error = "'pjlsim' " + word + " needs a value";
            return false;
        }
        if (word == "--fault") {
            pjlsim->faults.push_back(value);
        } else if (word == "--address") {
            pjlsim->address = value;
        } else if (word == "--delay-ms") {
            char* end = nullptr;
            unsigned long ms = strtoul(value.c_str(), &end, 10);
            if (*end || ms > 60000) {
                *error = "'pjlsim' --delay-ms takes milliseconds up to 60000, not '" + value + "'";
                return false;
            }
            pjlsim->delayMs = unsigned(ms);
        } else {
            *error = "'pjlsim' takes --fault, --delay-ms and --address, not " + word;
            return false;
        }
    }
    return true;
}

bool ParseScriptCase(const std::string& script, ScriptCase* scriptCase, std::string* error)
{
    std::istringstream lines(script);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        if (line.compare(0, 2, "#:") != 0)
            continue;
        std::string word, rest, why;
        SplitDirective(line, &word, &rest);
        if (!ParseDirective(word, rest, scriptCase, &why)) {
            if (error)
                *error = "line " + std::to_string(number) + ": " + why;
            return false;
        }
    }
    return true;
}

std::vector<std::string> CheckScriptCase(const ScriptCase& scriptCase, long long result,
                                         const unsigned char* record, size_t cb)
{
    std::vector<std::string> failures;
    if (scriptCase.result && *scriptCase.result != result)
        failures.push_back("the result is " + std::to_string(result) + ", not " +
                           std::to_string(*scriptCase.result));
    for (const auto& [field, want] : scriptCase.record) {
        std::string have;
        if (!record) {
            failures.push_back("no record came back to show " + field);
        } else if (!RecordFieldText(record, cb, field, &have)) {
            failures.push_back("the record has no field " + field);
        } else if (have != want) {
            failures.push_back(field + " is " + have + ", not " + want);
        }
    }
    return failures;
}

std::string CaseDataText(bool dword, const std::vector<unsigned char>& bytes)
{
    if (dword && bytes.size() == 4) {
        unsigned long n = 0;
        for (int i = 3; i >= 0; i--)
            n = (n << 8) | bytes[static_cast<size_t>(i)];
        return "dword " + std::to_string(n);
    }
    std::string text = "binary";
    if (!bytes.empty())
        text += ' ';
    for (unsigned char b : bytes) {
        char hex[3];
        snprintf(hex, sizeof(hex), "%02x", b);
        text += hex;
    }
    return text;
}
