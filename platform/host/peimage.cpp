// The PE reader. All arithmetic on offsets taken from the file is done in 64 bits, where no sum
// of two 32-bit fields can wrap, and every read goes through Span, which checks it.
#include "peimage.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <set>

namespace host::detail {

namespace {

constexpr uint64_t kDosHeaderSize = 64;
constexpr uint64_t kNewHeaderOffsetField = 0x3c; // e_lfanew
constexpr uint64_t kFileHeaderSize = 20;
constexpr uint64_t kSectionHeaderSize = 40;
constexpr uint64_t kDataDirectorySize = 8;
constexpr uint64_t kResourceDirectorySize = 16;
constexpr uint64_t kResourceEntrySize = 8;
constexpr uint64_t kResourceDataEntrySize = 16;
constexpr uint32_t kResourceDirectoryIndex = 2;
constexpr uint16_t kMagicPe32 = 0x10b;
constexpr uint16_t kMagicPe32Plus = 0x20b;
// The system's loader refuses more sections than this.
constexpr uint32_t kMaxSections = 96;
// Far more than any resource library holds; bounds the work a hostile tree can ask for even
// where directories overlap each other.
constexpr uint64_t kMaxResourceEntries = 1 << 16;
constexpr uint32_t kHighBit = 0x80000000u;

// A checked view of bytes: Has() before every read.
struct Span
{
    const uint8_t* data;
    uint64_t size;

    bool Has(uint64_t offset, uint64_t length) const
    {
        return offset <= size && length <= size - offset;
    }
    uint16_t U16(uint64_t offset) const { return uint16_t(data[offset] | data[offset + 1] << 8); }
    uint32_t U32(uint64_t offset) const
    {
        return uint32_t(data[offset]) | uint32_t(data[offset + 1]) << 8 |
               uint32_t(data[offset + 2]) << 16 | uint32_t(data[offset + 3]) << 24;
    }
};

bool Fail(std::string* error, const char* format, uint64_t a = 0, uint64_t b = 0, uint64_t c = 0)
{
    if (error) {
        char text[256];
        std::snprintf(text, sizeof text, format, (unsigned long long)a, (unsigned long long)b,
                      (unsigned long long)c);
        *error = text;
    }
    return false;
}

char16_t Fold(char16_t c)
{
    return (c >= u'a' && c <= u'z') ? char16_t(c - 32) : c;
}

// One entry of a resource directory as the file gives it.
struct RawEntry
{
    ResourceName name;
    bool isDirectory;
    uint32_t target; // offset in the resource section of a directory or a data entry
};

// Walks the resource tree. A directory may be entered once: a second visit means a loop (or
// sharing, which no linker produces) and refuses the file.
class TreeReader
{
public:
    explicit TreeReader(Span rsrc) : rsrc_(rsrc) {}

    bool Directory(uint32_t offset, std::vector<RawEntry>* entries, std::string* error)
    {
        entries->clear();
        if (!visited_.insert(offset).second) {
            return Fail(error, "the resource directory at 0x%llx is reached twice (a loop)",
                        offset);
        }
        if (!rsrc_.Has(offset, kResourceDirectorySize)) {
            return Fail(error, "the resource directory at 0x%llx runs past the resource section",
                        offset);
        }
        uint64_t count = uint64_t(rsrc_.U16(offset + 12)) + rsrc_.U16(offset + 14);
        if (!rsrc_.Has(offset + kResourceDirectorySize, count * kResourceEntrySize)) {
            return Fail(error,
                        "the %llu entries of the resource directory at 0x%llx run past the "
                        "resource section",
                        count, offset);
        }
        total_ += count;
        if (total_ > kMaxResourceEntries) {
            return Fail(error, "the resource tree has more than %llu entries", kMaxResourceEntries);
        }
        entries->reserve(size_t(count));
        for (uint64_t i = 0; i < count; ++i) {
            uint64_t at = offset + kResourceDirectorySize + i * kResourceEntrySize;
            uint32_t nameField = rsrc_.U32(at);
            uint32_t dataField = rsrc_.U32(at + 4);
            RawEntry entry;
            if (nameField & kHighBit) {
                if (!Name(nameField & ~kHighBit, &entry.name, error)) {
                    return false;
                }
            } else if (nameField > 0xffff) {
                return Fail(error, "the resource id 0x%llx at 0x%llx is out of range", nameField,
                            at);
            } else {
                entry.name = ResourceName::Number(uint16_t(nameField));
            }
            entry.isDirectory = dataField & kHighBit;
            entry.target = dataField & ~kHighBit;
            entries->push_back(std::move(entry));
        }
        return true;
    }

