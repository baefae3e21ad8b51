// Modules: PE files built byte by byte here, whole and damaged, read by the PE reader and
// through LoadLibraryW, LoadStringW and the resource functions; reference counts, the cache
// and its invalidation, bogus handles, and installed driver files.
#include "hosttest.h"

#include "platform/host/modules.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

using namespace hosttest;
using host::detail::PeImage;

namespace {

// ---- Building PE files -----------------------------------------------------------------------

struct Name
{
    uint16_t id = 0;
    std::u16string text; // non-empty: a named entry
    bool operator==(const Name&) const = default;
};
Name Id(uint16_t id)
{
    return {id, {}};
}
Name Named(std::u16string text)
{
    return {0, std::move(text)};
}

struct Resource
{
    Name type;
    Name name;
    uint16_t language;
    std::vector<uint8_t> data;
};

// File offsets of what a test may want to damage.
struct Layout
{
    size_t fileHeader = 0x44;
    size_t optionalHeader = 0x58;
    size_t dataDirectories = 0;
    size_t sectionTable = 0;
    size_t rsrc = 0x200; // the resource section; its directories' offsets are relative to it
    size_t rsrcSize = 0;
    std::vector<size_t> typeDirectories;     // in the order types first appear
    std::vector<size_t> languageDirectories; // one per (type, name), in that order
    std::vector<size_t> dataEntries;         // one per resource, in the order given
    std::vector<size_t> names;               // the name strings, in the order written
    std::vector<size_t> data;                // one per resource
};

void Put16(std::vector<uint8_t>& b, size_t at, uint32_t v)
{
    b[at] = uint8_t(v);
    b[at + 1] = uint8_t(v >> 8);
}
void Put32(std::vector<uint8_t>& b, size_t at, uint32_t v)
{
    Put16(b, at, v & 0xffff);
    Put16(b, at + 2, v >> 16);
}

constexpr uint32_t kRsrcRva = 0x1000;

// A resource-only DLL as a linker lays it out: headers in the first 0x200 bytes, then one
// .rsrc section with directories, data entries, names, and data.
struct PeBuilder
{
    bool pe64 = true;
    size_t dataAlignment = 8;
    size_t dataSkew = 0; // bytes after each alignment point, to place data off alignment
    std::vector<Resource> resources;

