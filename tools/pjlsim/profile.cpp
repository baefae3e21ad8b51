// Profile files: one "key = value" per line, '#' starts a comment line. See docs/pjlsim.md.
#include "profile.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>

namespace pjlsim {
namespace {

// Every roll size keyword the driver's grammar knows.
constexpr std::string_view kRollSizes[] = {
    "ANY",         "ANSI_A",      "ANSI_B",      "ANSI_C",   "ANSI_D",    "ANSI_E",   "ARCH_A",
    "ARCH_B",      "ARCH_C",      "ARCH_D",      "ARCH_E",   "ARCH_30",   "ISO_A0",   "ISO_A1",
    "ISO_A2",      "ISO_A3",      "ISO_A4",      "ISO_B1",   "ISO_B2",    "ISO_B3",   "ISO_B4",
    "JIS_B1",      "JIS_B2",      "JIS_B3",      "JIS_B4",   "ROLL_A0++", "ROLL_A0+", "ROLL_A0",
    "ROLL_A1+",    "ROLL_A1",     "ROLL_A2",     "ROLL_A3",  "ROLL_B1",   "ROLL_B2",  "ROLL_B3",
    "ROLL_JIS_B1", "ROLL_JIS_B2", "ROLL_JIS_B3", "ROLL_750", "ROLL_900",  "ROLL_11",  "ROLL_14",
    "ROLL_15",     "ROLL_17",     "ROLL_21",     "ROLL_22",  "ROLL_34",   "ROLL_30",  "ROLL_12",
    "ROLL_18",     "ROLL_24",     "ROLL_36",     "ROLL_38",  "ROLL_42",   "ROLL_44",  "ROLL_48",
    "ROLL_50",     "ROLL_53",     "ROLL_54",     "LETTER",   "LEGAL",     "LEDGER",   "ANY_ANSI",
    "ANY_ISO",     "ANY_ARCH",    "ANY_JIS",     "ANY_ROLL"};

// Driver roll names and the keyword that yields each.
constexpr std::pair<std::string_view, std::string_view> kRollNames[] = {
    {"Roll A0", "ROLL_A0"},      {"Roll A1", "ROLL_A1"},     {"Roll A2", "ROLL_A2"},
    {"Roll A3", "ROLL_A3"},      {"Roll 620mm", "ROLL_A1+"}, {"Roll 860mm", "ROLL_A0+"},
    {"Roll 880mm", "ROLL_A0++"}, {"Roll 750mm", "ROLL_750"}, {"Roll 900mm", "ROLL_900"},
    {"Roll 11in", "ROLL_11"},    {"Roll 17in", "ROLL_17"},   {"Roll 12in", "ROLL_12"},
    {"Roll 34in", "ROLL_34"},    {"Roll 30in", "ROLL_30"},   {"Roll 18in", "ROLL_18"},
    {"Roll 22in", "ROLL_22"},    {"Roll 24in", "ROLL_24"},   {"Roll 36in", "ROLL_36"},
    {"Roll 38in", "ROLL_38"},    {"Roll 42in", "ROLL_42"},   {"Roll 44in", "ROLL_44"},
    {"Roll 48in", "ROLL_48"},    {"Roll 50in", "ROLL_50"},   {"Roll 53in", "ROLL_53"},
    {"Roll 54in", "ROLL_54"},    {"Roll B1", "ROLL_B1"},     {"Roll B2", "ROLL_B2"},
    {"Roll B3", "ROLL_B3"}};

constexpr std::string_view kRollStates[] = {"NONE", "FULL", "LOW", "EMPTY"};
constexpr std::string_view kBareTypes[] = {"PAPER", "FILM", "VELLUM", "BOND"};
constexpr std::string_view kQuotedTypes[] = {"",
                                             "PAPER",
                                             "FILM",
                                             "VELLUM",
                                             "BOND",
                                             "PRESENTATION_360",
                                             "PRESENTATION_720",
                                             "PRODUCTION_360",
                                             "REINFORCED_PAPER_360",
                                             "WHITE_MATTE_FILM_360",
                                             "BACKLIT_FILM_360/720",
                                             "POLY_CLOTH_360",
                                             "POLY_CANVAS_360",
                                             "PSV_360",
                                             "PHOTOGLOSSY_PAPER_360",
                                             "90_GM_GA_PAPER_360",
                                             "OUTDOOR_PAPER_360",
                                             "DISPLAY_PAPER_360",
                                             "BACKLIT_FILM_360",
                                             "BACKLIT_FILM_720",
                                             "LINE_ART_360",
                                             "ANY"};
constexpr std::string_view kAccountingModes[] = {"ENABLED", "DISABLED", "OPTIONAL"};

// Finishing words; OTHER is the printer's own word for one the driver has no name for.
constexpr std::string_view kFanFolds[] = {"OTHER",
                                          "NONE",
                                          "FULL_FRONT_END_LEFT",
                                          "FULL_BACK_END_LEFT",
                                          "FULL_FRONT_AND_BACK_END_LEFT",
                                          "TOP_PANEL_BINDING",
                                          "MIN_COMP_HALF_BACK",
                                          "MIN_COMP_INTERNAL",
                                          "MIN_COMP_ENDLESS"};
constexpr std::string_view kCrossFolds[] = {"OTHER",
                                            "NONE",
                                            "Z_BACK_FROM_TOP",
                                            "Z_FORWARD_FROM_TOP",
                                            "Z_BACK_FROM_BOTTOM",
                                            "Z_FORWARD_FROM_BOTTOM",
                                            "C_BACK_FROM_TOP",
                                            "C_FORWARD_FROM_TOP",
                                            "C_BACK_FROM_BOTTOM",
                                            "C_FORWARD_FROM_BOTTOM",
                                            "WALLET",
                                            "RESERVED"};
constexpr std::string_view kPunches[] = {"OTHER", "NONE", "PUNCH_2", "PUNCH_3", "PUNCH_4"};
constexpr std::string_view kTabs[] = {"OTHER", "NONE", "TAB", "TABS", "REINFORCEMENT_STRIP"};
constexpr std::string_view kDeliveries[] = {"FACEUP", "FACEDOWN"};
constexpr std::string_view kEdges[] = {"LONGEDGE", "SHORTEDGE"};

template <std::size_t N> bool OneOf(std::string_view word, const std::string_view (&table)[N])
{
    return std::find(std::begin(table), std::end(table), word) != std::end(table);
}

template <std::size_t N> std::string Choices(const std::string_view (&table)[N])
{
    std::string out;
    for (std::string_view w : table) {
        if (!out.empty()) {
            out += ", ";
        }
        out += w.empty() ? "\"\"" : std::string(w);
    }
    return out;
}

std::string_view Trim(std::string_view s)
{
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) {
        s.remove_prefix(1);
    }
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) {
        s.remove_suffix(1);
    }
    return s;
}

