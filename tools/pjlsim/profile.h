// A simulated printer's state, as read from a profile file. Values are kept in the words the
// printer puts on the wire; the parser checks them against the words the driver understands.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pjlsim {

// One roll or the manual feed: size keyword, state keyword and media type as sent.
struct Roll
{
    std::string size;   // "ROLL_36"
    std::string status; // "FULL"
    std::string type;   // PAPER, "PRESENTATION_360" with its quotes, or "" for no type
};

struct Font
{
    std::string object; // object name, sent in double quotes
    std::string name;   // font name, last column
    std::string rw = "R";
    std::string remove = "N";
    unsigned size = 0;
};

struct Stamp
{
    std::string object;
    std::string rw = "R";
    std::string remove = "N";
    unsigned size = 0;
};

struct FinisherProgram
{
    std::string name;
    std::string fanFold = "NONE";
    std::string crossFold = "NONE";
    unsigned width = 0;
    unsigned length = 0;
    unsigned margin = 0;
    std::string punch = "NONE";
    std::string tab = "NONE";
    unsigned bins = 1;
    unsigned maxLength = 0;
    std::string sheetDelivery = "FACEUP";
    unsigned title = 0;
    std::string edge = "LONGEDGE";
};

struct Finisher
{
    bool present = false;
    std::string model;
    std::string version;
    unsigned bins = 1;
    unsigned minMargin = 0;
    unsigned maxMargin = 0;
    std::vector<std::string> fanFolds, crossFolds, punches, tabs;
    std::vector<FinisherProgram> programs;
    std::optional<unsigned> programCount; // overrides NUMPROGRAMS, else the rows listed
    bool rowsEndInLF = false;             // program rows end in LF alone instead of CR LF
};

struct Profile
{
    std::string id = "PJLSIM";
    std::optional<std::string> firmware;
    std::optional<unsigned> memory;
    std::optional<unsigned> displayLines;
    std::optional<unsigned> displayCharacterSize;
    std::optional<std::string> scanner;
    std::optional<std::string> modem;
    std::optional<std::string> finisherType;
    std::vector<std::string> configLines; // raw extra lines of the CONFIG reply

    std::array<std::optional<Roll>, 6> rolls;
    std::optional<Roll> manual;
    std::optional<std::string> accounting;
    std::optional<std::string> labelFont;
    std::optional<std::string> defaultStamp;
    std::vector<std::string> variablesLines; // raw extra entries of the VARIABLES reply

    std::vector<Font> fonts;
    std::vector<Stamp> stamps;
    Finisher finisher;

    unsigned statusCode = 10001;
    std::string statusDisplay = "READY";
    bool online = true;
    unsigned memoryLargest = 0;
};

// Parses profile text; origin names the source in messages. On failure returns nothing and
// sets *error to "origin:line: message".
std::optional<Profile> ParseProfile(std::string_view text, const std::string& origin,
                                    std::string* error);

// Reads and parses a profile file.
std::optional<Profile> LoadProfile(const std::string& path, std::string* error);

// The profile built into the program: the demo's Plan 2440.
std::string_view DefaultProfileText();

// The wire keyword for a driver roll name such as "Roll 36in", or nothing.
std::optional<std::string> RollKeywordForName(std::string_view name);

} // namespace pjlsim
