// Bitmaps, icons, cursors, fonts and the stock objects: handles to objects that describe what
// Windows would have made (size, colour depth, the font's record), read from the resources of a
// loaded module. The host draws nothing, so pixels are kept as the resource held them and never
// resampled or recoloured; what a caller can ask of a handle is answered as Windows answers it.
//
// Every resource is checked before it is used: a bitmap or icon whose header, colour table or
// pixels run past the end of its resource is refused with ERROR_INVALID_DATA.
#include "handles.h"
#include "hostgdi.h"
#include "modules.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <tuple>

namespace host::detail {

namespace {

using host::ImageKind;

// SM_CXICON, SM_CYICON, SM_CXCURSOR and SM_CYCURSOR at 96 dots per inch.
constexpr int kDefaultIconSize = 32;
// Bitmaps that LoadImageW makes compatible with the display take its colour depth.
constexpr WORD kDisplayBitCount = 32;
// The largest pixel buffer a DIB section gets; a larger cx by cy is refused, not allocated.
constexpr uint64_t kMaxDibSectionBytes = uint64_t(256) << 20;
constexpr size_t kBitmapInfoHeaderSize = 40;
constexpr size_t kBitmapCoreHeaderSize = 12;
constexpr size_t kGroupHeaderSize = 6;
constexpr size_t kGroupEntrySize = 14;

uint16_t Read16(const uint8_t* p)
{
    return uint16_t(p[0] | (p[1] << 8));
}
uint32_t Read32(const uint8_t* p)
{
    return uint32_t(p[0]) | (uint32_t(p[1]) << 8) | (uint32_t(p[2]) << 16) | (uint32_t(p[3]) << 24);
}
uint32_t Read32BigEndian(const uint8_t* p)
{
    return (uint32_t(p[0]) << 24) | (uint32_t(p[1]) << 16) | (uint32_t(p[2]) << 8) | uint32_t(p[3]);
}

struct GdiObject : HandleObject
{
    static constexpr HandleKind kKind = HandleKind::GdiObject;
    explicit GdiObject(ImageKind k) : HandleObject(kKind), type(k) {}