    std::vector<uint8_t> Build(Layout* out = nullptr) const
    {
        struct NameGroup
        {
            Name name;
            std::vector<size_t> members;
        };
        struct TypeGroup
        {
            Name type;
            std::vector<NameGroup> names;
        };
        std::vector<TypeGroup> types;
        for (size_t i = 0; i < resources.size(); ++i) {
            auto t = std::find_if(types.begin(), types.end(),
                                  [&](auto& g) { return g.type == resources[i].type; });
            if (t == types.end()) {
                t = types.insert(types.end(), TypeGroup{resources[i].type, {}});
            }
            auto n = std::find_if(t->names.begin(), t->names.end(),
                                  [&](auto& g) { return g.name == resources[i].name; });
            if (n == t->names.end()) {
                n = t->names.insert(t->names.end(), NameGroup{resources[i].name, {}});
            }
            n->members.push_back(i);
        }

        Layout l;
        size_t at = 16 + 8 * types.size();
        for (auto& t : types) {
            l.typeDirectories.push_back(at);
            at += 16 + 8 * t.names.size();
        }
        for (auto& t : types) {
            for (auto& n : t.names) {
                l.languageDirectories.push_back(at);
                at += 16 + 8 * n.members.size();
            }
        }
        l.dataEntries.resize(resources.size());
        for (size_t i = 0; i < resources.size(); ++i) {
            l.dataEntries[i] = at;
            at += 16;
        }
        std::vector<std::pair<const Name*, size_t>> nameAt;
        auto placeName = [&](const Name& n) {
            if (!n.text.empty()) {
                nameAt.emplace_back(&n, at);
                l.names.push_back(at);
                at += 2 + 2 * n.text.size();
            }
        };
        for (auto& t : types) {
            placeName(t.type);
            for (auto& n : t.names) {
                placeName(n.name);
            }
        }
        l.data.resize(resources.size());
        for (size_t i = 0; i < resources.size(); ++i) {
            at = (at + dataAlignment - 1) / dataAlignment * dataAlignment + dataSkew;
            l.data[i] = at;
            at += resources[i].data.size();
        }
        l.rsrcSize = at;

        std::vector<uint8_t> r(at, 0);
        auto nameField = [&](const Name& n) -> uint32_t {
            if (n.text.empty()) {
                return n.id;
            }
            for (auto& [p, off] : nameAt) {
                if (p == &n) {
                    return 0x80000000u | uint32_t(off);
                }
            }
            return 0;
        };
        auto directory = [&](size_t off, size_t count, auto entry) {
            size_t named = 0;
            for (size_t i = 0; i < count; ++i) {
                named += entry(i).first & 0x80000000u ? 1 : 0;
            }
            Put16(r, off + 12, uint32_t(named));
            Put16(r, off + 14, uint32_t(count - named));
            for (size_t i = 0; i < count; ++i) {
                Put32(r, off + 16 + 8 * i, entry(i).first);
                Put32(r, off + 20 + 8 * i, entry(i).second);
            }
        };
        directory(0, types.size(), [&](size_t i) {
            return std::pair{nameField(types[i].type),
                             0x80000000u | uint32_t(l.typeDirectories[i])};
        });
        size_t langIndex = 0;
        for (size_t t = 0; t < types.size(); ++t) {
            size_t first = langIndex;
            directory(l.typeDirectories[t], types[t].names.size(), [&](size_t i) {
                return std::pair{nameField(types[t].names[i].name),
                                 0x80000000u | uint32_t(l.languageDirectories[first + i])};
            });
            for (auto& n : types[t].names) {
                directory(l.languageDirectories[langIndex++], n.members.size(), [&](size_t i) {
                    size_t res = n.members[i];
                    return std::pair{uint32_t(resources[res].language),
                                     uint32_t(l.dataEntries[res])};
                });
            }
        }
        for (size_t i = 0; i < resources.size(); ++i) {
            Put32(r, l.dataEntries[i], kRsrcRva + uint32_t(l.data[i]));
            Put32(r, l.dataEntries[i] + 4, uint32_t(resources[i].data.size()));
            std::copy(resources[i].data.begin(), resources[i].data.end(), r.begin() + l.data[i]);
        }
        for (auto& [n, off] : nameAt) {
            Put16(r, off, uint32_t(n->text.size()));
            for (size_t i = 0; i < n->text.size(); ++i) {
                Put16(r, off + 2 + 2 * i, n->text[i]);
            }
        }

        const size_t raw = (r.size() + 0x1ff) / 0x200 * 0x200;
        std::vector<uint8_t> b(0x200 + raw, 0);
        b[0] = 'M';
        b[1] = 'Z';
        Put32(b, 0x3c, 0x40);
        b[0x40] = 'P';
        b[0x41] = 'E';
        const uint32_t optionalSize = pe64 ? 240 : 224;
        Put16(b, l.fileHeader, pe64 ? 0x8664 : 0x14c);
        Put16(b, l.fileHeader + 2, 1);
        Put16(b, l.fileHeader + 16, optionalSize);
        Put16(b, l.fileHeader + 18, 0x2022);
        const size_t o = l.optionalHeader;
        Put16(b, o, pe64 ? 0x20b : 0x10b);
        Put32(b, o + 32, 0x1000);                                            // SectionAlignment
        Put32(b, o + 36, 0x200);                                             // FileAlignment
        Put32(b, o + 56, kRsrcRva + uint32_t((r.size() + 0xfff) & ~0xfffu)); // SizeOfImage
        Put32(b, o + 60, 0x200);                                             // SizeOfHeaders
        Put16(b, o + 68, 2);                                                 // Subsystem
        l.dataDirectories = o + (pe64 ? 112 : 96);
        Put32(b, l.dataDirectories - 4, 16);
        Put32(b, l.dataDirectories + 16, kRsrcRva);
        Put32(b, l.dataDirectories + 20, uint32_t(r.size()));
        l.sectionTable = o + optionalSize;
        std::memcpy(&b[l.sectionTable], ".rsrc", 5);
        Put32(b, l.sectionTable + 8, uint32_t(r.size()));
        Put32(b, l.sectionTable + 12, kRsrcRva);
        Put32(b, l.sectionTable + 16, uint32_t(raw));
        Put32(b, l.sectionTable + 20, 0x200);
        Put32(b, l.sectionTable + 36, 0x40000040);
        std::copy(r.begin(), r.end(), b.begin() + 0x200);

        auto toFile = [&](std::vector<size_t>& v) {
            for (auto& x : v) {
                x += 0x200;
            }
        };
        toFile(l.typeDirectories);
        toFile(l.languageDirectories);
        toFile(l.dataEntries);
        toFile(l.names);
        toFile(l.data);
        if (out) {
            *out = l;
        }
        return b;
    }
};

// An RT_STRING block: sixteen counted strings, the given slots filled.
std::vector<uint8_t> StringBlock(const std::vector<std::pair<int, std::u16string>>& slots)
{
    std::vector<uint8_t> b;
    for (int slot = 0; slot < 16; ++slot) {
        std::u16string text;
        for (auto& [s, t] : slots) {
            if (s == slot) {
                text = t;
            }
        }
        b.push_back(uint8_t(text.size()));
        b.push_back(uint8_t(text.size() >> 8));
        for (char16_t c : text) {
            b.push_back(uint8_t(c));
            b.push_back(uint8_t(c >> 8));
        }
    }
    return b;
}

std::vector<uint8_t> Blob(const std::string& text)
{
    return std::vector<uint8_t>(text.begin(), text.end());
}

// Strings 0x40 "Hello" (block 5 slot 0) and 0x4f "last" (slot 15), 0x41 empty; string 3
// "three" in block 1; a named "PNG"/"LOGO" resource and version resource 1.
PeBuilder Sample(bool pe64 = true)
{
    PeBuilder p;
    p.pe64 = pe64;
    p.resources = {
        {Id(6), Id(5), 0x409, StringBlock({{0, u"Hello"}, {15, u"last"}})},
        {Id(6), Id(1), 0x409, StringBlock({{3, u"three"}})},
        {Named(u"PNG"), Named(u"LOGO"), 0, Blob("logo bytes")},
        {Id(16), Id(1), 0x409, Blob("version")},
    };
    return p;
}

std::string ParseError(std::vector<uint8_t> bytes)
{
    std::string error;
    auto image = PeImage::Parse(std::move(bytes), &error);
    return image ? std::string() : (error.empty() ? "(no reason)" : error);
}

// ---- Files and modules -----------------------------------------------------------------------

class Modules : public ::testing::Test
{
protected:
    void SetUp() override { std::filesystem::create_directories(HomeFile("modules")); }

