// Replies in the forms the driver's grammar accepts: the echoed command, CR LF line ends,
// tab-indented option lines after a variable, the table headings, a formfeed at the end.
#include "replies.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace pjlsim {
namespace {

constexpr std::string_view kUEL = "\x1b%-12345X";
constexpr std::string_view kInfoNames[] = {
    "ID", "CONFIG", "VARIABLES", "TVOFONTS", "TVORASTERSTAMPS", "TVOFINISHER", "STATUS", "MEMORY"};

bool EqualNoCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::toupper(static_cast<unsigned char>(x)) ==
                      std::toupper(static_cast<unsigned char>(y));
           });
}

std::string Upper(std::string_view s)
{
    std::string out(s);
    for (char& c : out) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return out;
}

bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

// The line without a leading UEL and surrounding blanks.
std::string_view Command(std::string_view line)
{
    while (line.substr(0, kUEL.size()) == kUEL) {
        line.remove_prefix(kUEL.size());
    }
    while (!line.empty() && (IsBlank(line.front()) || line.front() == '\r')) {
        line.remove_prefix(1);
    }
    while (!line.empty() && (IsBlank(line.back()) || line.back() == '\r')) {
        line.remove_suffix(1);
    }
    return line;
}

// Splits off the next blank-separated word; *rest is what follows it.
std::string_view NextWord(std::string_view s, std::string_view* rest)
{
    std::size_t start = 0;
    while (start < s.size() && IsBlank(s[start])) {
        ++start;
    }
    std::size_t end = start;
    while (end < s.size() && !IsBlank(s[end])) {
        ++end;
    }
    *rest = s.substr(end);
    return s.substr(start, end - start);
}

const char* const kCRLF = "\r\n";

// A variable with its value and its allowed values on tab-indented lines.
void Enumerated(std::string& out, const std::string& name, const std::string& value,
                const std::vector<std::string>& allowed)
{
    out += name + " = " + value + " [" + std::to_string(allowed.size()) + " ENUMERATED]" + kCRLF;
    for (const std::string& a : allowed) {
        out += "\t" + a + kCRLF;
    }
}

// Types with quotes are compared behind the "= ", so they carry a blank of their own.
void TypeLine(std::string& out, const std::string& name, const std::string& type)
{
    if (!type.empty() && type.front() == '"') {
        out += name + " =  " + type + kCRLF;
    } else {
        Enumerated(out, name, type, {"PAPER", "FILM", "VELLUM", "BOND"});
    }
}

std::string Id(const Profile& p)
{
    return "@PJL INFO ID\r\n\"" + p.id + "\"\r\n\f";
}

std::string Config(const Profile& p)
{
    std::string out = "@PJL INFO CONFIG\r\n";
    if (p.memory) {
        out += "MEMORY=" + std::to_string(*p.memory) + kCRLF;
    }
    if (p.displayLines) {
        out += "DISPLAY LINES=" + std::to_string(*p.displayLines) + kCRLF;
    }
    if (p.displayCharacterSize) {
        out += "DISPLAY CHARACTER SIZE=" + std::to_string(*p.displayCharacterSize) + kCRLF;
    }
    if (p.firmware) {
        out += "ESS SW REV=" + *p.firmware + kCRLF;
    }
    if (p.scanner) {
        out += "SCANNER TYPE=" + *p.scanner + kCRLF;
    }
    if (p.modem) {
        out += "MODEM TYPE=" + *p.modem + kCRLF;
    }
    if (p.finisherType) {
        out += "FINISHER TYPE=" + *p.finisherType + kCRLF;
    }
    for (const std::string& line : p.configLines) {
        out += line + kCRLF;
    }
    return out + "\f";
}

std::string Variables(const Profile& p)
{
    std::string out = "@PJL INFO VARIABLES\r\n";
    // The sizes on offer are those loaded, in the order of the rolls.
    std::vector<std::string> sizes;
    for (const auto& roll : p.rolls) {
        if (roll && std::find(sizes.begin(), sizes.end(), roll->size) == sizes.end()) {
            sizes.push_back(roll->size);
        }
    }
    for (std::size_t i = 0; i < p.rolls.size(); ++i) {
        if (p.rolls[i]) {
            Enumerated(out, "INROLL" + std::to_string(i + 1) + "SIZE", p.rolls[i]->size, sizes);
        }
    }
    if (p.manual) {
        Enumerated(out, "MANUALSIZE", p.manual->size, {p.manual->size});
    }
    for (std::size_t i = 0; i < p.rolls.size(); ++i) {
        if (p.rolls[i]) {
            TypeLine(out, "INROLL" + std::to_string(i + 1) + "TYPE", p.rolls[i]->type);
        }
    }
    if (p.manual) {
        TypeLine(out, "MANUALTYPE", p.manual->type);
    }
    const std::vector<std::string> states = {"NONE", "FULL", "LOW", "EMPTY"};
    for (std::size_t i = 0; i < p.rolls.size(); ++i) {
        if (p.rolls[i]) {
            Enumerated(out, "INROLL" + std::to_string(i + 1) + "STAT", p.rolls[i]->status, states);
        }
    }
    if (p.manual) {
        Enumerated(out, "MANUALSTAT", p.manual->status, states);
    }
    if (p.accounting) {
        Enumerated(out, "PRTACCTMODE", *p.accounting, {"ENABLED", "DISABLED", "OPTIONAL"});
    }
    // Object names are read two bytes behind the "= ": a blank and the opening quote.
    if (p.labelFont) {
        out += "LABELFONTOBJ =  \"" + *p.labelFont + "\"" + kCRLF;
    }
    if (p.defaultStamp) {
        out += "RASTERSTAMPID =  \"" + *p.defaultStamp + "\"" + kCRLF;
    }
    for (const std::string& line : p.variablesLines) {
        out += line + kCRLF;
    }
    return out + "\f";
}

