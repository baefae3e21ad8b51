// Images, icons, cursors and fonts: the test library's bitmaps and icons loaded as the driver
// loads them, what GetObjectW reports of each, damaged resources refused, the stock and system
// objects and the life of every handle; and the requests HtmlHelpW records.
#include "hosttest.h"

#include "platform/host/hostgdi.h"

using namespace hosttest;

namespace {

LPCWSTR Id(int number)
{
    return MAKEINTRESOURCEW(number);
}

std::u16string TestImagesPath()
{
    return host::Utf8ToUtf16(QLM_TEST_IMAGES_DLL);
}

class Images : public ::testing::Test
{
protected:
    void SetUp() override
    {
        module_ = LoadLibraryW(TestImagesPath().c_str());
        ASSERT_NE(nullptr, module_) << "cannot load " << QLM_TEST_IMAGES_DLL;
        before_ = host::LiveObjects();
    }
    void TearDown() override { FreeLibrary(module_); }

    BITMAP BitmapOf(HANDLE image)
    {
        BITMAP bm;
        std::memset(&bm, kFill, sizeof bm);
        EXPECT_EQ(int(sizeof bm), GetObjectW(image, sizeof bm, &bm));
        return bm;
    }

    HMODULE module_ = nullptr;
    host::LiveObjectCounts before_;
};

// The about dialog's call, and what Windows reports of the bitmaps it gets: compatible with a
// 32-bit display, rows rounded to a WORD; a DIB section keeps the resource's depth and DWORD rows.
TEST_F(Images, BitmapsReportSizeDepthAndRowBytes)
{
    struct Row
    {
        const char* what;
        LPCWSTR name;
        int cx, cy;
        UINT flags;
        LONG width, height, widthBytes;
        WORD bitsPixel;
        bool bits;
    } rows[] = {
        {"8 bits, as the about dialog asks", Id(101), 0, 0, LR_DEFAULTSIZE | LR_LOADMAP3DCOLORS, 45,
         20, 180, 32, false},
        {"8 bits as a DIB section", Id(101), 0, 0, LR_CREATEDIBSECTION, 45, 20, 48, 8, true},
        {"8 bits by its name", u"logo", 0, 0, 0, 45, 20, 180, 32, false},
        {"8 bits by #number", u"#101", 0, 0, 0, 45, 20, 180, 32, false},
        {"8 bits stretched", Id(101), 90, 41, 0, 90, 41, 360, 32, false},
        {"1 bit stays monochrome", Id(102), 0, 0, 0, 33, 9, 6, 1, false},
        {"1 bit as a DIB section", Id(102), 0, 0, LR_CREATEDIBSECTION, 33, 9, 8, 1, true},
        {"24 bits", Id(103), 0, 0, 0, 13, 7, 52, 32, false},
        {"24 bits as a DIB section", Id(103), 0, 0, LR_CREATEDIBSECTION, 13, 7, 40, 24, true},
        {"24 bits made monochrome", Id(103), 0, 0, LR_MONOCHROME, 13, 7, 2, 1, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        SetLastError(kSentinel);
        HANDLE image = LoadImageW(module_, row.name, IMAGE_BITMAP, row.cx, row.cy, row.flags);
        ASSERT_NE(nullptr, image);
        EXPECT_EQ(kSentinel, GetLastError());
        EXPECT_EQ(DWORD(OBJ_BITMAP), GetObjectType(image));
        BITMAP bm = BitmapOf(image);
        EXPECT_EQ(0, bm.bmType);
        EXPECT_EQ(row.width, bm.bmWidth);
        EXPECT_EQ(row.height, bm.bmHeight);
        EXPECT_EQ(row.widthBytes, bm.bmWidthBytes);
        EXPECT_EQ(1, bm.bmPlanes);
        EXPECT_EQ(row.bitsPixel, bm.bmBitsPixel);
        EXPECT_EQ(row.bits, bm.bmBits != nullptr);
        EXPECT_TRUE(DeleteObject(image));
    }
    EXPECT_EQ(before_, host::LiveObjects());
}

TEST_F(Images, DibSectionHoldsTheResourcePixelsPastItsColourTable)
{
    // Bitmap 101 has a 16-entry colour table; its first row counts up by 7.
    HANDLE image = LoadImageW(module_, Id(101), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION);
    ASSERT_NE(nullptr, image);
    BITMAP bm = BitmapOf(image);
    ASSERT_NE(nullptr, bm.bmBits);
    EXPECT_EQ((std::vector<uint8_t>{0, 7, 14, 21}), Bytes(bm.bmBits, 4));
    EXPECT_EQ(8, host::DescribeImage(image).sourceBitCount);
    DeleteObject(image);
}

TEST_F(Images, GetObjectWOnABitmapNeedsRoomForTheWholeRecord)
{
    HANDLE image = LoadImageW(module_, Id(103), IMAGE_BITMAP, 0, 0, 0);
    ASSERT_NE(nullptr, image);
    uint8_t buffer[48];
    std::memset(buffer, kFill, sizeof buffer);
    EXPECT_EQ(32, GetObjectW(image, 0, nullptr)) << "the size asked for";
    EXPECT_EQ(0, GetObjectW(image, 31, buffer)) << "one byte short";
    EXPECT_TRUE(AllFill(buffer, sizeof buffer));
    EXPECT_EQ(32, GetObjectW(image, sizeof buffer, buffer));
    EXPECT_TRUE(AllFill(buffer + 32, 16)) << "nothing written past the record";
    DeleteObject(image);
}

// Each failure is answered as FindResourceW answers it, or as a refused resource, and leaves
// no object behind.
TEST_F(Images, MissingAndDamagedResourcesAreRefused)
{
    HMODULE resources = LoadLibraryW(host::Utf8ToUtf16(QLM_RES_DLL).c_str());
    ASSERT_NE(nullptr, resources);
    struct Row
    {
        const char* what;
        HMODULE module;
        LPCWSTR name;
        UINT type;
        UINT flags;
        DWORD error;
    } rows[] = {
        {"no bitmap of that number", module_, Id(999), IMAGE_BITMAP, 0,
         ERROR_RESOURCE_NAME_NOT_FOUND},
        {"no bitmap of that name", module_, u"NOLOGO", IMAGE_BITMAP, 0,
         ERROR_RESOURCE_NAME_NOT_FOUND},
        {"a library without cursors", resources, Id(301), IMAGE_CURSOR, 0,
         ERROR_RESOURCE_TYPE_NOT_FOUND},
        {"a bitmap number is no icon", module_, Id(101), IMAGE_ICON, 0,
         ERROR_RESOURCE_NAME_NOT_FOUND},
        {"pixels cut short", module_, Id(401), IMAGE_BITMAP, 0, ERROR_INVALID_DATA},
        {"unknown header size", module_, Id(402), IMAGE_BITMAP, 0, ERROR_INVALID_DATA},
        {"more colours than the depth has", module_, Id(403), IMAGE_BITMAP, 0, ERROR_INVALID_DATA},
        {"group names a missing icon", module_, Id(501), IMAGE_ICON, 0,
         ERROR_RESOURCE_NAME_NOT_FOUND},
        {"icon image cut short", module_, Id(502), IMAGE_ICON, 0, ERROR_INVALID_DATA},
        {"group shorter than its count", module_, Id(503), IMAGE_ICON, 0, ERROR_INVALID_DATA},
        {"not a module", reinterpret_cast<HMODULE>(0x1234), Id(101), IMAGE_BITMAP, 0,
         ERROR_INVALID_HANDLE},
        {"from a file", module_, u"logo8.bmp", IMAGE_BITMAP, LR_LOADFROMFILE, ERROR_NOT_SUPPORTED},
        {"a metafile", module_, Id(101), IMAGE_ENHMETAFILE, 0, ERROR_INVALID_PARAMETER},
        {"a null module's bitmap", nullptr, Id(101), IMAGE_BITMAP, 0,
         ERROR_RESOURCE_NAME_NOT_FOUND},
        {"no such system icon", nullptr, Id(5), IMAGE_ICON, LR_SHARED,
         ERROR_RESOURCE_NAME_NOT_FOUND},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        SetLastError(kSentinel);
        EXPECT_EQ(nullptr, LoadImageW(row.module, row.name, row.type, 0, 0, row.flags));
        EXPECT_EQ(row.error, GetLastError());
    }
    SetLastError(kSentinel);
    EXPECT_EQ(nullptr,
              LoadImageW(module_, Id(101), IMAGE_BITMAP, 100000, 100000, LR_CREATEDIBSECTION));
    EXPECT_EQ(DWORD(ERROR_NOT_ENOUGH_MEMORY), GetLastError()) << "a DIB section too large to hold";
    EXPECT_EQ(before_, host::LiveObjects());
    FreeLibrary(resources);
}

// The icon holds 16x16x32, 32x32x8, 32x32x32, 48x48x32 and a 256x256 PNG, as RT_ICON 1 to 5.
TEST_F(Images, IconsTakeTheEntryNearestTheSizeAskedFor)
{
    struct Row
    {
        int cx, cy;
        UINT flags;
        int width, height;
        WORD entry;
    } rows[] = {
        {0, 0, LR_DEFAULTSIZE, 32, 32, 3}, // the default size, the deeper of two
        {0, 0, 0, 16, 16, 1},              // the first entry's size
        {40, 40, 0, 40, 40, 3},            // halfway: the deeper, then the first
        {47, 47, 0, 47, 47, 4},
        {20, 16, 0, 20, 16, 1},
        {200, 200, 0, 200, 200, 5},
        {256, 256, 0, 256, 256, 5},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.cx << "x" << row.cy << " flags " << row.flags);
        HANDLE icon = LoadImageW(module_, Id(201), IMAGE_ICON, row.cx, row.cy, row.flags);
        ASSERT_NE(nullptr, icon);
        host::ImageInfo info = host::DescribeImage(icon);
        EXPECT_EQ(host::ImageKind::Icon, info.kind);
        EXPECT_EQ(row.width, info.width);
        EXPECT_EQ(row.height, info.height);
        EXPECT_EQ(row.entry, info.resourceId);
        EXPECT_FALSE(info.shared);
        EXPECT_TRUE(DestroyIcon(static_cast<HICON>(icon)));
    }
    EXPECT_EQ(before_, host::LiveObjects());
}

TEST_F(Images, PrivateIconsAreDestroyedOnceAndAreNoGdiObjects)
{
    HANDLE icon = LoadImageW(module_, Id(201), IMAGE_ICON, 0, 0, LR_DEFAULTSIZE);
    ASSERT_NE(nullptr, icon);
    EXPECT_EQ(before_.icons + 1, host::LiveObjects().icons);
    SetLastError(kSentinel);
    EXPECT_EQ(0, GetObjectW(icon, sizeof(BITMAP), nullptr));
    EXPECT_EQ(DWORD(ERROR_INVALID_HANDLE), GetLastError());
    EXPECT_FALSE(DeleteObject(icon)) << "an icon is not deleted as a GDI object";
    EXPECT_TRUE(DestroyIcon(static_cast<HICON>(icon)));
    SetLastError(kSentinel);
    EXPECT_FALSE(DestroyIcon(static_cast<HICON>(icon))) << "destroyed already";
    EXPECT_EQ(DWORD(ERROR_INVALID_CURSOR_HANDLE), GetLastError());
    EXPECT_EQ(host::ImageKind::None, host::DescribeImage(icon).kind);
    EXPECT_EQ(before_, host::LiveObjects());
}

TEST_F(Images, LoadIconWAndLoadCursorWShareOneHandleThatOutlivesDestroy)
{
    HICON icon = LoadIconW(module_, Id(201));
    ASSERT_NE(nullptr, icon);
    EXPECT_EQ(icon, LoadIconW(module_, Id(201)));
    host::ImageInfo info = host::DescribeImage(icon);
    EXPECT_EQ(32, info.width);
    EXPECT_TRUE(info.shared);
    EXPECT_TRUE(DestroyIcon(icon)) << "answered, but a shared icon stays";
    EXPECT_EQ(host::ImageKind::Icon, host::DescribeImage(icon).kind);

    HCURSOR cursor = LoadCursorW(module_, Id(301));
    ASSERT_NE(nullptr, cursor);
    info = host::DescribeImage(cursor);
    EXPECT_EQ(host::ImageKind::Cursor, info.kind);
    EXPECT_EQ(32, info.width);
    EXPECT_EQ(5, info.hotspot.x);
    EXPECT_EQ(7, info.hotspot.y);
    EXPECT_EQ(before_, host::LiveObjects()) << "shared handles are not counted as leaks";

    HANDLE large = LoadImageW(module_, Id(301), IMAGE_CURSOR, 64, 64, 0);
    ASSERT_NE(nullptr, large);
    EXPECT_EQ(10, host::DescribeImage(large).hotspot.x) << "the hot spot scales with the image";
    EXPECT_EQ(14, host::DescribeImage(large).hotspot.y);
    EXPECT_TRUE(DestroyCursor(static_cast<HCURSOR>(large)));
}

TEST(SystemImages, WaitCursorIsSetAndTheOldOnePutBack)
{
    HCURSOR arrow = LoadCursorW(nullptr, IDC_ARROW);
    HCURSOR wait = LoadCursorW(nullptr, IDC_WAIT);
    ASSERT_NE(nullptr, arrow);
    ASSERT_NE(nullptr, wait);
    EXPECT_NE(arrow, wait);
    EXPECT_EQ(wait, LoadCursorW(nullptr, IDC_WAIT)) << "one handle per system cursor";
    EXPECT_EQ(wait, LoadImageW(nullptr, IDC_WAIT, IMAGE_CURSOR, 0, 0, LR_SHARED | LR_DEFAULTSIZE));

    HCURSOR old = SetCursor(wait);
    EXPECT_EQ(wait, GetCursor());
    EXPECT_EQ(wait, SetCursor(old)) << "the wait cursor was shown";
    EXPECT_EQ(old, GetCursor()) << "and the old one is back";
    EXPECT_EQ(old, SetCursor(nullptr)) << "no cursor";
    EXPECT_EQ(nullptr, SetCursor(old));

    SetLastError(kSentinel);
    EXPECT_EQ(nullptr, SetCursor(reinterpret_cast<HCURSOR>(GetStockObject(DEFAULT_GUI_FONT))));
    EXPECT_EQ(DWORD(ERROR_INVALID_CURSOR_HANDLE), GetLastError());
    EXPECT_EQ(old, GetCursor()) << "a refused cursor changes nothing";

    EXPECT_TRUE(DestroyCursor(wait));
    EXPECT_EQ(host::ImageKind::Cursor, host::DescribeImage(wait).kind) << "system cursors stay";

    HICON warning = LoadIconW(nullptr, IDI_WARNING);
    ASSERT_NE(nullptr, warning);
    EXPECT_EQ(warning, LoadIconW(nullptr, IDI_EXCLAMATION));
    EXPECT_NE(warning, LoadIconW(nullptr, IDI_APPLICATION));
    EXPECT_EQ(host::ImageKind::Icon, host::DescribeImage(warning).kind);
    SetLastError(kSentinel);
    EXPECT_EQ(nullptr, LoadCursorW(nullptr, Id(1)));
    EXPECT_EQ(DWORD(ERROR_RESOURCE_NAME_NOT_FOUND), GetLastError());
}

LOGFONTW Font(const char16_t* face, LONG height, LONG weight)
{
    LOGFONTW lf{};
    lf.lfHeight = height;
    lf.lfWeight = weight;
    lf.lfItalic = 1;
    lf.lfCharSet = DEFAULT_CHARSET;
    lf.lfPitchAndFamily = VARIABLE_PITCH | FF_SWISS;
    std::memcpy(lf.lfFaceName, face,
                (std::char_traits<char16_t>::length(face) + 1) * sizeof(WCHAR));
    return lf;
}

TEST(Fonts, RecordComesBackAsGiven)
{
    const auto before = host::LiveObjects();
    LOGFONTW given = Font(u"Arial", -13, FW_BOLD);
    HFONT font = CreateFontIndirectW(&given);
    ASSERT_NE(nullptr, font);
    EXPECT_EQ(before.fonts + 1, host::LiveObjects().fonts) << "a live font is seen";
    EXPECT_EQ(DWORD(OBJ_FONT), GetObjectType(font));

    EXPECT_EQ(92, GetObjectW(font, 0, nullptr));
    LOGFONTW back;
    std::memset(&back, kFill, sizeof back);
    EXPECT_EQ(92, GetObjectW(font, sizeof back, &back));
    EXPECT_EQ(0, std::memcmp(&given, &back, sizeof back));

    uint8_t part[40];
    std::memset(part, kFill, sizeof part);
    EXPECT_EQ(20, GetObjectW(font, 20, part)) << "a shorter buffer gets its size";
    EXPECT_EQ(Bytes(&given, 20), Bytes(part, 20));
    EXPECT_TRUE(AllFill(part + 20, 20));

    EXPECT_TRUE(DeleteObject(font));
    SetLastError(kSentinel);
    EXPECT_FALSE(DeleteObject(font)) << "deleted twice";
    EXPECT_EQ(DWORD(ERROR_INVALID_HANDLE), GetLastError());
    EXPECT_EQ(0, GetObjectW(font, sizeof back, &back));
    EXPECT_EQ(before, host::LiveObjects());
}

TEST(Fonts, LongFaceNameIsCutToTheField)
{
    LOGFONTW given = Font(u"", 10, FW_NORMAL);
    for (auto& c : given.lfFaceName) {
        c = u'X'; // no terminator anywhere
    }
    HFONT font = CreateFontIndirectW(&given);
    ASSERT_NE(nullptr, font);
    LOGFONTW back{};
    GetObjectW(font, sizeof back, &back);
    EXPECT_EQ(std::u16string(31, u'X'), std::u16string(back.lfFaceName));
    DeleteObject(font);

    SetLastError(kSentinel);
    EXPECT_EQ(nullptr, CreateFontIndirectW(nullptr));
    EXPECT_EQ(DWORD(ERROR_INVALID_PARAMETER), GetLastError());
}

TEST(StockObjects, OneHandleEachThatDeletingLeavesAlone)
{
    struct Row
    {
        int index;
        DWORD type;
    } rows[] = {
        {WHITE_BRUSH, OBJ_BRUSH}, {NULL_BRUSH, OBJ_BRUSH},      {BLACK_PEN, OBJ_PEN},
        {SYSTEM_FONT, OBJ_FONT},  {DEFAULT_GUI_FONT, OBJ_FONT}, {DC_PEN, OBJ_PEN},
    };
    const auto before = host::LiveObjects();
    std::vector<HGDIOBJ> seen;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.index);
        HGDIOBJ object = GetStockObject(row.index);
        ASSERT_NE(nullptr, object);
        EXPECT_EQ(object, GetStockObject(row.index));
        EXPECT_EQ(row.type, GetObjectType(object));
        EXPECT_TRUE(DeleteObject(object)) << "deleting a stock object does no harm";
        EXPECT_EQ(row.type, GetObjectType(object)) << "and the object stays";
        EXPECT_EQ(seen.end(), std::find(seen.begin(), seen.end(), object)) << "handles differ";
        seen.push_back(object);
    }
    LOGBRUSH brush;
    EXPECT_EQ(int(sizeof brush), GetObjectW(GetStockObject(LTGRAY_BRUSH), sizeof brush, &brush));
    EXPECT_EQ(UINT(BS_SOLID), brush.lbStyle);
    EXPECT_EQ(RGB(192, 192, 192), brush.lbColor);
    LOGFONTW lf; // the about dialog's font, which it copies with a heavier weight
    ASSERT_EQ(int(sizeof lf), GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof lf, &lf));
    EXPECT_EQ(std::u16string(u"MS Shell Dlg"), std::u16string(lf.lfFaceName));
    EXPECT_EQ(FW_NORMAL, lf.lfWeight);
    for (int index : {9, DEFAULT_PALETTE, -1, 20})
        EXPECT_EQ(nullptr, GetStockObject(index)) << index;
    EXPECT_EQ(before, host::LiveObjects());
    SetLastError(kSentinel);
    EXPECT_FALSE(DeleteObject(nullptr));
    EXPECT_FALSE(DeleteObject(reinterpret_cast<HGDIOBJ>(0x4321)));
    EXPECT_EQ(DWORD(ERROR_INVALID_HANDLE), GetLastError());
}