std::vector<std::string> SplitFields(std::string_view value)
{
    std::vector<std::string> fields;
    if (Trim(value).empty()) {
        return fields;
    }
    std::size_t start = 0;
    for (;;) {
        std::size_t comma = value.find(',', start);
        fields.emplace_back(Trim(value.substr(start, comma - start)));
        if (comma == std::string_view::npos) {
            break;
        }
        start = comma + 1;
    }
    return fields;
}

// Thrown inside the parser only; carries the message without the location.
struct Failure
{
    std::string message;
};

[[noreturn]] void Fail(std::string message)
{
    throw Failure{std::move(message)};
}

unsigned Number(std::string_view text, std::string_view what)
{
    unsigned value = 0;
    auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || ec != std::errc() || end != text.data() + text.size()) {
        Fail(std::string(what) + " must be a whole number from 0 to 4294967294, not \"" +
             std::string(text) + "\"");
    }
    if (value == 4294967295u) {
        Fail(std::string(what) + " 4294967295 cannot be read by the driver");
    }
    return value;
}

template <std::size_t N>
std::string Word(std::string_view text, std::string_view what, const std::string_view (&table)[N])
{
    if (!OneOf(text, table)) {
        Fail(std::string(what) + " \"" + std::string(text) + "\" is not one of " + Choices(table));
    }
    return std::string(text);
}

// Text that goes into a tab-separated row: no tabs, no quotes, not empty.
std::string Cell(std::string_view text, std::string_view what)
{
    if (text.empty()) {
        Fail(std::string(what) + " is empty");
    }
    if (text.find_first_of("\t\"") != std::string_view::npos) {
        Fail(std::string(what) + " must not contain a tab or a double quote");
    }
    return std::string(text);
}

