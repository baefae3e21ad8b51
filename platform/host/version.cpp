// Version resources: the VS_VERSIONINFO block of a PE file (RT_VERSION, resource 1) and the
// queries that walk it. Each node of the tree is wLength, wValueLength, wType, a terminated
// UTF-16 key, padding to 32 bits, the value (wValueLength characters for text, bytes for binary
// data), padding, then the children. Only the 32-bit layout is read; the 16-bit one of old
// files is not a driver's.
//
// VerQueryValueW gets no size with the block, so, as on Windows, the root's wLength is taken as
// the block's size; within it every node must lie inside its parent and its value inside the
// node, or the query fails. GetFileVersionInfoW cuts the root's wLength to what it copied, so a
// short buffer cannot send a query past its end.
#include "hostinternal.h"

#include <algorithm>
#include <string_view>

namespace {

using host::detail::FoldChar;

constexpr size_t kNodeHeaderSize = 6; // wLength, wValueLength, wType
constexpr WORD kBinaryValue = 0;
constexpr WORD kTextValue = 1;
constexpr char kNarrowCopyMark[4] = {'F', 'E', '2', 'X'};

uint16_t Read16(const uint8_t* p)
{
    return uint16_t(p[0] | (p[1] << 8));
}

size_t Align4(size_t offset)
{
    return (offset + 3) & ~size_t(3);
}

struct Node
{
    size_t end = 0;         // offset just past the node
    size_t valueOffset = 0; // offsets from the start of the block
    WORD valueLength = 0;   // as stored: characters for text, bytes for binary
    size_t children = 0;
};

// The node at offset at, which must end by limit; false when any part of it would not.
bool ReadNode(const uint8_t* block, size_t at, size_t limit, Node* node, std::u16string_view* key,
              std::u16string* keyStore)
{
    if (at > limit || limit - at < kNodeHeaderSize) {
        return false;
    }
    const size_t length = Read16(block + at);
    const WORD valueLength = Read16(block + at + 2);
    const WORD type = Read16(block + at + 4);
    if (length < kNodeHeaderSize || length > limit - at ||
        (type != kBinaryValue && type != kTextValue)) {
        return false;
    }
    node->end = at + length;
    keyStore->clear();
    size_t p = at + kNodeHeaderSize;
    for (;; p += 2) {
        if (node->end - p < 2) {
            return false; // the key runs out of the node unterminated
        }
        char16_t c = Read16(block + p);
        if (!c) {
            break;
        }
        keyStore->push_back(c);
    }
    *key = *keyStore;
    node->valueOffset = std::min(Align4(p + 2), node->end);
    node->valueLength = valueLength;
    const size_t valueBytes = type == kTextValue ? size_t(valueLength) * 2 : valueLength;
    if (valueBytes > node->end - node->valueOffset) {
        return false;
    }
    node->children = std::min(Align4(node->valueOffset + valueBytes), node->end);
    return true;
}

bool SameKey(std::u16string_view a, std::u16string_view b)
{
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [](char16_t x, char16_t y) { return FoldChar(x) == FoldChar(y); });
}

enum class Query
{
    Found,
    Missing,
    Damaged,
};

// Walks the path's keys (separated by backslashes; empty ones skipped) down from the root.
Query Walk(const uint8_t* block, std::u16string_view path, Node* found)
{
    const size_t size = Read16(block);
    std::u16string keyStore;
    std::u16string_view key;
    Node node;
    if (!ReadNode(block, 0, size, &node, &key, &keyStore)) {
        return Query::Damaged;
    }
    while (!path.empty()) {
        size_t slash = path.find(u'\\');
        std::u16string_view wanted = path.substr(0, slash);
        path = slash == std::u16string_view::npos ? std::u16string_view() : path.substr(slash + 1);
        if (wanted.empty()) {
            continue;
        }
        bool matched = false;
        for (size_t at = node.children; !matched && at + kNodeHeaderSize <= node.end;) {
            Node child;
            if (!ReadNode(block, at, node.end, &child, &key, &keyStore)) {
                return Query::Damaged;
            }
            if (SameKey(key, wanted)) {
                node = child;
                matched = true;
            }
            at = Align4(child.end);
        }
        if (!matched) {
            return Query::Missing;
        }
    }
    *found = node;
    return Query::Found;
}

// The version resource of the file, copied, or false with the last error set.
bool ReadVersionResource(LPCWSTR path, std::vector<uint8_t>* bytes)
{
    if (!path || !*path) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    HMODULE module = LoadLibraryW(path);
    if (!module) {
        return false;
    }
    bool found = false;
    if (HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION)) {
        const DWORD size = SizeofResource(module, resource);
        const auto* data =
            static_cast<const uint8_t*>(LockResource(LoadResource(module, resource)));
        // A block shorter than its root's header, or whose root is longer than the resource, is
        // not version information.
        if (data && size >= kNodeHeaderSize && Read16(data) <= size &&
            Read16(data) >= kNodeHeaderSize) {
            bytes->assign(data, data + size);
            found = true;
        } else {
            SetLastError(ERROR_INVALID_DATA);
        }
    }
    DWORD error = GetLastError();
    FreeLibrary(module);
    SetLastError(error);
    return found;
}

} // namespace