    // Writes the file under C:\modules and gives its Windows path.
    static std::u16string Write(const std::string& name, const std::vector<uint8_t>& bytes)
    {
        std::ofstream(HomeFile("modules/" + name), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        return u"C:\\modules\\" + host::Utf8ToUtf16(name);
    }

    static std::u16string LoadString(HMODULE module, UINT id)
    {
        WCHAR buffer[256];
        int n = LoadStringW(module, id, buffer, 256);
        return std::u16string(buffer, size_t(std::max(n, 0)));
    }
};

// ---- The reader ------------------------------------------------------------------------------

TEST(PeReader, ReadsBothKindsOfHeaders)
{
    for (bool pe64 : {true, false}) {
        std::string error;
        auto image = PeImage::Parse(Sample(pe64).Build(), &error);
        ASSERT_TRUE(image) << error;
        EXPECT_EQ(image->Is64Bit(), pe64);
        EXPECT_EQ(image->Resources().size(), 4u);
        const char16_t* text = nullptr;
        uint16_t length = 0;
        ASSERT_EQ(image->FindString(0x4f, &text, &length), host::detail::StringLookup::Found);
        EXPECT_EQ(std::u16string(text, length), u"last");
    }
}

TEST(PeReader, RefusesEveryTruncation)
{
    const std::vector<uint8_t> whole = Sample().Build();
    for (size_t size = 0; size < whole.size(); ++size) {
        std::vector<uint8_t> cut(whole.begin(), whole.begin() + ptrdiff_t(size));
        EXPECT_NE(ParseError(std::move(cut)), "") << "truncated to " << size << " bytes";
    }
}

TEST(PeReader, RefusesDamagedFilesWithTheReason)
{
    using Damage = std::function<void(std::vector<uint8_t>&, const Layout&)>;
    auto entry = [](size_t directory, size_t i) { return directory + 16 + 8 * i; };
    const struct
    {
        const char* what;
        Damage damage;
        const char* reason;
    } cases[] = {
        {"no MZ", [](auto& b, auto&) { b[0] = 'X'; }, "MZ signature"},
        {"NT headers far away", [](auto& b, auto&) { Put32(b, 0x3c, 0xfffffff0); }, "NT headers"},
        {"no PE signature", [](auto& b, auto&) { b[0x40] = 'N'; }, "PE signature"},
        {"97 sections", [](auto& b, auto& l) { Put16(b, l.fileHeader + 2, 97); }, "sections"},
        {"65535 sections", [](auto& b, auto& l) { Put16(b, l.fileHeader + 2, 0xffff); },
         "sections"},
        {"optional header past the end",
         [](auto& b, auto& l) { Put16(b, l.fileHeader + 16, 0xffff); }, "optional header"},
        {"optional header too short", [](auto& b, auto& l) { Put16(b, l.fileHeader + 16, 100); },
         "fewer than"},
        {"unknown magic", [](auto& b, auto& l) { Put16(b, l.optionalHeader, 0x107); }, "magic"},
        {"absurd directory count",
         [](auto& b, auto& l) { Put32(b, l.dataDirectories - 4, 0xffffffff); }, "data directories"},
        {"one directory too many", [](auto& b, auto& l) { Put32(b, l.dataDirectories - 4, 17); },
         "data directories"},
        {"section data past the end",
         [](auto& b, auto& l) { Put32(b, l.sectionTable + 20, 0xffffff00); },
         "run past the end of the file"},
        {"section data wrapping",
         [](auto& b, auto& l) {
             Put32(b, l.sectionTable + 16, 0xffffffff);
             Put32(b, l.sectionTable + 20, 0xffffffff);
         },
         "run past the end of the file"},
        {"section wrapping the address space",
         [](auto& b, auto& l) { Put32(b, l.sectionTable + 12, 0xffffff00); }, "address space"},
        {"resource directory in no section",
         [](auto& b, auto& l) { Put32(b, l.dataDirectories + 16, 0x9000); }, "not inside"},
        {"resource directory larger than its section",
         [](auto& b, auto& l) { Put32(b, l.dataDirectories + 20, uint32_t(l.rsrcSize + 1)); },
         "not inside"},
        {"absurd entry count", [](auto& b, auto& l) { Put16(b, l.rsrc + 14, 0xffff); },
         "run past the resource section"},
        {"directory past the section",
         [&](auto& b, auto& l) { Put32(b, entry(l.rsrc, 0) + 4, 0xfffffff0); },
         "runs past the resource section"},
        {"type pointing back at the root",
         [&](auto& b, auto& l) { Put32(b, entry(l.rsrc, 0) + 4, 0x80000000u); }, "a loop"},
        {"name pointing back at its type",
         [&](auto& b, auto& l) {
             Put32(b, entry(l.typeDirectories[0], 0) + 4,
                   0x80000000u | uint32_t(l.typeDirectories[0] - l.rsrc));
         },
         "a loop"},
        {"type entry pointing at data",
         [&](auto& b, auto& l) { Put32(b, entry(l.rsrc, 0) + 4, 0); }, "points at data"},
        {"name entry pointing at data",
         [&](auto& b, auto& l) { Put32(b, entry(l.typeDirectories[0], 0) + 4, 0); },
         "points at data"},
        {"a fourth level",
         [&](auto& b, auto& l) {
             Put32(b, entry(l.languageDirectories[0], 0) + 4,
                   0x80000000u | uint32_t(l.languageDirectories[1] - l.rsrc));
         },
         "deeper than three"},
        {"language by name",
         [&](auto& b, auto& l) {
             Put32(b, entry(l.languageDirectories[0], 0),
                   0x80000000u | uint32_t(l.names[0] - l.rsrc));
         },
         "language is given by name"},
        {"name string past the section",
         [&](auto& b, auto& l) {
             size_t typeEntry = entry(l.rsrc, 0);
             for (size_t i = 0; i < 3; ++i) { // the named type is the one with the high bit
                 if (b[entry(l.rsrc, i) + 3] & 0x80) {
                     typeEntry = entry(l.rsrc, i);
                 }
             }
             Put32(b, typeEntry, 0xffffffff);
         },
         "resource name"},
        {"name string longer than the section",
         [](auto& b, auto& l) { Put16(b, l.names[0], 0xffff); }, "resource name"},
        {"numeric id out of range", [&](auto& b, auto& l) { Put32(b, entry(l.rsrc, 0), 0x10006); },
         "out of range"},
        {"data entry past the section",
         [&](auto& b, auto& l) { Put32(b, entry(l.languageDirectories[0], 0) + 4, 0x7ffffff0); },
         "data entry"},
        {"data in no section", [](auto& b, auto& l) { Put32(b, l.dataEntries[0], 0x9000); },
         "resource data"},
        {"data longer than its section",
         [](auto& b, auto& l) { Put32(b, l.dataEntries[0] + 4, 0x7fffffff); }, "resource data"},
    };
    for (const auto& c : cases) {
        Layout layout;
        std::vector<uint8_t> bytes = Sample().Build(&layout);
        ASSERT_EQ(ParseError(bytes), "") << "the undamaged sample, for " << c.what;
        c.damage(bytes, layout);
        EXPECT_THAT(ParseError(bytes), ::testing::HasSubstr(c.reason)) << c.what;
    }
}

// Language directories that overlap one another re-read the same entries: without a bound the
// work grows with the square of the section's size.
TEST(PeReader, RefusesOverlappingDirectoriesBeyondTheEntryBound)
{
    const size_t kDirectories = 14000, kEntriesEach = 4;
    const size_t typeDir = 24, region = typeDir + 16 + 8 * kDirectories;
    const size_t dataEntry = kEntriesEach << 16; // where each overlapping entry points
    std::vector<uint8_t> r(dataEntry + 32, 0);
    Put16(r, 14, 1);
    Put32(r, 16, 6);
    Put32(r, 20, 0x80000000u | uint32_t(typeDir));
    Put16(r, typeDir + 14, uint32_t(kDirectories));
    for (size_t k = 0; k < kDirectories; ++k) {
        Put32(r, typeDir + 16 + 8 * k, uint32_t(k + 1));
        Put32(r, typeDir + 20 + 8 * k, 0x80000000u | uint32_t(region + 8 * k));
    }
    // Eight-byte units read as a header's counts (0 named, kEntriesEach ids) and as entries
    // (language 0x409 at the data entry) alike, wherever a directory starts.
    for (size_t at = region; at + 8 <= dataEntry; at += 8) {
        Put32(r, at, 0x409);
        Put32(r, at + 4, uint32_t(dataEntry));
    }
    Put32(r, dataEntry, kRsrcRva + uint32_t(dataEntry) + 16);
    Put32(r, dataEntry + 4, 16);

    Layout layout;
    std::vector<uint8_t> bytes = PeBuilder{}.Build(&layout);
    bytes.resize(0x200);
    bytes.insert(bytes.end(), r.begin(), r.end());
    Put32(bytes, layout.dataDirectories + 20, uint32_t(r.size()));
    Put32(bytes, layout.sectionTable + 8, uint32_t(r.size()));
    Put32(bytes, layout.sectionTable + 16, uint32_t(r.size()));
    EXPECT_THAT(ParseError(bytes), ::testing::HasSubstr("more than"));
}

// ---- LoadStringW -----------------------------------------------------------------------------

TEST_F(Modules, LoadStringCopiesTruncatesAndTerminates)
{
    HMODULE module = LoadLibraryW(Write("strings.dll", Sample().Build()).c_str());
    ASSERT_NE(module, nullptr);
    const struct
    {
        int buffer;
        int result;
        std::u16string text;
    } cases[] = {{1, 0, u""}, {2, 1, u"H"}, {5, 4, u"Hell"}, {6, 5, u"Hello"}, {100, 5, u"Hello"}};
    for (const auto& c : cases) {
        WCHAR buffer[128];
        std::fill(std::begin(buffer), std::end(buffer), u'#');
        EXPECT_EQ(LoadStringW(module, 0x40, buffer, c.buffer), c.result) << c.buffer;
        EXPECT_EQ(std::u16string(buffer), c.text) << c.buffer;
        EXPECT_EQ(buffer[c.buffer], u'#') << "wrote past a buffer of " << c.buffer;
    }
    // No room at all: a read-only pointer to the unterminated text.
    const WCHAR* pointer = nullptr;
    EXPECT_EQ(LoadStringW(module, 0x4f, reinterpret_cast<LPWSTR>(&pointer), 0), 4);
    ASSERT_NE(pointer, nullptr);
    EXPECT_EQ(std::u16string(pointer, 4), u"last");
    // The id is a WORD: higher bits are ignored.
    EXPECT_EQ(LoadString(module, 0x10000 + 3), u"three");

    SetLastError(kSentinel);
    EXPECT_EQ(LoadStringW(module, 0x40, nullptr, 10), 0);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_INVALID_PARAMETER));
    WCHAR untouched[4] = u"abc";
    EXPECT_EQ(LoadStringW(module, 0x40, untouched, -1), 0);
    EXPECT_EQ(std::u16string(untouched), u"abc");
    EXPECT_TRUE(FreeLibrary(module));
}

