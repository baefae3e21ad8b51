// Helpers of the decoding tests: names as 8-bit text, and a reply run through the real parser
// and then decoded.
#pragma once

#include "driver/dialogue/qlmrefresh_decode.h"
#include "driver/dialogue/tvoparsepjl.h"

#include <string>
#include <vector>

namespace decodefixture {

// A UTF-16 text as 8-bit for messages and comparisons (the names are ASCII).
inline std::string Narrow(const WCHAR* s)
{
    std::string out;
    for (; s && *s; s++)
        out += static_cast<char>(*s);
    return s ? out : "<null>";
}

// The names of a run of zero-terminated names of cb bytes.
inline std::vector<std::string> Names(const WCHAR* list, size_t cb)
{
    std::vector<std::string> names;
    size_t cch = cb / sizeof(WCHAR);
    std::string current;
    for (size_t i = 0; i < cch; i++) {
        if (list[i] == 0) {
            names.push_back(current);
            current.clear();
        } else {
            current += static_cast<char>(list[i]);
        }
    }
    return names;
}

// The reply parsed with the parser's bounded form over a buffer of exactly its length, then
// decoded into a fresh TVOPJLConfig that the destructor releases.
struct Decoded
{
    std::vector<char> buffer;
    std::vector<PJLTokenValue> tokens;
    int status = -1;
    TVOPJLConfig config;

    explicit Decoded(const std::string& reply, DWORD maxTokens = kPJL_MAX_TOKENS)
        : buffer(reply.begin(), reply.end()), tokens(maxTokens)
    {
        QLMInitPJLConfig(&config);
        DWORD count = 0;
        const char* end = nullptr;
        TVOParsePJL parser;
        status = parser.getAllPJLTokens(buffer.data(), static_cast<DWORD>(buffer.size()), maxTokens,
                                        tokens.data(), &count, &end);
        tokens.resize(count);
        getValuesFromTokens(&config, tokens.data(), count, buffer.data(),
                            static_cast<DWORD>(buffer.size()));
    }
    ~Decoded() { QLMFreePJLConfig(&config); }
    Decoded(const Decoded&) = delete;
    Decoded& operator=(const Decoded&) = delete;
};

} // namespace decodefixture
