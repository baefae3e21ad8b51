// Records printed field by field by their names, as text or as JSON, and record files read.
#pragma once

#include "driver/devmode/devmodeex.h"
#include "platform/usersim/controlstate.h"

#include <cstdint>
#include <string>
#include <vector>

// A minimal JSON writer: objects and arrays of numbers and strings, keys in the order given.
// Strings come out as pure ASCII: everything beyond it, lone surrogates included, as \uXXXX.
class JsonWriter
{
public:
    void BeginObject(const char* key = nullptr);
    void EndObject();
    void BeginArray(const char* key = nullptr);
    void EndArray();
    void Number(const char* key, long long value);
    void String(const char* key, const std::string& utf8);
    void String(const char* key, const std::u16string& text);
    void Bool(const char* key, bool value);
    void Null(const char* key);
    // A number already written as text, such as a decimal fraction.
    void Literal(const char* key, const std::string& text);
    const std::string& Text() const { return m_text; }

private:
    void Key(const char* key);
    std::string m_text;
    std::vector<bool> m_first;
};

std::string JsonQuote(const std::u16string& text);
std::string JsonQuote(const std::string& utf8);

// UTF-16 text for a terminal: UTF-8, with control characters, quotes, backslashes and lone
// surrogates escaped, so that a hostile name cannot move the cursor.
std::string TextQuote(const std::u16string& text);

// Text of a WCHAR field of cch units, ending at its NUL or at the field's end. The bytes need
// not be aligned.
std::u16string BoundedText(const BYTE* p, size_t cch);

// The names of a list field of cch units: zero-terminated names up to an empty one or the
// field's end.
std::vector<std::u16string> BoundedList(const BYTE* p, size_t cch);

// A finisher block of cb bytes (at most a whole TVOFinisherInfo is read) as a JSON object: its
// fields and its first min(numPrograms, 20) programs.
void FinisherToJson(JsonWriter& json, const char* key, const BYTE* info, size_t cb);

// Thousandths as a decimal number without trailing zeros: 200 is "0.2", -1500 is "-1.5".
std::string FixedText(long long thousandths);

// The record's fields by name, those that lie within its first cb bytes: a record shorter
// than this driver's shows what it has, and nothing is read beyond it. The finisher block is
// shown by its own fields and its first min(numPrograms, 20) programs.
std::string RecordAsText(const BYTE* record, size_t cb);
std::string RecordAsJson(const BYTE* record, size_t cb);
void RecordToJson(JsonWriter& json, const char* key, const BYTE* record, size_t cb);

// One field of the record as text, by its name, with an element index for arrays
// ("dmxRollWidth[1]"): numbers as the record's text shows them, texts as UTF-8, lists as their
// names joined by "|". The finisher's fields are "dmxFinisher.Model" and
// "dmxFinisher.programs[2].name". False for a name the record has no such field or element
// by, or one beyond its first cb bytes.
bool RecordFieldText(const BYTE* record, size_t cb, const std::string& name, std::string* text);
// Sets a field named as RecordFieldText names it from such a text (numbers also in 0x hex).
// False with *error for an unknown field, a value the field cannot hold or a text too long.
bool SetRecordField(BYTE* record, size_t cb, const std::string& name, const std::string& text,
                    std::string* error);

// What the record is to this driver: "this driver's current layout", ... "not a record of
// this driver".
const char* RecordKindText(const BYTE* record, size_t cb);

// The number of bytes a record declares, dmSize + dmDriverExtra; 0 when it is too short to
// hold those two fields.
size_t DeclaredRecordSize(const BYTE* record, size_t cb);

// Reads a record file. Refuses, with a message, a file that cannot be read, one shorter than
// a public part (220 bytes) or than the size its dmSize + dmDriverExtra declare, and one
// larger than any record could be.
bool ReadRecordFile(const std::string& path, std::vector<uint8_t>* bytes, std::string* error);
bool WriteFileBytes(const std::string& path, const void* data, size_t cb, std::string* error);

// A window's controls as the array "controls", by the words both platforms use.
void ControlsToJson(JsonWriter& json, const std::vector<usersim::ControlState>& controls);