TEST(HtmlHelp, RequestsAreRecordedWithACopyOfThePopupAndItsTexts)
{
    host::TakeHtmlHelpCalls();
    HH_POPUP popup;
    std::memset(&popup, 0xff, sizeof popup); // the driver starts from all -1
    popup.cbStruct = sizeof popup;
    popup.hinst = nullptr;
    popup.idString = 1261;
    popup.pszText = nullptr;
    popup.pt = {120, 340};
    popup.pszFont = nullptr;
    HWND owner = reinterpret_cast<HWND>(0x10010);
    SetLastError(kSentinel);
    EXPECT_EQ(nullptr, HtmlHelpW(owner, u"C:\\help\\qlm.chm::/ctx.txt", HH_DISPLAY_TEXT_POPUP,
                                 reinterpret_cast<DWORD_PTR>(&popup)));
    EXPECT_EQ(kSentinel, GetLastError());
    popup.idString = 0; // what the record holds was copied at the call
    std::u16string text = u"Roll width", font = u"MS Sans Serif,8";
    popup.pszText = text.c_str();
    popup.pszFont = font.c_str();
    EXPECT_EQ(nullptr,
              HtmlHelpW(nullptr, u"", HH_DISPLAY_TEXT_POPUP, reinterpret_cast<DWORD_PTR>(&popup)));
    text.assign(u"changed");
    EXPECT_EQ(nullptr, HtmlHelpW(owner, nullptr, HH_CLOSE_ALL, 0));

    std::vector<host::HtmlHelpCall> calls = host::TakeHtmlHelpCalls();
    ASSERT_EQ(3u, calls.size());
    EXPECT_EQ(owner, calls[0].owner);
    EXPECT_EQ(u"C:\\help\\qlm.chm::/ctx.txt", calls[0].path);
    EXPECT_EQ(UINT(HH_DISPLAY_TEXT_POPUP), calls[0].command);
    ASSERT_TRUE(calls[0].popup.has_value());
    EXPECT_EQ(72, calls[0].popup->cbStruct);
    EXPECT_EQ(1261u, calls[0].popup->idString);
    EXPECT_EQ(120, calls[0].popup->pt.x);
    EXPECT_EQ(340, calls[0].popup->pt.y);
    EXPECT_EQ(COLORREF(-1), calls[0].popup->clrForeground);
    EXPECT_EQ(-1, calls[0].popup->rcMargins.bottom);
    EXPECT_EQ(0u, calls[1].popup->idString);
    EXPECT_EQ(u"", calls[1].path) << "an empty path is still a call";
    EXPECT_EQ(u"Roll width", calls[1].popupText);
    EXPECT_EQ(u"MS Sans Serif,8", calls[1].popupFont);
    EXPECT_EQ(UINT(HH_CLOSE_ALL), calls[2].command);
    EXPECT_FALSE(calls[2].popup.has_value());
    EXPECT_TRUE(host::TakeHtmlHelpCalls().empty()) << "taking the calls clears them";
}

} // namespace