    const ImageKind type;
    bool permanent = false; // stock, system or shared: never destroyed
    // Bitmaps, icons and cursors.
    LONG width = 0;
    LONG height = 0;
    WORD bitCount = 0; // what GetObjectW reports
    WORD sourceBitCount = 0;
    bool dibSection = false;
    std::vector<uint8_t> pixels; // a DIB section's bits, bottom-up, DWORD-aligned rows
    WORD resourceId = 0;
    POINT hotspot{};
    // Fonts, brushes and pens.
    LOGFONTW font{};
    UINT style = 0;
    COLORREF color = 0;
};

bool IsIconLike(const GdiObject* o)
{
    return o && (o->type == ImageKind::Icon || o->type == ImageKind::Cursor);
}

// The parts of a device-independent bitmap that were found to lie inside its resource.
struct Dib
{
    LONG width = 0;
    LONG height = 0; // of the image (an icon's mask rows not counted), positive
    WORD bitCount = 0;
    bool monochrome = false; // one bit per pixel
    bool compressed = false;
    bool topDown = false;
    size_t bitsOffset = 0;
    size_t bitsSize = 0;
};

size_t Stride(uint64_t width, uint64_t bitCount)
{
    return size_t((width * bitCount + 31) / 32 * 4);
}

// Checks a packed DIB (BITMAPINFOHEADER or a later version, or BITMAPCOREHEADER; colour table;
// pixels). An icon's image holds twice its height: the colour pixels, then a one-bit mask.
bool ParseDib(const uint8_t* data, size_t size, bool icon, Dib* dib)
{
    if (size < 4) {
        return false;
    }
    const uint32_t headerSize = Read32(data);
    if (headerSize > size) {
        return false;
    }
    int64_t width, height;
    uint32_t planes, bitCount, compression = BI_RGB, sizeImage = 0, colorsUsed = 0;
    size_t colorEntry = sizeof(RGBQUAD);
    if (headerSize == kBitmapCoreHeaderSize) {
        width = Read16(data + 4);
        height = Read16(data + 6);
        planes = Read16(data + 8);
        bitCount = Read16(data + 10);
        colorEntry = 3;
    } else if (headerSize >= kBitmapInfoHeaderSize && headerSize <= 124) {
        width = int32_t(Read32(data + 4));
        height = int32_t(Read32(data + 8));
        planes = Read16(data + 12);
        bitCount = Read16(data + 14);
        compression = Read32(data + 16);
        sizeImage = Read32(data + 20);
        colorsUsed = Read32(data + 32);
    } else {
        return false;
    }
    static constexpr uint32_t kBitCounts[] = {1, 4, 8, 16, 24, 32};
    if (width <= 0 || height == 0 || planes != 1 ||
        std::find(std::begin(kBitCounts), std::end(kBitCounts), bitCount) == std::end(kBitCounts)) {
        return false;
    }
    if (icon && (height < 0 || height % 2 != 0 || compression != BI_RGB)) {
        return false;
    }
    uint64_t offset = headerSize;
    if (compression == BI_BITFIELDS) {
        if (bitCount != 16 && bitCount != 32) {
            return false;
        }
        if (headerSize == kBitmapInfoHeaderSize) {
            offset += 3 * sizeof(DWORD); // the masks follow the header
        }
    } else if (compression == BI_RLE8 || compression == BI_RLE4) {
        if (bitCount != (compression == BI_RLE8 ? 8u : 4u) || height < 0 || sizeImage == 0) {
            return false;
        }
    } else if (compression != BI_RGB) {
        return false; // JPEG and PNG bitmaps are for printers, not for LoadImageW
    }
    uint64_t colors = colorsUsed;
    if (bitCount <= 8) {
        if (colors == 0) {
            colors = uint64_t(1) << bitCount;
        } else if (colors > (uint64_t(1) << bitCount)) {
            return false;
        }
    } else if (colors > 256) {
        return false;
    }
    offset += colors * colorEntry;

    const uint64_t rows = uint64_t(height < 0 ? -height : height);
    uint64_t bits;
    if (compression == BI_RLE8 || compression == BI_RLE4) {
        bits = sizeImage;
    } else if (icon) {
        bits = Stride(uint64_t(width), bitCount) * (rows / 2) +
               Stride(uint64_t(width), 1) * (rows / 2);
    } else {
        bits = Stride(uint64_t(width), bitCount) * rows;
    }
    if (offset > size || bits > size - offset) {
        return false;
    }
    dib->width = LONG(width);
    dib->height = LONG(icon ? rows / 2 : rows);
    dib->bitCount = WORD(bitCount);
    dib->monochrome = bitCount == 1;
    dib->compressed = compression == BI_RLE8 || compression == BI_RLE4;
    dib->topDown = height < 0;
    dib->bitsOffset = size_t(offset);
    dib->bitsSize = size_t(bits);
    return true;
}

// An icon image stored as PNG: the signature and a whole IHDR chunk.
bool ParsePng(const uint8_t* data, size_t size, Dib* dib)
{
    static constexpr uint8_t kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    if (size < 8 || std::memcmp(data, kSignature, 8) != 0) {
        return false;
    }
    if (size < 8 + 8 + 13 || Read32BigEndian(data + 8) != 13 ||
        std::memcmp(data + 12, "IHDR", 4) != 0) {
        return false;
    }
    uint32_t width = Read32BigEndian(data + 16), height = Read32BigEndian(data + 20);
    if (width == 0 || height == 0 || width > 0x7fffffff || height > 0x7fffffff) {
        return false;
    }
    dib->width = LONG(width);
    dib->height = LONG(height);
    dib->bitCount = 32;
    return true;
}

struct GdiState
{
    // LR_SHARED images by module, image type and resource name (numbers as "#n", names folded).
    std::map<std::tuple<uintptr_t, UINT, std::u16string>, void*> shared;
    std::map<int, void*> stock;
    std::map<std::pair<ImageKind, WORD>, void*> system; // icons and cursors of a null module
    void* cursor = nullptr;
    bool cursorChosen = false;
    host::LiveObjectCounts live;
};

GdiState& State()
{
    static auto* state = new GdiState; // outlives static destructors that may delete objects
    return *state;
}

size_t* LiveCounter(ImageKind kind)
{
    host::LiveObjectCounts& live = State().live;
    switch (kind) {
    case ImageKind::Bitmap:
        return &live.bitmaps;
    case ImageKind::Font:
        return &live.fonts;
    case ImageKind::Icon:
    case ImageKind::Cursor:
        return &live.icons;
    default:
        return nullptr;
    }
}

// Hands out the handle of a new object; the caller holds StateMutex().
void* Publish(std::shared_ptr<GdiObject> object)
{
    if (!object->permanent) {
        if (size_t* count = LiveCounter(object->type)) {
            ++*count;
        }
    }
    return AddHandle(std::move(object));
}

// What FindResourceW sets for a failed lookup.
DWORD LookupError(ResourceLookup lookup)
{
    switch (lookup) {
    case ResourceLookup::NoResourceSection:
        return ERROR_RESOURCE_DATA_NOT_FOUND;
    case ResourceLookup::NoType:
        return ERROR_RESOURCE_TYPE_NOT_FOUND;
    case ResourceLookup::NoLanguage:
        return ERROR_RESOURCE_LANG_NOT_FOUND;
    default:
        return ERROR_RESOURCE_NAME_NOT_FOUND;
    }
}

// A resource of a loaded module; the image keeps the bytes alive while the caller holds it.
bool FindImageResource(const std::shared_ptr<const PeImage>& image, LPCWSTR type, LPCWSTR name,
                       const ResourceEntry** entry)
{
    ResourceLookup lookup =
        image->Find(ResourceNameOf(type), ResourceNameOf(name), kAnyLanguage, entry);
    if (lookup != ResourceLookup::Found) {
        SetLastError(LookupError(lookup));
        return false;
    }
    return true;
}

void* LoadBitmapResource(const std::shared_ptr<const PeImage>& image, LPCWSTR name, int cx, int cy,
                         UINT flags)
{
    const ResourceEntry* entry = nullptr;
    if (!FindImageResource(image, RT_BITMAP, name, &entry)) {
        return nullptr;
    }
    Dib dib;
    if (!ParseDib(entry->data, entry->size, false, &dib)) {
        SetLastError(ERROR_INVALID_DATA);
        return nullptr;
    }
    auto object = std::make_shared<GdiObject>(ImageKind::Bitmap);
    object->width = cx ? cx : dib.width;
    object->height = cy ? cy : dib.height;
    object->sourceBitCount = dib.bitCount;
    if (flags & LR_CREATEDIBSECTION) {
        // A DIB section keeps the resource's depth; its rows are DWORD-aligned.
        object->dibSection = true;
        object->bitCount = dib.bitCount;
        const uint64_t bytes =
            uint64_t(Stride(uint64_t(object->width), dib.bitCount)) * uint64_t(object->height);
        if (bytes > kMaxDibSectionBytes) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return nullptr;
        }
        object->pixels.assign(size_t(bytes), 0);
        // Pixels are kept only when they need no decoding, flipping or resampling.
        if (!cx && !cy && !dib.compressed && !dib.topDown &&
            dib.bitsSize == object->pixels.size()) {
            std::memcpy(object->pixels.data(), entry->data + dib.bitsOffset, dib.bitsSize);
        }
    } else {
        // A bitmap compatible with the display, except that one bit per pixel stays monochrome.
        object->bitCount = (dib.monochrome || (flags & LR_MONOCHROME)) ? 1 : kDisplayBitCount;
    }
    return Publish(std::move(object));
}

struct GroupEntry
{
    int width;
    int height;
    int bitCount;
    WORD id;
};

void* LoadIconResource(const std::shared_ptr<const PeImage>& image, LPCWSTR name, bool cursor,
                       int cx, int cy, UINT flags)
{
    const ResourceEntry* group = nullptr;
    if (!FindImageResource(image, cursor ? RT_GROUP_CURSOR : RT_GROUP_ICON, name, &group)) {
        return nullptr;
    }
    const uint8_t* g = group->data;
    if (group->size < kGroupHeaderSize || Read16(g) != 0 || Read16(g + 2) != (cursor ? 2 : 1) ||
        Read16(g + 4) == 0 ||
        kGroupHeaderSize + size_t(Read16(g + 4)) * kGroupEntrySize > group->size) {
        SetLastError(ERROR_INVALID_DATA);
        return nullptr;
    }
    std::vector<GroupEntry> entries;
    for (size_t i = 0, n = Read16(g + 4); i < n; ++i) {
        const uint8_t* e = g + kGroupHeaderSize + i * kGroupEntrySize;
        GroupEntry entry;
        if (cursor) { // WORD width, WORD height of image and mask
            entry.width = Read16(e);
            entry.height = Read16(e + 2) / 2;
        } else { // BYTE width, BYTE height, 0 meaning 256
            entry.width = e[0] ? e[0] : 256;
            entry.height = e[1] ? e[1] : 256;
        }
        entry.bitCount = Read16(e + 6);
        entry.id = Read16(e + 12);
        entries.push_back(entry);
    }

    // The size asked for: the default with LR_DEFAULTSIZE, else the first entry's.
    int width = cx, height = cy;
    if (!width) {
        width = (flags & LR_DEFAULTSIZE) ? kDefaultIconSize : entries[0].width;
    }
    if (!height) {
        height = (flags & LR_DEFAULTSIZE) ? kDefaultIconSize : entries[0].height;
    }
    // The entry nearest that size; of those, the deepest colour the display shows.
    const GroupEntry* best = nullptr;
    int bestDistance = 0;
    for (const GroupEntry& e : entries) {
        int distance = std::abs(e.width - width) + std::abs(e.height - height);
        bool deeper = best && e.bitCount > best->bitCount && e.bitCount <= kDisplayBitCount;
        if (!best || distance < bestDistance || (distance == bestDistance && deeper)) {
            best = &e;
            bestDistance = distance;
        }
    }

    const ResourceEntry* item = nullptr;
    if (!FindImageResource(image, cursor ? RT_CURSOR : RT_ICON, MAKEINTRESOURCEW(best->id),
                           &item)) {
        return nullptr;
    }
    const uint8_t* data = item->data;
    size_t size = item->size;
    POINT hotspot{};
    if (cursor) {
        if (size < 4) {
            SetLastError(ERROR_INVALID_DATA);
            return nullptr;
        }
        hotspot = {Read16(data), Read16(data + 2)};
        data += 4;
        size -= 4;
    }
    Dib dib;
    if (!ParsePng(data, size, &dib) && !ParseDib(data, size, true, &dib)) {
        SetLastError(ERROR_INVALID_DATA);
        return nullptr;
    }
    auto object = std::make_shared<GdiObject>(cursor ? ImageKind::Cursor : ImageKind::Icon);
    object->width = width;
    object->height = height;
    object->bitCount = dib.bitCount;
    object->sourceBitCount = dib.bitCount;
    object->resourceId = best->id;
    // The hot spot moves with the image when it is drawn at another size.
    object->hotspot = {LONG(int64_t(hotspot.x) * width / std::max<LONG>(dib.width, 1)),
                       LONG(int64_t(hotspot.y) * height / std::max<LONG>(dib.height, 1))};
    object->permanent = (flags & LR_SHARED) != 0;
    return Publish(std::move(object));
}

bool IsSystemImage(ImageKind kind, WORD id)
{
    if (kind == ImageKind::Icon) {
        return id >= 32512 && id <= 32518;
    }
    return (id >= 32512 && id <= 32516) || (id >= 32642 && id <= 32646) ||
           (id >= 32648 && id <= 32651);
}

// The one handle of a system icon or cursor, made on first use; null for an unknown id.
void* SystemImage(ImageKind kind, LPCWSTR name)
{
    if (!IS_INTRESOURCE(name) || !IsSystemImage(kind, LOWORD(name))) {
        return nullptr;
    }
    void*& handle = State().system[{kind, LOWORD(name)}];
    if (!handle) {
        auto object = std::make_shared<GdiObject>(kind);
        object->width = object->height = kDefaultIconSize;
        object->bitCount = object->sourceBitCount = kDisplayBitCount;
        object->resourceId = LOWORD(name);
        object->permanent = true;
        handle = Publish(std::move(object));
    }
    return handle;
}

std::u16string SharedName(LPCWSTR name)
{
    if (IS_INTRESOURCE(name)) {
        return u"#" + Utf8ToUtf16(std::to_string(LOWORD(name)));
    }
    return Fold(FromW(name));
}

// The stock objects: what GetObjectW reports of each.
struct StockFont
{
    int index;
    LONG height, width, weight;
    BYTE charSet, pitchAndFamily;
    const char16_t* face;
};
constexpr StockFont kStockFonts[] = {
    {OEM_FIXED_FONT, 12, 8, FW_NORMAL, 255, FIXED_PITCH | FF_MODERN, u"Terminal"},
    {ANSI_FIXED_FONT, 12, 9, FW_NORMAL, ANSI_CHARSET, FIXED_PITCH | FF_MODERN, u"Courier"},
    {ANSI_VAR_FONT, 12, 9, FW_NORMAL, ANSI_CHARSET, VARIABLE_PITCH | FF_SWISS, u"MS Sans Serif"},
    {SYSTEM_FONT, 16, 7, FW_BOLD, ANSI_CHARSET, VARIABLE_PITCH | FF_SWISS, u"System"},
    {DEVICE_DEFAULT_FONT, 16, 7, FW_BOLD, ANSI_CHARSET, VARIABLE_PITCH | FF_SWISS, u"System"},
    {SYSTEM_FIXED_FONT, 15, 8, FW_NORMAL, ANSI_CHARSET, FIXED_PITCH | FF_MODERN, u"Fixedsys"},
    {DEFAULT_GUI_FONT, -11, 0, FW_NORMAL, ANSI_CHARSET, DEFAULT_PITCH, u"MS Shell Dlg"},
};
struct StockPaint
{
    int index;
    ImageKind kind;
    UINT style;
    COLORREF color;
};
constexpr StockPaint kStockPaints[] = {
    {WHITE_BRUSH, ImageKind::Brush, BS_SOLID, RGB(255, 255, 255)},
    {LTGRAY_BRUSH, ImageKind::Brush, BS_SOLID, RGB(192, 192, 192)},
    {GRAY_BRUSH, ImageKind::Brush, BS_SOLID, RGB(128, 128, 128)},
    {DKGRAY_BRUSH, ImageKind::Brush, BS_SOLID, RGB(64, 64, 64)},
    {BLACK_BRUSH, ImageKind::Brush, BS_SOLID, RGB(0, 0, 0)},
    {NULL_BRUSH, ImageKind::Brush, BS_NULL, RGB(0, 0, 0)},
    {WHITE_PEN, ImageKind::Pen, PS_SOLID, RGB(255, 255, 255)},
    {BLACK_PEN, ImageKind::Pen, PS_SOLID, RGB(0, 0, 0)},
    {NULL_PEN, ImageKind::Pen, PS_NULL, RGB(0, 0, 0)},
    {DC_BRUSH, ImageKind::Brush, BS_SOLID, RGB(255, 255, 255)},
    {DC_PEN, ImageKind::Pen, PS_SOLID, RGB(0, 0, 0)},
};

void CopyFaceName(WCHAR* to, const WCHAR* from)
{
    // At most LF_FACESIZE - 1 characters and a terminator; the rest of the field zero.
    std::memset(to, 0, LF_FACESIZE * sizeof(WCHAR));
    for (size_t i = 0; i + 1 < LF_FACESIZE && from[i]; ++i) {
        to[i] = from[i];
    }
}

std::shared_ptr<GdiObject> MakeStockObject(int index)
{
    for (const StockFont& f : kStockFonts) {
        if (f.index == index) {
            auto object = std::make_shared<GdiObject>(ImageKind::Font);
            object->font.lfHeight = f.height;
            object->font.lfWidth = f.width;
            object->font.lfWeight = f.weight;
            object->font.lfCharSet = f.charSet;
            object->font.lfPitchAndFamily = f.pitchAndFamily;
            CopyFaceName(object->font.lfFaceName, f.face);
            return object;
        }
    }
    for (const StockPaint& p : kStockPaints) {
        if (p.index == index) {
            auto object = std::make_shared<GdiObject>(p.kind);
            object->style = p.style;
            object->color = p.color;
            return object;
        }
    }
    return nullptr;
}

GdiObject* PeekObject(const void* handle)
{
    return handle ? Peek<GdiObject>(handle) : nullptr;
}

// Takes a private object out of the table. Permanent objects stay: the caller answers TRUE.
void Destroy(const void* handle, GdiObject* object)
{
    if (object->permanent) {
        return;
    }
    if (size_t* count = LiveCounter(object->type)) {
        --*count;
    }
    if (State().cursor == handle) {
        State().cursor = nullptr; // no cursor is shown rather than a stale one
    }
    RemoveHandle(handle, HandleKind::GdiObject);
}

} // namespace

} // namespace host::detail