TEST_F(Modules, LoadStringTellsWhyAStringIsMissing)
{
    PeBuilder broken; // slot 0 claims two units and has one byte; block 2 ends in slot 1
    broken.resources = {{Id(6), Id(1), 0, {0x02, 0x00, 'x'}},
                        {Id(6), Id(2), 0, {0x01, 0x00, 'a', 0x00, 0x05}}};
    PeBuilder versionOnly;
    versionOnly.resources = {{Id(16), Id(1), 0, Blob("v")}};
    Layout layout;
    std::vector<uint8_t> bare = PeBuilder{}.Build(&layout);
    Put32(bare, layout.dataDirectories + 16, 0);
    Put32(bare, layout.dataDirectories + 20, 0);
    const struct
    {
        const char* what;
        std::vector<uint8_t> file;
        UINT id;
        DWORD error;
    } cases[] = {
        {"no block for the id", Sample().Build(), 0x100, ERROR_RESOURCE_NAME_NOT_FOUND},
        {"an empty slot", Sample().Build(), 0x41, ERROR_RESOURCE_NAME_NOT_FOUND},
        {"no string tables", versionOnly.Build(), 1, ERROR_RESOURCE_TYPE_NOT_FOUND},
        {"no resources", bare, 1, ERROR_RESOURCE_DATA_NOT_FOUND},
        {"a length past the block", broken.Build(), 0, ERROR_INVALID_DATA},
        {"a later slot past the block", broken.Build(), 0x11, ERROR_INVALID_DATA},
    };
    int n = 0;
    for (const auto& c : cases) {
        HMODULE module = LoadLibraryW(Write("missing" + std::to_string(n++), c.file).c_str());
        ASSERT_NE(module, nullptr) << c.what;
        WCHAR buffer[8] = u"junk";
        SetLastError(kSentinel);
        EXPECT_EQ(LoadStringW(module, c.id, buffer, 8), 0) << c.what;
        EXPECT_EQ(GetLastError(), c.error) << c.what;
        EXPECT_EQ(buffer[0], 0) << c.what;
        FreeLibrary(module);
    }
    // The slot before the damage still reads.
    HMODULE module = LoadLibraryW(Write("broken-ok", broken.Build()).c_str());
    EXPECT_EQ(LoadString(module, 0x10), u"a");
    FreeLibrary(module);
}

