// A script case: a script of a person's actions with directives, comment lines "#: WORD ...",
// that say which sheet it opens and what must come out. The host's and the Windows runner's
// sheet commands read the same files, so a case means the same on both platforms.
//
//   #: printer NAME       the queue (default "Plan 2440")
//   #: sheet document     or device (default document)
//   #: mode FLAGS         the document sheet's fMode, as --mode takes it
//   #: result N           the sheet's result: 1 OK, 0 Cancel
//   #: set FIELD TEXT     the document sheet is given the queue's record with this field
//                         set (as pdmIn, one line a field), as records are printed
//   #: record FIELD TEXT  a field of the record the caller gets, as records are printed;
//                         FIELD may carry an element index, dmxRollWidth[1]
//   #: pjlsim [PROFILE] [--fault MODE[:QUERY]]... [--delay-ms N] [--address A]
//                         the printer answers: a simulated plotter (the built-in profile, or
//                         a profile file, with pjlsim's faults) on the address of its port
//                         IP_a.b.c.d, or on A, while the case runs. The host runs it itself;
//                         for the Windows build the Wine run starts the program beforehand
//   #: data NAME VALUE    a value of the queue's printer data (PrinterDriverData) before the
//                         sheet opens; VALUE is "dword N" or "binary HEX" (no HEX: empty)
//   #: stored NAME VALUE  the printer data value the sheet leaves, in the same words
//   #: wine-skip REASON   a defect of Wine's, written down in docs/wine.md: not run there
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

// A printer data value of a case: a DWORD (REG_DWORD) or bytes (REG_BINARY).
struct CaseDataValue
{
    std::string name;
    bool dword = false;
    std::vector<unsigned char> bytes; // a DWORD's four, little-endian
};

// The simulated plotter of a case, in pjlsim's own words.
struct CasePjlsim
{
    std::string profile;             // empty: the built-in one
    std::vector<std::string> faults; // MODE or MODE:QUERY, as pjlsim --fault takes them
    std::optional<unsigned> delayMs; // pjlsim's --delay-ms
    std::string address;             // empty: the address of the queue's port
};

// Reads the words of a "#: pjlsim" line; false with the reason in *error.
bool ParseCasePjlsim(const std::string& words, CasePjlsim* pjlsim, std::string* error);

struct ScriptCase
{
    std::string printer = "Plan 2440";
    bool device = false;
    std::string mode; // empty: the runner's default
    std::optional<long long> result;
    std::vector<std::pair<std::string, std::string>> set;
    std::vector<std::pair<std::string, std::string>> record;
    std::vector<CaseDataValue> data;
    std::vector<CaseDataValue> stored;
    std::optional<std::string> pjlsim; // the words of "#: pjlsim" (ParseCasePjlsim)
    std::string wineSkip;
};

// Reads the directives of a script; false with "line N: ..." in *error for one it does not know
// or cannot read.
bool ParseScriptCase(const std::string& script, ScriptCase* scriptCase, std::string* error);

// A script's actions, read as the person's part reads them, held to what a person can do: false
// with a message for a script that cannot be read, one without a single action (an empty file
// is a mistake, not a person who did nothing), an arrow pressed more times than any up-down
// has steps, or a thumb slid to a position no trackbar has.
bool CheckScriptActions(const std::string& script, std::string* error);

// What the outcome breaks of the case's expectations, one message each. record may be null
// when the caller got none.
std::vector<std::string> CheckScriptCase(const ScriptCase& scriptCase, long long result,
                                         const unsigned char* record, size_t cb);

// A value as "#: data" and "#: stored" write it: "dword 64", "binary 0a0b", "binary".
std::string CaseDataText(bool dword, const std::vector<unsigned char>& bytes);