Roll ParseRoll(std::string_view value)
{
    std::vector<std::string> f = SplitFields(value);
    if (f.size() != 3) {
        Fail("a roll is \"SIZE, STATE, TYPE\", three fields, not " + std::to_string(f.size()));
    }
    Roll roll;
    if (auto keyword = RollKeywordForName(f[0])) {
        roll.size = *keyword;
    } else if (OneOf(f[0], kRollSizes)) {
        roll.size = f[0];
    } else {
        Fail("unknown roll size \"" + f[0] +
             "\" (a keyword such as ROLL_36 or a name such as "
             "\"Roll 36in\")");
    }
    roll.status = Word(f[1], "roll state", kRollStates);
    const std::string& type = f[2];
    if (type.size() >= 2 && type.front() == '"' && type.back() == '"') {
        Word(std::string_view(type).substr(1, type.size() - 2), "quoted media type", kQuotedTypes);
    } else if (!OneOf(type, kBareTypes)) {
        Fail("media type \"" + type + "\" is not one of " + Choices(kBareTypes) +
             " or a quoted type such as \"PRESENTATION_360\"");
    }
    roll.type = type;
    return roll;
}

// Options after the first fields of a row: "name=value".
std::vector<std::pair<std::string, std::string>> Options(const std::vector<std::string>& fields,
                                                         std::size_t first)
{
    std::vector<std::pair<std::string, std::string>> out;
    for (std::size_t i = first; i < fields.size(); ++i) {
        std::size_t eq = fields[i].find('=');
        if (eq == std::string::npos) {
            Fail("\"" + fields[i] + "\" is not of the form name=value");
        }
        out.emplace_back(std::string(Trim(std::string_view(fields[i]).substr(0, eq))),
                         std::string(Trim(std::string_view(fields[i]).substr(eq + 1))));
    }
    return out;
}

Font ParseFont(std::string_view value)
{
    std::vector<std::string> f = SplitFields(value);
    if (f.size() < 2) {
        Fail("a font is \"OBJECT, FONT NAME\" with optional size=, rw=, delete=");
    }
    Font font;
    font.object = Cell(f[0], "font object name");
    font.name = Cell(f[1], "font name");
    for (auto& [name, v] : Options(f, 2)) {
        if (name == "size") {
            font.size = Number(v, "font size");
        } else if (name == "rw") {
            font.rw = Cell(v, "rw");
        } else if (name == "delete") {
            font.remove = Cell(v, "delete");
        } else {
            Fail("unknown font option \"" + name + "\" (size, rw, delete)");
        }
    }
    return font;
}

Stamp ParseStamp(std::string_view value)
{
    std::vector<std::string> f = SplitFields(value);
    if (f.empty()) {
        Fail("a stamp is \"OBJECT\" with optional size=, rw=, delete=");
    }
    Stamp stamp;
    stamp.object = Cell(f[0], "stamp object name");
    for (auto& [name, v] : Options(f, 1)) {
        if (name == "size") {
            stamp.size = Number(v, "stamp size");
        } else if (name == "rw") {
            stamp.rw = Cell(v, "rw");
        } else if (name == "delete") {
            stamp.remove = Cell(v, "delete");
        } else {
            Fail("unknown stamp option \"" + name + "\" (size, rw, delete)");
        }
    }
    return stamp;
}

FinisherProgram ParseProgram(std::string_view value)
{
    std::vector<std::string> f = SplitFields(value);
    if (f.empty()) {
        Fail("a program is \"NAME\" followed by name=value fields");
    }
    FinisherProgram p;
    p.name = Cell(f[0], "program name");
    for (auto& [name, v] : Options(f, 1)) {
        if (name == "fanfold") {
            p.fanFold = Word(v, "fanfold", kFanFolds);
        } else if (name == "crossfold") {
            p.crossFold = Word(v, "crossfold", kCrossFolds);
        } else if (name == "width") {
            p.width = Number(v, "width");
        } else if (name == "length") {
            p.length = Number(v, "length");
        } else if (name == "margin") {
            p.margin = Number(v, "margin");
        } else if (name == "punch") {
            p.punch = Word(v, "punch", kPunches);
        } else if (name == "tab") {
            p.tab = Word(v, "tab", kTabs);
        } else if (name == "bins") {
            p.bins = Number(v, "bins");
        } else if (name == "maxlength") {
            p.maxLength = Number(v, "maxlength");
        } else if (name == "delivery") {
            p.sheetDelivery = Word(v, "delivery", kDeliveries);
        } else if (name == "title") {
            p.title = Number(v, "title");
        } else if (name == "edge") {
            p.edge = Word(v, "edge", kEdges);
        } else {
            Fail("unknown program field \"" + name +
                 "\" (fanfold, crossfold, width, length, margin, punch, tab, bins, maxlength, "
                 "delivery, title, edge)");
        }
    }
    return p;
}