TEST_F(Modules, LoadStringPrefersNeutralThenEnglishThenTheFirst)
{
    auto block = [](const char16_t* text) { return StringBlock({{0, text}}); };
    const struct
    {
        std::vector<uint16_t> languages;
        std::u16string chosen;
    } cases[] = {
        {{0x407, 0x409, 0x000}, u"L0"},
        {{0x407, 0x409}, u"L409"},
        {{0x40c, 0x407}, u"L40c"},
        {{0x407}, u"L407"},
    };
    int n = 0;
    for (const auto& c : cases) {
        PeBuilder p;
        for (uint16_t language : c.languages) {
            char hex[8];
            std::snprintf(hex, sizeof hex, "%x", language);
            p.resources.push_back(
                {Id(6), Id(1), language, block((u"L" + host::Utf8ToUtf16(hex)).c_str())});
        }
        HMODULE module = LoadLibraryW(Write("lang" + std::to_string(n++), p.Build()).c_str());
        ASSERT_NE(module, nullptr);
        EXPECT_EQ(LoadString(module, 0), c.chosen);
        FreeLibrary(module);
    }
}

// Data that starts off alignment in the file is still served aligned, as text and as bytes.
TEST_F(Modules, ServesMisalignedDataAligned)
{
    PeBuilder p = Sample();
    p.dataSkew = 1;
    HMODULE module = LoadLibraryW(Write("skewed.dll", p.Build()).c_str());
    ASSERT_NE(module, nullptr);
    const WCHAR* pointer = nullptr;
    ASSERT_EQ(LoadStringW(module, 0x40, reinterpret_cast<LPWSTR>(&pointer), 0), 5);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(pointer) % 2, 0u);
    EXPECT_EQ(std::u16string(pointer, 5), u"Hello");
    const uint8_t* data = nullptr;
    DWORD size = 0;
    ASSERT_TRUE(host::detail::FindResourceData(module, u"png", u"Logo", host::detail::kAnyLanguage,
                                               &data, &size));
    EXPECT_EQ(reinterpret_cast<uintptr_t>(data) % 4, 0u);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(data), size), "logo bytes");
    FreeLibrary(module);
}