    bool DataEntry(uint32_t offset, uint32_t* rva, uint32_t* size, std::string* error) const
    {
        if (!rsrc_.Has(offset, kResourceDataEntrySize)) {
            return Fail(error, "the resource data entry at 0x%llx runs past the resource section",
                        offset);
        }
        *rva = rsrc_.U32(offset);
        *size = rsrc_.U32(offset + 4);
        return true;
    }

private:
    // A counted UTF-16 name: a WORD length, then that many characters.
    bool Name(uint32_t offset, ResourceName* name, std::string* error) const
    {
        if (!rsrc_.Has(offset, 2)) {
            return Fail(error, "the resource name at 0x%llx runs past the resource section",
                        offset);
        }
        uint16_t length = rsrc_.U16(offset);
        if (!rsrc_.Has(offset + 2, uint64_t(length) * 2)) {
            return Fail(error,
                        "the resource name at 0x%llx (%llu characters) runs past the resource "
                        "section",
                        offset, length);
        }
        std::u16string text(length, u'\0');
        for (uint16_t i = 0; i < length; ++i) {
            text[i] = char16_t(rsrc_.U16(offset + 2 + uint64_t(i) * 2));
        }
        *name = ResourceName::String(std::move(text));
        return true;
    }

    Span rsrc_;
    std::set<uint32_t> visited_;
    uint64_t total_ = 0;
};

std::string Describe(const ResourceName& name)
{
    if (!name.isString) {
        return std::to_string(name.id);
    }
    std::string text = "\"";
    for (char16_t c : name.text) {
        text += c < 0x80 ? char(c) : '?';
    }
    return text + "\"";
}

bool FailAt(std::string* error, const std::string& where, const char* what)
{
    if (error) {
        *error = "resource " + where + ": " + what;
    }
    return false;
}

struct ByType
{
    bool operator()(const ResourceEntry& e, const ResourceName& n) const
    {
        return CompareResourceNames(e.type, n) < 0;
    }
    bool operator()(const ResourceName& n, const ResourceEntry& e) const
    {
        return CompareResourceNames(n, e.type) < 0;
    }
};

struct ByName
{
    bool operator()(const ResourceEntry& e, const ResourceName& n) const
    {
        return CompareResourceNames(e.name, n) < 0;
    }
    bool operator()(const ResourceName& n, const ResourceEntry& e) const
    {
        return CompareResourceNames(n, e.name) < 0;
    }
};

} // namespace

int CompareResourceNames(const ResourceName& a, const ResourceName& b)
{
    if (a.isString != b.isString) {
        return a.isString ? 1 : -1;
    }
    if (!a.isString) {
        return a.id < b.id ? -1 : a.id > b.id ? 1 : 0;
    }
    size_t n = std::min(a.text.size(), b.text.size());
    for (size_t i = 0; i < n; ++i) {
        char16_t x = Fold(a.text[i]);
        char16_t y = Fold(b.text[i]);
        if (x != y) {
            return x < y ? -1 : 1;
        }
    }
    return a.text.size() < b.text.size() ? -1 : a.text.size() > b.text.size() ? 1 : 0;
}

std::unique_ptr<PeImage> PeImage::Parse(std::vector<uint8_t> bytes, std::string* error)
{
    std::unique_ptr<PeImage> image(new PeImage);
    image->bytes_ = std::move(bytes);
    if (!image->ParseHeaders(error) || !image->ParseResources(error)) {
        return nullptr;
    }
    return image;
}

bool PeImage::ParseHeaders(std::string* error)
{
    const Span file{bytes_.data(), bytes_.size()};
    if (!file.Has(0, kDosHeaderSize)) {
        return Fail(error, "the file (%llu bytes) is too short for a DOS header", file.size);
    }
    if (file.U16(0) != 0x5a4d) {
        return Fail(error, "the file does not start with the MZ signature");
    }
    const uint64_t nt = file.U32(kNewHeaderOffsetField);
    if (!file.Has(nt, 4 + kFileHeaderSize)) {
        return Fail(error, "the NT headers at 0x%llx run past the end of the file (%llu bytes)", nt,
                    file.size);
    }
    if (file.U32(nt) != 0x00004550) {
        return Fail(error, "no PE signature at 0x%llx", nt);
    }
    const uint64_t fileHeader = nt + 4;
    const uint32_t sectionCount = file.U16(fileHeader + 2);
    const uint64_t optionalSize = file.U16(fileHeader + 16);
    if (sectionCount > kMaxSections) {
        return Fail(error, "%llu sections; the system loads at most %llu", sectionCount,
                    kMaxSections);
    }
    const uint64_t optional = fileHeader + kFileHeaderSize;
    if (!file.Has(optional, optionalSize)) {
        return Fail(error,
                    "the optional header (%llu bytes at 0x%llx) runs past the end of the file",
                    optionalSize, optional);
    }
    if (optionalSize < 2) {
        return Fail(error, "the file has no optional header");
    }
    const uint16_t magic = file.U16(optional);
    uint64_t fixedSize;
    if (magic == kMagicPe32) {
        fixedSize = 96;
        is64_ = false;
    } else if (magic == kMagicPe32Plus) {
        fixedSize = 112;
        is64_ = true;
    } else {
        return Fail(error, "unknown optional header magic 0x%llx", magic);
    }
    if (optionalSize < fixedSize) {
        return Fail(error, "the optional header has %llu bytes, fewer than the %llu of its kind",
                    optionalSize, fixedSize);
    }
    const uint64_t directoryCount = file.U32(optional + fixedSize - 4);
    if (directoryCount > (optionalSize - fixedSize) / kDataDirectorySize) {
        return Fail(error, "%llu data directories do not fit an optional header of %llu bytes",
                    directoryCount, optionalSize);
    }
    if (directoryCount > kResourceDirectoryIndex) {
        const uint64_t entry = optional + fixedSize + kResourceDirectoryIndex * kDataDirectorySize;
        resourceRva_ = file.U32(entry);
        resourceSize_ = file.U32(entry + 4);
    }

    const uint64_t table = optional + optionalSize;
    if (!file.Has(table, sectionCount * kSectionHeaderSize)) {
        return Fail(error, "the table of %llu sections at 0x%llx runs past the end of the file",
                    sectionCount, table);
    }
    sections_.reserve(sectionCount);
    for (uint32_t i = 0; i < sectionCount; ++i) {
        const uint64_t at = table + i * kSectionHeaderSize;
        const uint32_t virtualSize = file.U32(at + 8);
        const uint32_t virtualAddress = file.U32(at + 12);
        const uint32_t rawSize = file.U32(at + 16);
        const uint32_t rawOffset = file.U32(at + 20);
        if (rawSize != 0 && !file.Has(rawOffset, rawSize)) {
            return Fail(error,
                        "section %llu: its %llu bytes of file data at 0x%llx run past the end of "
                        "the file",
                        i, rawSize, rawOffset);
        }
        if (uint64_t(virtualAddress) + std::max(virtualSize, rawSize) > (uint64_t(1) << 32)) {
            return Fail(error, "section %llu runs past the end of the address space", i);
        }
        // Memory holds VirtualSize bytes of the section (0 in old files: all of its data), of
        // which the file backs at most SizeOfRawData.
        uint32_t span = virtualSize == 0 ? rawSize : std::min(virtualSize, rawSize);
        sections_.push_back({virtualAddress, span, rawOffset});
    }
    return true;
}

bool PeImage::MapRva(uint32_t rva, uint32_t size, uint64_t* offset) const
{
    for (const Section& s : sections_) {
        if (rva >= s.virtualAddress &&
            uint64_t(rva) + size <= uint64_t(s.virtualAddress) + s.fileSpan) {
            *offset = uint64_t(s.fileOffset) + (rva - s.virtualAddress);
            return true;
        }
    }
    return false;
}

bool PeImage::ParseResources(std::string* error)
{
    if (resourceRva_ == 0 || resourceSize_ == 0) {
        return true; // a file without resources is valid; lookups say so
    }
    uint64_t base = 0;
    if (!MapRva(resourceRva_, resourceSize_, &base)) {
        return Fail(error,
                    "the resource directory (%llu bytes at RVA 0x%llx) is not inside the file "
                    "data of a section",
                    resourceSize_, resourceRva_);
    }
    hasResources_ = true;
    TreeReader tree(Span{bytes_.data() + base, resourceSize_});

    std::vector<RawEntry> types, names, languages;
    if (!tree.Directory(0, &types, error)) {
        return false;
    }
    for (const RawEntry& type : types) {
        const std::string typeText = "type " + Describe(type.name);
        if (!type.isDirectory) {
            return FailAt(error, typeText, "the type entry points at data, not at a directory");
        }
        if (!tree.Directory(type.target, &names, error)) {
            return false;
        }
        for (const RawEntry& name : names) {
            const std::string nameText = typeText + " name " + Describe(name.name);
            if (!name.isDirectory) {
                return FailAt(error, nameText,
                              "the name entry points at data, not at a language directory");
            }
            if (!tree.Directory(name.target, &languages, error)) {
                return false;
            }
            for (const RawEntry& language : languages) {
                if (language.isDirectory) {
                    return FailAt(error, nameText, "the tree is deeper than three levels");
                }
                if (language.name.isString) {
                    return FailAt(error, nameText, "a language is given by name");
                }
                uint32_t rva = 0, size = 0;
                if (!tree.DataEntry(language.target, &rva, &size, error)) {
                    return false;
                }
                uint64_t offset = 0;
                if (!MapRva(rva, size, &offset)) {
                    return Fail(error,
                                "resource data (%llu bytes at RVA 0x%llx) is not inside the file "
                                "data of a section",
                                size, rva);
                }
                ResourceEntry entry{type.name, name.name, language.name.id, nullptr, size};
                static const uint32_t kEmpty = 0;
                if (size == 0) {
                    entry.data = reinterpret_cast<const uint8_t*>(&kEmpty);
                } else if (offset % 4 == 0) {
                    entry.data = bytes_.data() + offset;
                } else {
                    std::vector<uint32_t> copy((size_t(size) + 3) / 4);
                    std::memcpy(copy.data(), bytes_.data() + offset, size);
                    entry.data = reinterpret_cast<const uint8_t*>(copy.data());
                    alignedCopies_.push_back(std::move(copy)); // the buffer does not move
                }
                entries_.push_back(std::move(entry));
            }
        }
    }
    // The tree of a linker is sorted already; a hand-made one need not be. Stable, so that the
    // languages of one resource keep the file's order for "the first present".
    std::stable_sort(entries_.begin(), entries_.end(),
                     [](const ResourceEntry& a, const ResourceEntry& b) {
                         int byType = CompareResourceNames(a.type, b.type);
                         return byType != 0 ? byType < 0 : CompareResourceNames(a.name, b.name) < 0;
                     });
    const ResourceName strings = ResourceName::Number(kResourceTypeString);
    for (const ResourceEntry& entry : entries_) {
        if (CompareResourceNames(entry.type, strings) != 0) {
            continue;
        }
        hasStringTables_ = true;
        const ResourceEntry* block = nullptr;
        if (!entry.name.isString && !stringBlocks_.count(entry.name.id) &&
            Find(strings, entry.name, kAnyLanguage, &block) == ResourceLookup::Found) {
            stringBlocks_[entry.name.id] = block;
        }
    }
    return true;
}

ResourceLookup PeImage::Find(const ResourceName& type, const ResourceName& name, uint32_t language,
                             const ResourceEntry** found) const
{
    *found = nullptr;
    if (!hasResources_) {
        return ResourceLookup::NoResourceSection;
    }
    auto [typeBegin, typeEnd] = std::equal_range(entries_.begin(), entries_.end(), type, ByType{});
    if (typeBegin == typeEnd) {
        return ResourceLookup::NoType;
    }
    const auto names = std::equal_range(typeBegin, typeEnd, name, ByName{});
    const auto begin = names.first, end = names.second; // plain names: lambdas capture them
    if (begin == end) {
        return ResourceLookup::NoName;
    }
    auto withLanguage = [&](uint32_t wanted) -> const ResourceEntry* {
        for (auto it = begin; it != end; ++it) {
            if (it->language == wanted) {
                return &*it;
            }
        }
        return nullptr;
    };
    if (language != kAnyLanguage) {
        *found = withLanguage(language);
        return *found ? ResourceLookup::Found : ResourceLookup::NoLanguage;
    }
    *found = withLanguage(kLanguageNeutral);
    if (!*found) {
        *found = withLanguage(kLanguageEnglishUS);
    }
    if (!*found) {
        *found = &*begin;
    }
    return ResourceLookup::Found;
}

StringLookup PeImage::FindString(uint32_t id, const char16_t** text, uint16_t* length) const
{
    *text = nullptr;
    *length = 0;
    id &= 0xffff;
    if (!hasResources_) {
        return StringLookup::NoResourceSection;
    }
    if (!hasStringTables_) {
        return StringLookup::NoStringTables;
    }
    auto it = stringBlocks_.find((id >> 4) + 1);
    if (it == stringBlocks_.end()) {
        return StringLookup::NoBlock;
    }
    const ResourceEntry* block = it->second;
    // Sixteen counted strings: a WORD length, then that many UTF-16 units, no terminator.
    const Span data{block->data, block->size};
    uint64_t at = 0;
    for (uint32_t slot = 0;; ++slot) {
        if (!data.Has(at, 2)) {
            return StringLookup::Malformed;
        }
        const uint16_t count = data.U16(at);
        if (!data.Has(at + 2, uint64_t(count) * 2)) {
            return StringLookup::Malformed;
        }
        if (slot == (id & 15)) {
            if (count == 0) {
                return StringLookup::Empty;
            }
            *text = reinterpret_cast<const char16_t*>(block->data + at + 2);
            *length = count;
            return StringLookup::Found;
        }
        at += 2 + uint64_t(count) * 2;
    }
}

} // namespace host::detail