namespace host {

ImageInfo DescribeImage(HANDLE handle)
{
    using namespace detail;
    Lock lock(StateMutex());
    ImageInfo info;
    const GdiObject* object = PeekObject(handle);
    if (!object) {
        return info;
    }
    info.kind = object->type;
    info.width = object->width;
    info.height = object->height;
    info.sourceBitCount = object->sourceBitCount;
    info.resourceId = object->resourceId;
    info.hotspot = object->hotspot;
    info.shared = object->permanent;
    return info;
}

LiveObjectCounts LiveObjects()
{
    using namespace detail;
    Lock lock(StateMutex());
    return State().live;
}

} // namespace host

using namespace host::detail;

extern "C" {

// A bitmap (RT_BITMAP), icon (RT_GROUP_ICON, RT_ICON) or cursor (RT_GROUP_CURSOR, RT_CURSOR)
// of a loaded module, or NULL with the last error of FindResourceW for a missing resource,
// ERROR_INVALID_DATA for a damaged one, ERROR_INVALID_HANDLE for a module that is not loaded,
// ERROR_NOT_ENOUGH_MEMORY for a DIB section of more than 256 MiB.
// A null module gives the system icons and cursors (IDI_*, IDC_*), else
// ERROR_RESOURCE_NAME_NOT_FOUND. Files (LR_LOADFROMFILE) are not read: ERROR_NOT_SUPPORTED.
// Sizes: a bitmap asked for at cx by cy reports that size (0 keeps the resource's); an icon or
// cursor picks the entry nearest cx by cy (0 by 0: 32 by 32 with LR_DEFAULTSIZE, else the first
// entry's size) and reports the size asked for. Without LR_CREATEDIBSECTION a bitmap is
// compatible with the display: 32 bits per pixel, or 1 for a one-bit resource. LR_SHARED gives
// an icon or cursor the handle of the first shared load of the same resource again, and that
// handle is never destroyed; bitmaps are never shared.
HANDLE WINAPI LoadImageW(HINSTANCE hInst, LPCWSTR name, UINT type, int cx, int cy, UINT fuLoad)
{
    if (type != IMAGE_BITMAP && type != IMAGE_ICON && type != IMAGE_CURSOR) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (fuLoad & LR_LOADFROMFILE) {
        SetLastError(ERROR_NOT_SUPPORTED);
        return nullptr;
    }
    if (!name || cx < 0 || cy < 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    Lock lock(StateMutex());
    GdiState& state = State();
    if (!hInst) {
        void* system =
            type == IMAGE_BITMAP
                ? nullptr
                : SystemImage(type == IMAGE_ICON ? ImageKind::Icon : ImageKind::Cursor, name);
        if (!system) {
            SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        }
        return system;
    }
    std::shared_ptr<const PeImage> image = LoadedImage(hInst);
    if (!image) {
        return nullptr;
    }
    // Sharing is for icons and cursors; a bitmap is always a new object.
    const bool shared = (fuLoad & LR_SHARED) && type != IMAGE_BITMAP;
    const auto key = std::make_tuple(reinterpret_cast<uintptr_t>(hInst), type, SharedName(name));
    if (shared) {
        if (auto it = state.shared.find(key); it != state.shared.end()) {
            return it->second;
        }
    }
    void* handle = type == IMAGE_BITMAP
                       ? LoadBitmapResource(image, name, cx, cy, fuLoad)
                       : LoadIconResource(image, name, type == IMAGE_CURSOR, cx, cy, fuLoad);
    if (handle && shared) {
        state.shared.emplace(key, handle);
    }
    return handle;
}

// LoadImageW with LR_DEFAULTSIZE | LR_SHARED; a null module gives the system icons.
HICON WINAPI LoadIconW(HINSTANCE hInstance, LPCWSTR lpIconName)
{
    return static_cast<HICON>(
        LoadImageW(hInstance, lpIconName, IMAGE_ICON, 0, 0, LR_DEFAULTSIZE | LR_SHARED));
}

// LoadImageW with LR_DEFAULTSIZE | LR_SHARED; a null module gives the system cursors.
HCURSOR WINAPI LoadCursorW(HINSTANCE hInstance, LPCWSTR lpCursorName)
{
    return static_cast<HCURSOR>(
        LoadImageW(hInstance, lpCursorName, IMAGE_CURSOR, 0, 0, LR_DEFAULTSIZE | LR_SHARED));
}

// The cursor shown until now (the arrow before the first call), or NULL when there was none.
// NULL hides the cursor. An icon serves as a cursor, as on Windows; anything else is refused
// with NULL and ERROR_INVALID_CURSOR_HANDLE, and the cursor stays.
HCURSOR WINAPI SetCursor(HCURSOR hCursor)
{
    Lock lock(StateMutex());
    GdiState& state = State();
    if (hCursor && !IsIconLike(PeekObject(hCursor))) {
        SetLastError(ERROR_INVALID_CURSOR_HANDLE);
        return nullptr;
    }
    HCURSOR previous = GetCursor();
    state.cursor = hCursor;
    return previous;
}

HCURSOR WINAPI GetCursor(void)
{
    Lock lock(StateMutex());
    GdiState& state = State();
    if (!state.cursorChosen) {
        state.cursorChosen = true;
        state.cursor = SystemImage(ImageKind::Cursor, IDC_ARROW);
    }
    return static_cast<HCURSOR>(state.cursor);
}

// TRUE after destroying an icon or cursor; a shared or system one is left alone and TRUE is
// answered all the same, as Windows does. Anything else: FALSE, ERROR_INVALID_CURSOR_HANDLE.
BOOL WINAPI DestroyIcon(HICON hIcon)
{
    Lock lock(StateMutex());
    GdiObject* object = PeekObject(hIcon);
    if (!IsIconLike(object)) {
        SetLastError(ERROR_INVALID_CURSOR_HANDLE);
        return FALSE;
    }
    Destroy(hIcon, object);
    return TRUE;
}

// As DestroyIcon: icons and cursors are one kind of object.
BOOL WINAPI DestroyCursor(HCURSOR hCursor)
{
    return DestroyIcon(hCursor);
}

// A font of the record (nothing is matched against installed fonts: the record is kept, and
// GetObjectW gives it back, with the face name cut to 31 characters and the rest of its field
// zero). NULL with ERROR_INVALID_PARAMETER for a null record.
HFONT WINAPI CreateFontIndirectW(const LOGFONTW* lplf)
{
    if (!lplf) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    auto object = std::make_shared<GdiObject>(ImageKind::Font);
    object->font = *lplf;
    CopyFaceName(object->font.lfFaceName, lplf->lfFaceName);
    Lock lock(StateMutex());
    return static_cast<HFONT>(Publish(std::move(object)));
}

// The record of a GDI object, as Windows gives it:
//   font    LOGFONTW: the first min(c, 92) bytes; returns the count
//   bitmap  BITMAP: 32 bytes when c allows, else 0. bmWidthBytes is rounded to a WORD as for a
//           device-dependent bitmap, to a DWORD for a DIB section, whose bmBits is its pixels
//   brush   LOGBRUSH, pen LOGPEN: the first min(c, 16) bytes
// A null pv asks for the size. Icons, cursors and anything else that is not a GDI object give 0
// with ERROR_INVALID_HANDLE.
int WINAPI GetObjectW(HANDLE h, int c, LPVOID pv)
{
    Lock lock(StateMutex());
    const GdiObject* object = PeekObject(h);
    if (!object || IsIconLike(object)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    if (pv && c < 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    auto copy = [&](const void* record, size_t size) {
        if (!pv) {
            return int(size);
        }
        size_t count = std::min(size, size_t(c));
        std::memcpy(pv, record, count);
        return int(count);
    };
    switch (object->type) {
    case ImageKind::Font:
        return copy(&object->font, sizeof(LOGFONTW));
    case ImageKind::Bitmap: {
        if (!pv) {
            return int(sizeof(BITMAP));
        }
        if (size_t(c) < sizeof(BITMAP)) {
            return 0;
        }
        BITMAP bm{};
        bm.bmWidth = object->width;
        bm.bmHeight = object->height;
        bm.bmPlanes = 1;
        bm.bmBitsPixel = object->bitCount;
        const uint64_t rowBits = uint64_t(object->width) * object->bitCount;
        if (object->dibSection) {
            bm.bmWidthBytes = LONG((rowBits + 31) / 32 * 4);
            bm.bmBits = const_cast<uint8_t*>(object->pixels.data());
        } else {
            bm.bmWidthBytes = LONG((rowBits + 15) / 16 * 2);
        }
        std::memcpy(pv, &bm, sizeof bm);
        return int(sizeof bm);
    }
    case ImageKind::Brush: {
        LOGBRUSH brush{object->style, object->color, 0};
        return copy(&brush, sizeof brush);
    }
    case ImageKind::Pen: {
        LOGPEN pen{object->style, {0, 0}, object->color};
        return copy(&pen, sizeof pen);
    }
    default:
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
}

// OBJ_FONT, OBJ_BITMAP, OBJ_BRUSH or OBJ_PEN; 0 with ERROR_INVALID_HANDLE for anything else.
DWORD WINAPI GetObjectType(HGDIOBJ h)
{
    Lock lock(StateMutex());
    const GdiObject* object = PeekObject(h);
    switch (object ? object->type : ImageKind::None) {
    case ImageKind::Font:
        return OBJ_FONT;
    case ImageKind::Bitmap:
        return OBJ_BITMAP;
    case ImageKind::Brush:
        return OBJ_BRUSH;
    case ImageKind::Pen:
        return OBJ_PEN;
    default:
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
}

// TRUE after deleting a font, bitmap, brush or pen. A stock object is not deleted and TRUE is
// answered, as the documentation says deleting a stock object does no harm. A deleted, unknown or
// null handle, or an icon or cursor: FALSE with ERROR_INVALID_HANDLE.
BOOL WINAPI DeleteObject(HGDIOBJ ho)
{
    Lock lock(StateMutex());
    GdiObject* object = PeekObject(ho);
    if (!object || IsIconLike(object)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    Destroy(ho, object);
    return TRUE;
}

// The one handle of a stock font, brush or pen, the same on every call and never deleted.
// NULL, with the last error untouched, for DEFAULT_PALETTE (the host has no palettes) and for
// an index Windows does not define.
HGDIOBJ WINAPI GetStockObject(int i)
{
    Lock lock(StateMutex());
    GdiState& state = State();
    if (auto it = state.stock.find(i); it != state.stock.end()) {
        return it->second;
    }
    std::shared_ptr<GdiObject> object = MakeStockObject(i);
    if (!object) {
        return nullptr;
    }
    object->permanent = true;
    void* handle = Publish(std::move(object));
    state.stock.emplace(i, handle);
    return handle;
}

} // extern "C"