// ---- The resource functions ------------------------------------------------------------------

TEST_F(Modules, FindsResourcesByNumberNameAndLanguage)
{
    PeBuilder p = Sample();
    p.resources.push_back({Id(10), Id(7), 0x407, Blob("german")});
    p.resources.push_back({Id(10), Id(7), 0x40c, Blob("french")});
    HMODULE module = LoadLibraryW(Write("find.dll", p.Build()).c_str());
    ASSERT_NE(module, nullptr);
    auto bytes = [&](HRSRC r) {
        auto* data = static_cast<const char*>(LockResource(LoadResource(module, r)));
        return data ? std::string(data, SizeofResource(module, r)) : std::string("(none)");
    };
    EXPECT_EQ(bytes(FindResourceW(module, u"logo", u"png")), "logo bytes");
    EXPECT_EQ(bytes(FindResourceW(module, MAKEINTRESOURCEW(1), RT_VERSION)), "version");
    EXPECT_EQ(bytes(FindResourceW(module, u"#1", u"#16")), "version");
    EXPECT_EQ(bytes(FindResourceW(module, MAKEINTRESOURCEW(7), RT_RCDATA)), "german");
    EXPECT_EQ(bytes(FindResourceExW(module, RT_RCDATA, MAKEINTRESOURCEW(7), 0x40c)), "french");

    const struct
    {
        LPCWSTR type;
        LPCWSTR name;
        WORD language;
        DWORD error;
    } missing[] = {
        {RT_DIALOG, MAKEINTRESOURCEW(1), 0, ERROR_RESOURCE_TYPE_NOT_FOUND},
        {RT_VERSION, MAKEINTRESOURCEW(2), 0, ERROR_RESOURCE_NAME_NOT_FOUND},
        {u"PNG", u"LOGO2", 0, ERROR_RESOURCE_NAME_NOT_FOUND},
        {u"#x16", MAKEINTRESOURCEW(1), 0, ERROR_RESOURCE_TYPE_NOT_FOUND},
        {RT_RCDATA, MAKEINTRESOURCEW(7), 0x409, ERROR_RESOURCE_LANG_NOT_FOUND},
    };
    for (const auto& m : missing) {
        SetLastError(kSentinel);
        EXPECT_EQ(FindResourceExW(module, m.type, m.name, m.language), nullptr);
        EXPECT_EQ(GetLastError(), m.error);
    }
    FreeLibrary(module);
}

TEST_F(Modules, ResourceHandlesOfAnotherModuleAreRefused)
{
    HMODULE a = LoadLibraryW(Write("a.dll", Sample().Build()).c_str());
    HMODULE b = LoadLibraryW(Write("b.dll", Sample(false).Build()).c_str());
    ASSERT_TRUE(a && b);
    HRSRC r = FindResourceW(a, MAKEINTRESOURCEW(1), RT_VERSION);
    ASSERT_NE(r, nullptr);
    const HRSRC foreign[] = {r, reinterpret_cast<HRSRC>(reinterpret_cast<uintptr_t>(r) + 1),
                             reinterpret_cast<HRSRC>(0x1000)};
    for (HRSRC h : foreign) {
        SetLastError(kSentinel);
        EXPECT_EQ(LoadResource(b, h), nullptr);
        EXPECT_EQ(GetLastError(), DWORD(ERROR_INVALID_HANDLE));
        EXPECT_EQ(SizeofResource(b, h), 0u);
    }
    FreeLibrary(a);
    FreeLibrary(b);
}

// ---- LoadLibraryW, FreeLibrary, the cache ----------------------------------------------------

