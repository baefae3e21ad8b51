// Records printed field by field by their names, as text or as JSON.
#pragma once

#include "driver/devmode/devmodeex.h"

#include <string>
#include <vector>

// A minimal JSON writer: objects and arrays of numbers and strings, keys in the order given.
class JsonWriter
{
public:
    void BeginObject(const char* key = nullptr);
    void EndObject();
    void BeginArray(const char* key = nullptr);
    void EndArray();
    void Number(const char* key, long long value);
    void String(const char* key, const std::string& value);
    void Bool(const char* key, bool value);
    // A number already written as text, such as a decimal fraction.
    void Literal(const char* key, const std::string& text);
    const std::string& Text() const { return m_text; }

private:
    void Key(const char* key);
    std::string m_text;
    std::vector<bool> m_first;
};

std::string JsonQuote(const std::string& text);

// The record's fields by name: "name = value" lines, or one JSON object.
std::string DevmodeAsText(const DEVMODEEX& dm);
std::string DevmodeAsJson(const DEVMODEEX& dm);