template <std::size_t N>
std::vector<std::string> WordList(std::string_view value, std::string_view what,
                                  const std::string_view (&table)[N])
{
    std::vector<std::string> words;
    for (const std::string& w : SplitFields(value)) {
        words.push_back(Word(w, what, table));
    }
    return words;
}

// A raw line: "\t" stands for a tab and "\\" for a backslash.
std::string RawLine(std::string_view value)
{
    std::string out;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\\' && i + 1 < value.size() &&
            (value[i + 1] == 't' || value[i + 1] == '\\')) {
            out += value[i + 1] == 't' ? '\t' : '\\';
            ++i;
        } else {
            out += value[i];
        }
    }
    return out;
}

// Text that is sent on a line of its own: must not be empty.
std::string Text(std::string_view value, std::string_view what)
{
    if (value.empty()) {
        Fail(std::string(what) + " is empty");
    }
    return std::string(value);
}

bool Boolean(std::string_view value, std::string_view what)
{
    if (value == "TRUE") {
        return true;
    }
    if (value == "FALSE") {
        return false;
    }
    Fail(std::string(what) + " must be TRUE or FALSE");
}

void Apply(Profile& p, const std::string& key, std::string_view v)
{
    Finisher& fin = p.finisher;
    if (key.rfind("finisher.", 0) == 0) {
        fin.present = true;
    }
    using Setter = std::function<void()>;
    const std::map<std::string, Setter> setters = {
        {"id", [&] { p.id = Text(v, "id"); }},
        {"firmware", [&] { p.firmware = Text(v, "firmware"); }},
        {"memory", [&] { p.memory = Number(v, "memory"); }},
        {"memory-largest", [&] { p.memoryLargest = Number(v, "memory-largest"); }},
        {"display-lines", [&] { p.displayLines = Number(v, "display-lines"); }},
        {"display-character-size",
         [&] { p.displayCharacterSize = Number(v, "display-character-size"); }},
        {"scanner", [&] { p.scanner = Text(v, "scanner"); }},
        {"modem", [&] { p.modem = Text(v, "modem"); }},
        {"finisher-type", [&] { p.finisherType = Text(v, "finisher-type"); }},
        {"manual", [&] { p.manual = ParseRoll(v); }},
        {"accounting", [&] { p.accounting = Word(v, "accounting", kAccountingModes); }},
        {"label-font", [&] { p.labelFont = Cell(v, "label-font"); }},
        {"default-stamp", [&] { p.defaultStamp = Cell(v, "default-stamp"); }},
        {"status-code", [&] { p.statusCode = Number(v, "status-code"); }},
        {"status-display", [&] { p.statusDisplay = std::string(v); }},
        {"online", [&] { p.online = Boolean(v, "online"); }},
        {"finisher.model", [&] { fin.model = Text(v, "finisher.model"); }},
        {"finisher.version", [&] { fin.version = Text(v, "finisher.version"); }},
        {"finisher.bins", [&] { fin.bins = Number(v, "finisher.bins"); }},
        {"finisher.min-margin", [&] { fin.minMargin = Number(v, "finisher.min-margin"); }},
        {"finisher.max-margin", [&] { fin.maxMargin = Number(v, "finisher.max-margin"); }},
        {"finisher.fanfolds", [&] { fin.fanFolds = WordList(v, "fanfold", kFanFolds); }},
        {"finisher.crossfolds", [&] { fin.crossFolds = WordList(v, "crossfold", kCrossFolds); }},
        {"finisher.punches", [&] { fin.punches = WordList(v, "punch", kPunches); }},
        {"finisher.tabs", [&] { fin.tabs = WordList(v, "tab", kTabs); }},
        {"finisher.program-count", [&] { fin.programCount = Number(v, "finisher.program-count"); }},
        {"finisher.row-end",
         [&] {
             if (v != "CRLF" && v != "LF") {
                 Fail("finisher.row-end must be CRLF or LF");
             }
             fin.rowsEndInLF = v == "LF";
         }},
    };
    // Keys that may be given more than once, each adding a row.
    const std::map<std::string, Setter> lists = {
        {"config-line", [&] { p.configLines.push_back(RawLine(v)); }},
        {"variables-line", [&] { p.variablesLines.push_back(RawLine(v)); }},
        {"font", [&] { p.fonts.push_back(ParseFont(v)); }},
        {"stamp", [&] { p.stamps.push_back(ParseStamp(v)); }},
        {"finisher.program", [&] { fin.programs.push_back(ParseProgram(v)); }},
    };
    if (auto it = setters.find(key); it != setters.end()) {
        it->second();
        return;
    }
    if (auto it = lists.find(key); it != lists.end()) {
        it->second();
        return;
    }
    if (key.size() == 5 && key.rfind("roll", 0) == 0 && key[4] >= '1' && key[4] <= '6') {
        p.rolls[key[4] - '1'] = ParseRoll(v);
        return;
    }
    if (key.rfind("roll", 0) == 0) {
        Fail("unknown key \"" + key + "\": rolls are roll1 to roll6");
    }
    Fail("unknown key \"" + key + "\"");
}