TEST_F(Modules, LoadLibraryGivesTheWindowsCodes)
{
    std::filesystem::create_directories(HomeFile("modules/dir.dll"));
    std::vector<uint8_t> truncated = Sample().Build();
    truncated.resize(0x150);
    const struct
    {
        std::u16string path;
        DWORD error;
    } cases[] = {
        {u"C:\\modules\\absent.dll", ERROR_FILE_NOT_FOUND},
        {u"C:\\no such dir\\absent.dll", ERROR_PATH_NOT_FOUND},
        {Write("text.dll", Blob("this is not a program")), ERROR_BAD_EXE_FORMAT},
        {Write("empty.dll", {}), ERROR_BAD_EXE_FORMAT},
        {Write("truncated.dll", truncated), ERROR_BAD_EXE_FORMAT},
        {u"C:\\modules\\dir.dll", ERROR_ACCESS_DENIED},
        {u"", ERROR_INVALID_PARAMETER},
    };
    for (const auto& c : cases) {
        SetLastError(kSentinel);
        EXPECT_EQ(LoadLibraryW(c.path.c_str()), nullptr) << host::Utf16ToUtf8(c.path);
        EXPECT_EQ(GetLastError(), c.error) << host::Utf16ToUtf8(c.path);
    }
    EXPECT_EQ(LoadLibraryW(nullptr), nullptr);
    LoadLibraryW(u"C:\\modules\\truncated.dll");
    EXPECT_THAT(host::detail::LastLoadError(), ::testing::HasSubstr("truncated.dll"));
}

TEST_F(Modules, CountsReferencesAndKeepsTheImageCached)
{
    const std::u16string path = Write("counted.dll", Sample().Build());
    HMODULE first = LoadLibraryW(path.c_str());
    ASSERT_NE(first, nullptr);
    const uint64_t reads = host::detail::ModuleFileReads();
    EXPECT_EQ(LoadLibraryW(path.c_str()), first);
    EXPECT_TRUE(FreeLibrary(first));
    EXPECT_EQ(LoadString(first, 0x40), u"Hello"); // one reference left
    EXPECT_TRUE(FreeLibrary(first));

    // Freed as often as loaded: the handle answers nothing...
    SetLastError(kSentinel);
    EXPECT_FALSE(FreeLibrary(first));
    EXPECT_EQ(GetLastError(), DWORD(ERROR_INVALID_HANDLE));
    WCHAR buffer[8];
    EXPECT_EQ(LoadStringW(first, 0x40, buffer, 8), 0);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_INVALID_HANDLE));
    EXPECT_EQ(FindResourceW(first, MAKEINTRESOURCEW(1), RT_VERSION), nullptr);

    // ...until the unchanged file is loaded again, from the cache, under the same handle.
    EXPECT_EQ(LoadLibraryW(path.c_str()), first);
    EXPECT_EQ(host::detail::ModuleFileReads(), reads);
    EXPECT_EQ(LoadString(first, 0x40), u"Hello");
    EXPECT_TRUE(FreeLibrary(first));
}

TEST_F(Modules, ReadsAChangedFileAgain)
{
    auto withHello = [](const std::u16string& text) {
        PeBuilder p;
        p.resources = {{Id(6), Id(5), 0, StringBlock({{0, text}})}};
        return p.Build();
    };
    const std::u16string path = Write("changing.dll", withHello(u"one"));
    const std::string hostPath = HomeFile("modules/changing.dll");
    HMODULE held = LoadLibraryW(path.c_str());
    ASSERT_NE(held, nullptr);

    // Another size: read again under a new handle; the held handle keeps what it was given.
    Write("changing.dll", withHello(u"second"));
    HMODULE second = LoadLibraryW(path.c_str());
    ASSERT_NE(second, nullptr);
    EXPECT_NE(second, held);
    EXPECT_EQ(LoadString(second, 0x40), u"second");
    EXPECT_EQ(LoadString(held, 0x40), u"one");
    EXPECT_TRUE(FreeLibrary(held));
    EXPECT_FALSE(FreeLibrary(held));
    EXPECT_TRUE(FreeLibrary(second));

    // The same size, a later time: read again too.
    const auto stamp = std::filesystem::last_write_time(hostPath);
    Write("changing.dll", withHello(u"thirds"));
    std::filesystem::last_write_time(hostPath, stamp + std::chrono::seconds(2));
    const uint64_t reads = host::detail::ModuleFileReads();
    HMODULE third = LoadLibraryW(path.c_str());
    EXPECT_EQ(host::detail::ModuleFileReads(), reads + 1);
    EXPECT_EQ(LoadString(third, 0x40), u"thirds");
    EXPECT_TRUE(FreeLibrary(third));

    // Gone: not found, and a new file at the path is read afresh.
    std::filesystem::remove(hostPath);
    SetLastError(kSentinel);
    EXPECT_EQ(LoadLibraryW(path.c_str()), nullptr);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_FILE_NOT_FOUND));
    Write("changing.dll", withHello(u"four"));
    HMODULE fourth = LoadLibraryW(path.c_str());
    EXPECT_EQ(LoadString(fourth, 0x40), u"four");
    EXPECT_TRUE(FreeLibrary(fourth));
}