extern "C" {

// The size of a buffer for GetFileVersionInfoW: as Windows reports it, twice the resource plus
// four bytes, room that Windows uses for narrow copies of the texts and its "FE2X" mark. *
// lpdwHandle (optional) is set to 0. 0 when the file has none, with the error of the lookup:
// ERROR_FILE_NOT_FOUND or ERROR_PATH_NOT_FOUND, ERROR_BAD_EXE_FORMAT for a file that is not PE,
// ERROR_RESOURCE_DATA_NOT_FOUND (no resources), ERROR_RESOURCE_TYPE_NOT_FOUND (no version
// resource), ERROR_RESOURCE_NAME_NOT_FOUND (none numbered 1), ERROR_INVALID_DATA for a block
// shorter than its own header says. The module is not kept loaded.
DWORD WINAPI GetFileVersionInfoSizeW(LPCWSTR lptstrFilename, LPDWORD lpdwHandle)
{
    if (lpdwHandle) {
        *lpdwHandle = 0;
    }
    std::vector<uint8_t> bytes;
    if (!ReadVersionResource(lptstrFilename, &bytes)) {
        return 0;
    }
    return DWORD(bytes.size() * 2 + sizeof kNarrowCopyMark);
}

// Copies the version block into lpData: as much of it as dwLen holds, followed by "FE2X" when
// there is room, as Windows does. dwHandle is ignored. FALSE with the errors of
// GetFileVersionInfoSizeW, or ERROR_INVALID_PARAMETER for a null lpData, or
// ERROR_INSUFFICIENT_BUFFER when dwLen cannot hold even the root's header.
BOOL WINAPI GetFileVersionInfoW(LPCWSTR lptstrFilename, DWORD dwHandle, DWORD dwLen, LPVOID lpData)
{
    if (!lpData) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    std::vector<uint8_t> bytes;
    if (!ReadVersionResource(lptstrFilename, &bytes)) {
        return FALSE;
    }
    if (dwLen < kNodeHeaderSize) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    auto* out = static_cast<uint8_t*>(lpData);
    const size_t count = std::min<size_t>(dwLen, bytes.size());
    std::memcpy(out, bytes.data(), count);
    const WORD rootLength = Read16(out);
    if (rootLength > count) {
        const WORD cut = WORD(count);
        std::memcpy(out, &cut, sizeof cut);
    } else if (dwLen - rootLength >= sizeof kNarrowCopyMark) {
        std::memcpy(out + rootLength, kNarrowCopyMark, sizeof kNarrowCopyMark);
    }
    return TRUE;
}

// A value of a block that GetFileVersionInfoW filled, by its path of keys (compared without
// ASCII case):
//   "\"                          the VS_FIXEDFILEINFO; *puLen its size in bytes (52). FALSE
//                                when the root holds no such record or its signature is wrong
//   "\VarFileInfo\Translation"   the language and code page WORD pairs; *puLen in bytes
//   "\StringFileInfo\<lang><cp>\<name>"  the text; *puLen its length in characters as stored,
//                                which, as resource compilers write it, counts the terminator
// A path naming a block without a value gives its (empty) value and 0. On failure FALSE, with
// *lplpBuffer null and *puLen 0, and the last error ERROR_RESOURCE_TYPE_NOT_FOUND for a path
// that is not there, ERROR_INVALID_DATA for a damaged block, ERROR_INVALID_PARAMETER for null
// arguments.
BOOL WINAPI VerQueryValueW(LPCVOID pBlock, LPCWSTR lpSubBlock, LPVOID* lplpBuffer, PUINT puLen)
{
    if (lplpBuffer) {
        *lplpBuffer = nullptr;
    }
    if (puLen) {
        *puLen = 0;
    }
    if (!pBlock || !lpSubBlock || !lplpBuffer) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const auto* block = static_cast<const uint8_t*>(pBlock);
    const std::u16string path = host::detail::FromW(lpSubBlock);
    Node node;
    switch (Walk(block, path, &node)) {
    case Query::Found:
        break;
    case Query::Missing:
        SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
        return FALSE;
    case Query::Damaged:
        SetLastError(ERROR_INVALID_DATA);
        return FALSE;
    }
    if (path.find_first_not_of(u'\\') == std::u16string::npos) { // the root: its fixed record
        DWORD signature = 0;
        if (node.valueLength < sizeof(VS_FIXEDFILEINFO)) {
            SetLastError(ERROR_INVALID_DATA);
            return FALSE;
        }
        std::memcpy(&signature, block + node.valueOffset, sizeof signature);
        if (signature != VS_FFI_SIGNATURE) {
            SetLastError(ERROR_INVALID_DATA);
            return FALSE;
        }
    }
    *lplpBuffer = const_cast<uint8_t*>(block + node.valueOffset);
    if (puLen) {
        *puLen = node.valueLength;
    }
    return TRUE;
}

} // extern "C"