bool Repeatable(const std::string& key)
{
    return key == "config-line" || key == "variables-line" || key == "font" || key == "stamp" ||
           key == "finisher.program";
}

} // namespace

std::optional<std::string> RollKeywordForName(std::string_view name)
{
    for (auto [display, keyword] : kRollNames) {
        if (display == name) {
            return std::string(keyword);
        }
    }
    return std::nullopt;
}

std::optional<Profile> ParseProfile(std::string_view text, const std::string& origin,
                                    std::string* error)
{
    Profile profile;
    std::map<std::string, int> seen; // key -> line of its first occurrence
    int lineNumber = 0;
    std::size_t pos = 0;
    while (pos < text.size()) {
        std::size_t end = text.find('\n', pos);
        std::string_view line =
            text.substr(pos, end == std::string_view::npos ? std::string_view::npos : end - pos);
        pos = end == std::string_view::npos ? text.size() : end + 1;
        ++lineNumber;
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        std::string_view trimmed = Trim(line);
        if (trimmed.empty() || trimmed.front() == '#') {
            continue;
        }
        try {
            if (line.find('\0') != std::string_view::npos) {
                Fail("the line holds a zero byte");
            }
            std::size_t eq = trimmed.find('=');
            if (eq == std::string_view::npos) {
                Fail("expected \"key = value\"");
            }
            std::string key(Trim(trimmed.substr(0, eq)));
            if (key.empty()) {
                Fail("the key before '=' is missing");
            }
            if (!Repeatable(key)) {
                auto [it, fresh] = seen.emplace(key, lineNumber);
                if (!fresh) {
                    Fail("\"" + key + "\" is given again (first on line " +
                         std::to_string(it->second) + ")");
                }
            }
            Apply(profile, key, Trim(trimmed.substr(eq + 1)));
        } catch (const Failure& failure) {
            if (error) {
                *error = origin + ":" + std::to_string(lineNumber) + ": " + failure.message;
            }
            return std::nullopt;
        }
    }
    return profile;
}

std::optional<Profile> LoadProfile(const std::string& path, std::string* error)
{
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) {
        if (error) {
            *error = path + ": cannot open the profile: " + std::strerror(errno);
        }
        return std::nullopt;
    }
    std::string text;
    char chunk[4096];
    std::size_t n;
    while ((n = std::fread(chunk, 1, sizeof chunk, file)) > 0) {
        text.append(chunk, n);
    }
    const bool failed = std::ferror(file) != 0;
    const int readErrno = errno;
    std::fclose(file);
    if (failed) {
        if (error) {
            *error = path + ": cannot read the profile: " + std::strerror(readErrno);
        }
        return std::nullopt;
    }
    return ParseProfile(text, path, error);
}

} // namespace pjlsim