TEST_F(Modules, BoundsTheImagesKeptForUnloadedFiles)
{
    const std::vector<uint8_t> bytes = Sample().Build();
    std::vector<std::u16string> paths;
    for (int i = 0; i < 40; ++i) {
        paths.push_back(Write("many" + std::to_string(i) + ".dll", bytes));
        HMODULE m = LoadLibraryW(paths.back().c_str());
        ASSERT_NE(m, nullptr);
        FreeLibrary(m);
    }
    const uint64_t reads = host::detail::ModuleFileReads();
    HMODULE recent = LoadLibraryW(paths.back().c_str());
    EXPECT_EQ(host::detail::ModuleFileReads(), reads);
    HMODULE oldest = LoadLibraryW(paths.front().c_str());
    EXPECT_EQ(host::detail::ModuleFileReads(), reads + 1);
    FreeLibrary(recent);
    FreeLibrary(oldest);
}

TEST_F(Modules, BogusHandlesFailCleanly)
{
    HANDLE file = CreateFileW(Write("plain.dll", Sample().Build()).c_str(), GENERIC_READ, 0,
                              nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    HMODULE real = LoadLibraryW(u"C:\\modules\\plain.dll");
    ASSERT_NE(real, nullptr);
    const struct
    {
        const char* what;
        HMODULE module;
        DWORD error;
    } cases[] = {
        {"null", nullptr, ERROR_RESOURCE_DATA_NOT_FOUND},
        {"small number", reinterpret_cast<HMODULE>(0x1234), ERROR_INVALID_HANDLE},
        {"inside a module", reinterpret_cast<HMODULE>(reinterpret_cast<uintptr_t>(real) + 4),
         ERROR_INVALID_HANDLE},
        {"a file handle", static_cast<HMODULE>(file), ERROR_INVALID_HANDLE},
        {"a stack address", reinterpret_cast<HMODULE>(&file), ERROR_INVALID_HANDLE},
    };
    for (const auto& c : cases) {
        WCHAR buffer[8] = u"junk";
        SetLastError(kSentinel);
        EXPECT_EQ(LoadStringW(c.module, 0x40, buffer, 8), 0) << c.what;
        EXPECT_EQ(GetLastError(), c.error) << c.what;
        EXPECT_EQ(buffer[0], 0) << c.what;
        EXPECT_EQ(FindResourceW(c.module, MAKEINTRESOURCEW(1), RT_VERSION), nullptr) << c.what;
        EXPECT_EQ(SizeofResource(c.module, reinterpret_cast<HRSRC>(0x1000)), 0u) << c.what;
        SetLastError(kSentinel);
        EXPECT_FALSE(FreeLibrary(c.module)) << c.what;
        EXPECT_EQ(GetLastError(), DWORD(ERROR_INVALID_HANDLE)) << c.what;
    }
    EXPECT_EQ(LoadString(real, 0x40), u"Hello");
    EXPECT_TRUE(FreeLibrary(real));
    CloseHandle(file);
}

TEST_F(Modules, ThreadsShareModules)
{
    const std::u16string path = Write("shared.dll", Sample().Build());
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i) {
                HMODULE m = LoadLibraryW(path.c_str());
                if (LoadString(m, 0x4f) != u"last" || !FreeLibrary(m)) {
                    ++wrong;
                }
            }
        });
    }
    for (auto& t : threads) {
        t.join();
    }
    EXPECT_EQ(wrong, 0);
    HMODULE m = LoadLibraryW(path.c_str());
    EXPECT_TRUE(FreeLibrary(m));
    EXPECT_FALSE(FreeLibrary(m)); // every reference of the threads was dropped
}

// ---- Installed driver files ------------------------------------------------------------------

TEST_F(Modules, InstallsDriverFilesWhereTheDriverLooks)
{
    const std::string source = HomeFile("modules/source.dll");
    Write("source.dll", Sample().Build());
    std::string error;
    ASSERT_TRUE(host::InstallDriverFile(source, u"Probe.dll", 2, &error)) << error;
    EXPECT_TRUE(std::filesystem::is_regular_file(host::InstalledDriverFilePath(u"Probe.dll", 2)));
    HMODULE m = LoadLibraryW((host::DriverDirectory() + u"\\2\\Probe.dll").c_str());
    EXPECT_EQ(LoadString(m, 0x40), u"Hello");
    FreeLibrary(m);

    for (const char16_t* bad : {u"", u"..", u"..\\Probe.dll", u"sub/Probe.dll", u"C:Probe.dll"}) {
        error.clear();
        EXPECT_FALSE(host::InstallDriverFile(source, bad, 3, &error));
        EXPECT_NE(error, "");
    }
    EXPECT_FALSE(host::InstallDriverFile(source, u"Probe.dll", -1, &error));
    EXPECT_FALSE(host::InstallDriverFile(HomeFile("modules/absent"), u"Absent.dll", 3, &error));
    EXPECT_THAT(error, ::testing::HasSubstr("absent"));
    EXPECT_FALSE(std::filesystem::exists(host::InstalledDriverFilePath(u"Absent.dll", 3)));
}

} // namespace
