// A bounds-checked reader of PE32 and PE32+ files for their resources: headers, section table,
// and the three-level resource tree (type, name, language). Nothing of the file is trusted:
// every offset, size and count is checked against the file before it is read, and a file that
// fails a check is refused as a whole with the reason, so a broken resource library shows up
// when it is loaded rather than as a missing string later. No Win32 state here, so the reader
// can be driven directly by tests and fuzzers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace host::detail {

constexpr uint16_t kResourceTypeString = 6;   // RT_STRING
constexpr uint16_t kResourceTypeVersion = 16; // RT_VERSION

// Language preference for lookups: any language, the neutral one first, then en-US, then
// whichever the tree lists first.
constexpr uint32_t kAnyLanguage = 0x10000;
constexpr uint16_t kLanguageNeutral = 0x0000;
constexpr uint16_t kLanguageEnglishUS = 0x0409;

// A resource's type or name: a number, or a string compared with ASCII letters folded.
struct ResourceName
{
    bool isString = false;
    uint16_t id = 0;
    std::u16string text;

    static ResourceName Number(uint16_t n) { return {false, n, {}}; }
    static ResourceName String(std::u16string s) { return {true, 0, std::move(s)}; }
};

// Orders numbers before strings, numbers by value, strings without regard to ASCII case.
int CompareResourceNames(const ResourceName& a, const ResourceName& b);

struct ResourceEntry
{
    ResourceName type;
    ResourceName name;
    uint16_t language = 0;
    const uint8_t* data = nullptr; // 4-byte aligned; lives as long as the image
    uint32_t size = 0;
};

enum class ResourceLookup
{
    Found,
    NoResourceSection, // the file has no resource tree at all
    NoType,
    NoName,
    NoLanguage, // only when one language was asked for
};

// The string table lookup of LoadStringW.
enum class StringLookup
{
    Found,
    NoResourceSection,
    NoStringTables,
    NoBlock,
    Empty,     // the block exists; the slot holds no text
    Malformed, // a length in the block runs past the block's end
};

class PeImage
{
public:
    // The parsed file, or null with the reason in *error.
    static std::unique_ptr<PeImage> Parse(std::vector<uint8_t> bytes, std::string* error);

    PeImage(const PeImage&) = delete;
    PeImage& operator=(const PeImage&) = delete;

    bool Is64Bit() const { return is64_; }
    bool HasResourceSection() const { return hasResources_; }
    // Every resource, ordered by type, then name, then the order of the file's tree.
    const std::vector<ResourceEntry>& Resources() const { return entries_; }

    // language is a LANGID or kAnyLanguage. An exact LANGID finds that language only.
    ResourceLookup Find(const ResourceName& type, const ResourceName& name, uint32_t language,
                        const ResourceEntry** found) const;

    // String id (the low 16 bits of a LoadStringW id): block (id >> 4) + 1 of RT_STRING, slot
    // id & 15, in the preferred language. *text is not terminated; it lives as long as the image.
    StringLookup FindString(uint32_t id, const char16_t** text, uint16_t* length) const;

private:
    PeImage() = default;
    bool ParseHeaders(std::string* error);
    bool ParseResources(std::string* error);
    // The file offset of [rva, rva + size) when the whole range lies in one section's file data.
    bool MapRva(uint32_t rva, uint32_t size, uint64_t* offset) const;

    struct Section
    {
        uint32_t virtualAddress;
        uint32_t fileSpan; // the part of the section that the file backs
        uint32_t fileOffset;
    };

    std::vector<uint8_t> bytes_;
    std::vector<Section> sections_;
    uint32_t resourceRva_ = 0;
    uint32_t resourceSize_ = 0;
    bool is64_ = false;
    bool hasResources_ = false;
    std::vector<ResourceEntry> entries_;
    // The string table blocks in the language Find prefers, by block number: every LoadStringW
    // goes through them, and a driver loads dozens of strings per call.
    bool hasStringTables_ = false;
    std::unordered_map<uint32_t, const ResourceEntry*> stringBlocks_;
    // Copies of resources whose bytes do not start 4-byte aligned in the file, so that every
    // data pointer can be read as WORDs and DWORDs.
    std::vector<std::vector<uint32_t>> alignedCopies_;
};

} // namespace host::detail
