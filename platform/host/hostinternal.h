// What the units of the host share and nobody outside it sees: the one lock of the host's
// state, and the text helpers that the Win32 names need for their UTF-16 arguments.
#pragma once

#include "host.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace host::detail {

// One lock for the store, the handle table and the queues of the host. Recursive, because a
// Win32 name may call a host:: helper (UserName() inside the registry, for instance).
std::recursive_mutex& StateMutex();
using Lock = std::lock_guard<std::recursive_mutex>;

// How many live objects each table holds, for host::CountHandles.
size_t LiveWindowCount();
size_t LiveMenuCount();
size_t LoadedModuleCount();
size_t LiveMemoryBlockCount();
size_t LivePageCount();

// The count of one spooler or registry name: made once, where the name is, and listed for
// host::CallCounts. Counting is an atomic increment, so the names stay as quick as they were.
class CallCounter
{
public:
    explicit CallCounter(const char* name);
    const char* name;
    std::atomic<long long> count{0};
};

// Counts a call made from outside the host: a name that the host itself calls while serving
// one is not counted again.
class CountedCall
{
public:
    // caller: the return address of the counted name, for the module filter.
    CountedCall(CallCounter& counter, const void* caller);
    ~CountedCall();
    CountedCall(const CountedCall&) = delete;
    CountedCall& operator=(const CountedCall&) = delete;
};
#define QLM_HOST_COUNTED_CALL()                                                                    \
    static ::host::detail::CallCounter counter_(__func__);                                         \
    ::host::detail::CountedCall countedCall_(counter_, __builtin_return_address(0))

// ---- UTF-16 text ---------------------------------------------------------------------------
inline size_t WLen(const WCHAR* s)
{
    size_t n = 0;
    if (s) {
        while (s[n]) {
            ++n;
        }
    }
    return n;
}
inline std::u16string FromW(const WCHAR* s)
{
    return s ? std::u16string(s, WLen(s)) : u"";
}

// The registry and the spooler compare names with ASCII letters folded; so does SQLite's NOCASE.
inline char16_t FoldChar(char16_t c)
{
    return (c >= u'A' && c <= u'Z') ? char16_t(c + 32) : c;
}
inline std::u16string Fold(std::u16string s)
{
    for (auto& c : s) {
        c = FoldChar(c);
    }
    return s;
}
inline bool EqualNoCase(const std::u16string& a, const std::u16string& b)
{
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (FoldChar(a[i]) != FoldChar(b[i])) {
            return false;
        }
    }
    return true;
}

// Folds four characters held in one word at once: a lane below 0x8000 that lies within 'A'..'Z'
// gets 32 added; the lanes cannot carry into each other.
inline uint64_t FoldWord(uint64_t w)
{
    constexpr uint64_t kHigh = 0x8000800080008000ull, kLanes = 0x0001000100010001ull;
    uint64_t low = w & ~kHigh;
    uint64_t atLeastA = (low + (0x8000 - u'A') * kLanes) & kHigh;
    uint64_t aboveZ = (low + (0x8000 - u'Z' - 1) * kLanes) & kHigh;
    return w + ((atLeastA & ~aboveZ & ~w) >> 10); // bit 15 of a lane down to bit 5: 32
}

// Folds text into out (when given, with room for text.size()) and returns a hash of the folded
// text, four characters a step: the driver makes a hundred look-ups per call, and a look-up
// that folds and hashes a character at a time costs as much as the rest of it. The words'
// products do not wait for each other; their position keeps "abcdefgh" apart from "efghabcd".
inline uint64_t FoldAndHash(std::u16string_view text, char16_t* out, uint64_t seed)
{
    constexpr uint64_t kMultiplier = 0xff51afd7ed558ccdull, kPosition = 0x9E3779B97F4A7C15ull;
    const size_t size = text.size();
    uint64_t sum = 0, position = 0;
    auto step = [&](size_t at, uint64_t w) {
        w = FoldWord(w);
        if (out) {
            std::memcpy(out + at, &w, sizeof w);
        }
        sum += (w ^ position) * kMultiplier;
        position += kPosition;
    };
    uint64_t w = 0;
    if (size >= 4) {
        size_t i = 0;
        for (; i + 4 <= size; i += 4) {
            std::memcpy(&w, text.data() + i, sizeof w);
            step(i, w);
        }
        if (i < size) { // the last four characters, overlapping what is folded already
            std::memcpy(&w, text.data() + size - 4, sizeof w);
            step(size - 4, w);
        }
    } else if (size) {
        for (size_t j = 0; j < size; ++j) {
            w |= uint64_t(text[j]) << (16 * j);
        }
        w = FoldWord(w);
        for (size_t j = 0; out && j < size; ++j) {
            out[j] = char16_t(w >> (16 * j));
        }
        sum = w * kMultiplier;
    }
    uint64_t h = (seed ^ sum ^ size) * kMultiplier;
    return h ^ (h >> 32);
}

// A folded copy of a text and its hash for a look-up, on the stack when it is short (as names
// are), so that the hot read paths allocate nothing. seed chains the hashes of several texts.
class FoldedText
{
public:
    FoldedText(std::u16string_view text, uint64_t seed)
    {
        char16_t* out = small_;
        if (text.size() > kSmall) {
            large_.reset(new char16_t[text.size()]);
            out = large_.get();
        }
        hash_ = FoldAndHash(text, out, seed);
        view_ = std::u16string_view(out, text.size());
    }
    FoldedText(const FoldedText&) = delete;
    FoldedText& operator=(const FoldedText&) = delete;
    std::u16string_view view() const { return view_; }
    uint64_t hash() const { return hash_; }

private:
    static constexpr size_t kSmall = 64;
    char16_t small_[kSmall];
    std::unique_ptr<char16_t[]> large_;
    std::u16string_view view_;
    uint64_t hash_ = 0;
};

// Copies text and its terminator; the caller has checked the room.
inline void PutW(WCHAR* dst, const std::u16string& text)
{
    std::memcpy(dst, text.data(), text.size() * sizeof(WCHAR));
    dst[text.size()] = 0;
}

// The login name of the process's user, as GetUserNameW reports it without an override.
std::u16string LoginName();

} // namespace host::detail
