// What tests and the host's window system see of images, icons, cursors, fonts and HTML Help:
// the objects behind the handles and the help requests that were made. The driver never
// includes this header.
#pragma once

#include "host.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

// ---- GDI and user objects ----------------------------------------------------------------------
enum class ImageKind
{
    None, // not a live object of this family
    Bitmap,
    Icon,
    Cursor,
    Font,
    Brush,
    Pen,
};

struct ImageInfo
{
    ImageKind kind = ImageKind::None;
    int width = 0; // bitmaps, icons and cursors: the size the handle reports
    int height = 0;
    int sourceBitCount = 0; // the bits per pixel of the resource it was made from
    WORD resourceId = 0;    // icons and cursors: the RT_ICON/RT_CURSOR entry chosen
    POINT hotspot{};        // cursors
    bool shared = false;    // a system object, a stock object or one loaded with LR_SHARED
};

// What a handle names; kind None for anything else.
ImageInfo DescribeImage(HANDLE handle);

// Objects made by LoadImageW, CreateFontIndirectW and the like that are still alive, not
// counting stock objects and shared icons or cursors, which are never destroyed. A test takes
// the counts before and after the code under test to find what it leaked.
struct LiveObjectCounts
{
    size_t bitmaps = 0;
    size_t fonts = 0;
    size_t icons = 0; // icons and cursors
    bool operator==(const LiveObjectCounts&) const = default;
};
LiveObjectCounts LiveObjects();

// ---- HTML Help ---------------------------------------------------------------------------------
struct HtmlHelpCall
{
    HWND owner = nullptr;
    std::u16string path;
    UINT command = 0;
    DWORD_PTR data = 0;
    // HH_DISPLAY_TEXT_POPUP with a record: a copy of it, and of the texts its pointers named
    // (the pointers themselves are kept but may be stale by the time a test looks).
    std::optional<HH_POPUP> popup;
    std::u16string popupText;
    std::u16string popupFont;
};
// The calls since the last time, in order; clears the record.
std::vector<HtmlHelpCall> TakeHtmlHelpCalls();

} // namespace host
