// Any bytes a printer can send, as the refresh hands them to the parser: in a buffer of exactly
// their size with no terminator behind them, so that a read past the reply is an ASan report.
// Every parse must end with a status the parser knows, within its capacity, and every string
// value must lie inside the buffer.
#include "driver/dialogue/tvoparsepjl.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > kPJL_REPLY_BUFFER_SIZE)
        return 0;
    std::vector<char> buffer(data, data + size);
    // The first byte, when there is one, also picks a small capacity now and then, so that the
    // out-of-space path is reached in every kind of reply.
    DWORD maxTokens = size && (data[0] & 0x80) ? (data[0] & 0x0F) : kPJL_MAX_TOKENS;
    PJLTokenValue tokens[kPJL_MAX_TOKENS];
    DWORD count = 0;
    const char* end = nullptr;
    TVOParsePJL parser;
    const char* text = size ? buffer.data() : "";
    int status =
        parser.getAllPJLTokens(text, static_cast<DWORD>(size), maxTokens, tokens, &count, &end);
    if (status < STATUS_OK || status > STATUS_OUTOFSPACE || count > maxTokens)
        std::abort();
    if (end < text || end > text + size)
        std::abort();
    for (DWORD i = 0; i < count; i++) {
        const DWORD token = tokens[i].token;
        const bool bString = token == TOKEN_INFO_ESS_SW_REV || token == TOKEN_INFO_TVOFONTS ||
                             token == TOKEN_INFO_RASTERSTAMP || token == TOKEN_INQUIRE_PRTACCTMODE;
        if (bString && tokens[i].value > size)
            std::abort();
        if (PJLTokenName(token)[0] == '?')
            std::abort(); // only rows of the grammar make tokens
    }
    // The same bytes with a terminator, one reply at a time, must agree with the run.
    std::vector<char> terminated(buffer);
    terminated.push_back(0);
    DWORD first = 0;
    parser.getPJLTokens(terminated.data(), maxTokens, tokens, &first, nullptr);
    if (first > count)
        std::abort();
    return 0;
}