std::string Fonts(const Profile& p)
{
    std::string out = "@PJL INFO TVOFONTS\r\nR/W\tDELETE\tSIZE\tOBJECT NAME\tFONT NAME\r\n";
    for (const Font& f : p.fonts) {
        out += f.rw + "\t" + f.remove + "\t" + std::to_string(f.size) + "\t\"" + f.object + "\"\t" +
               f.name + kCRLF;
    }
    return out + "\f";
}

std::string Stamps(const Profile& p)
{
    std::string out = "@PJL INFO TVORASTERSTAMPS\r\nR/W\tDELETE\tSIZE\tOBJECT NAME\r\n";
    for (const Stamp& s : p.stamps) {
        out += s.rw + "\t" + s.remove + "\t" + std::to_string(s.size) + "\t\"" + s.object + "\"" +
               kCRLF;
    }
    return out + "\f";
}

void WordList(std::string& out, const char* name, const std::vector<std::string>& words)
{
    out += std::string(name) + " = " + std::to_string(words.size()) + kCRLF;
    for (const std::string& w : words) {
        out += "\t" + w + kCRLF;
    }
}

std::string FinisherReply(const Profile& p)
{
    std::string out = "@PJL INFO TVOFINISHER\r\n";
    const Finisher& f = p.finisher;
    if (!f.present) {
        return out + "\f";
    }
    const unsigned count =
        f.programCount ? *f.programCount : static_cast<unsigned>(f.programs.size());
    out += "MODEL = " + f.model + kCRLF;
    out += "VERSION = " + f.version + kCRLF;
    out += "NUMPROGRAMS = " + std::to_string(count) + kCRLF;
    out += "NUMBINS = " + std::to_string(f.bins) + kCRLF;
    WordList(out, "FANFOLDS", f.fanFolds);
    WordList(out, "CROSSFOLDS", f.crossFolds);
    WordList(out, "PUNCH", f.punches);
    WordList(out, "TABS", f.tabs);
    out += "MINMARGIN = " + std::to_string(f.minMargin) + kCRLF;
    out += "MAXMARGIN = " + std::to_string(f.maxMargin) + kCRLF;
    out += "FINISHERPROGRAMS\r\n";
    out += "NAME\tFANFOLD\tCROSSFOLD\tWIDTH\tLENGTH\tMARGIN\tPUNCH\tTAB\tBINS\tMAXLENGTH\t"
           "SHEETDELIVERY\tTITLE\tEDGE\r\n";
    const char* rowEnd = f.rowsEndInLF ? "\n" : kCRLF;
    for (const FinisherProgram& r : f.programs) {
        out += r.name + "\t" + r.fanFold + "\t" + r.crossFold + "\t" + std::to_string(r.width) +
               "\t" + std::to_string(r.length) + "\t" + std::to_string(r.margin) + "\t" + r.punch +
               "\t" + r.tab + "\t" + std::to_string(r.bins) + "\t" + std::to_string(r.maxLength) +
               "\t" + r.sheetDelivery + "\t" + std::to_string(r.title) + "\t" + r.edge + rowEnd;
    }
    return out + "\f";
}

std::string Status(const Profile& p)
{
    return "@PJL INFO STATUS\r\nCODE=" + std::to_string(p.statusCode) + "\r\nDISPLAY=\"" +
           p.statusDisplay + "\"\r\nONLINE=" + (p.online ? "TRUE" : "FALSE") + "\r\n\f";
}

std::string Memory(const Profile& p)
{
    return "@PJL INFO MEMORY\r\nTOTAL=" + std::to_string(p.memory.value_or(0)) +
           "\r\nLARGEST=" + std::to_string(p.memoryLargest) + "\r\n\f";
}

} // namespace

bool IsQueryName(std::string_view name)
{
    return name == "ECHO" ||
           std::find(std::begin(kInfoNames), std::end(kInfoNames), name) != std::end(kInfoNames);
}

std::optional<std::string> QueryName(std::string_view line)
{
    std::string_view rest;
    std::string_view pjl = NextWord(Command(line), &rest);
    if (!EqualNoCase(pjl, "@PJL")) {
        return std::nullopt;
    }
    std::string_view verb = NextWord(rest, &rest);
    if (EqualNoCase(verb, "ECHO")) {
        return "ECHO";
    }
    if (!EqualNoCase(verb, "INFO")) {
        return std::nullopt;
    }
    std::string category = Upper(NextWord(rest, &rest));
    std::string_view after;
    if (!NextWord(rest, &after).empty() || !IsQueryName(category) || category == "ECHO") {
        return std::nullopt;
    }
    return category;
}

std::optional<std::string> BuildReply(const Profile& profile, std::string_view line)
{
    std::optional<std::string> name = QueryName(line);
    if (!name) {
        return std::nullopt;
    }
    if (*name == "ECHO") {
        // The echo carries back whatever stood behind the word, as it was sent.
        std::string_view rest;
        NextWord(Command(line), &rest);
        NextWord(rest, &rest);
        return "@PJL ECHO" + std::string(rest) + "\r\n\f";
    }
    if (*name == "ID") {
        return Id(profile);
    }
    if (*name == "CONFIG") {
        return Config(profile);
    }
    if (*name == "VARIABLES") {
        return Variables(profile);
    }
    if (*name == "TVOFONTS") {
        return Fonts(profile);
    }
    if (*name == "TVORASTERSTAMPS") {
        return Stamps(profile);
    }
    if (*name == "TVOFINISHER") {
        return FinisherReply(profile);
    }
    if (*name == "STATUS") {
        return Status(profile);
    }
    return Memory(profile);
}

} // namespace pjlsim
