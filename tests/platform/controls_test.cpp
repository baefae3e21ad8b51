// The standard controls of the host, driven through their messages in a dialog of the test
// resource library: return values as Windows gives them, and the notifications each raises, in
// their order.
#include "hosttest.h"

#include "fixtures/testdialogs.h"
#include "platform/host/wininternal.h"

#include <gmock/gmock.h>

#include <map>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

std::vector<std::string> g_log;
// What the dialog procedure answers to UDN_DELTAPOS: non-zero refuses the change.
LONG_PTR g_refuseDelta = 0;
std::u16string g_buddyTextAtDelta;

std::string CodeName(HWND from, UINT code)
{
    WCHAR cls[32] = {};
    GetClassNameW(from, cls, 32);
    std::u16string c = cls;
// Each notification named by its window class and code.
#define NAME(cls, code) std::make_pair(std::make_pair(std::u16string(u"" #cls), UINT(code)), #code)
    static const std::map<std::pair<std::u16string, UINT>, const char*> names = {
        NAME(Button, BN_CLICKED),       NAME(Edit, EN_CHANGE),
        NAME(Edit, EN_UPDATE),          NAME(Edit, EN_MAXTEXT),
        NAME(Edit, EN_SETFOCUS),        NAME(Edit, EN_KILLFOCUS),
        NAME(ComboBox, CBN_SELCHANGE),  NAME(ComboBox, CBN_SELENDOK),
        NAME(ComboBox, CBN_EDITCHANGE), NAME(ComboBox, CBN_EDITUPDATE),
        NAME(ComboBox, CBN_SETFOCUS),   NAME(ComboBox, CBN_KILLFOCUS),
        NAME(ListBox, LBN_SELCHANGE)};
#undef NAME
    auto it = names.find({c, code});
    return it == names.end() ? std::to_string(code) : it->second;
}

INT_PTR CALLBACK Recording(HWND dialog, UINT msg, WPARAM wp, LPARAM lp)
{
    switch (msg) {
    case WM_INITDIALOG:
        return FALSE; // no focus: the tests set it
    case WM_COMMAND:
        g_log.push_back(std::to_string(LOWORD(wp)) + " " +
                        CodeName(reinterpret_cast<HWND>(lp), HIWORD(wp)));
        return TRUE;
    case WM_NOTIFY: {
        auto* nm = reinterpret_cast<NMUPDOWN*>(lp);
        if (nm->hdr.code == UDN_DELTAPOS) {
            g_log.push_back(std::to_string(nm->hdr.idFrom) + " UDN_DELTAPOS " +
                            std::to_string(nm->iPos) + " " + std::to_string(nm->iDelta));
            WCHAR text[32];
            GetDlgItemTextW(dialog, IDC_COUNT, text, 32);
            g_buddyTextAtDelta = text;
            SetWindowLongPtrW(dialog, DWLP_MSGRESULT, g_refuseDelta);
            return TRUE;
        }
        return FALSE;
    }
    case WM_HSCROLL:
    case WM_VSCROLL:
        g_log.push_back(std::string(msg == WM_HSCROLL ? "hscroll " : "vscroll ") +
                        std::to_string(GetDlgCtrlID(reinterpret_cast<HWND>(lp))) + " " +
                        std::to_string(LOWORD(wp)) + " " + std::to_string(SHORT(HIWORD(wp))));
        return TRUE;
    }
    return FALSE;
}

std::u16string Text(HWND h)
{
    WCHAR buffer[128];
    GetWindowTextW(h, buffer, 128);
    return buffer;
}

class ControlsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        module_ = LoadLibraryW(host::Utf8ToUtf16(QLM_TEST_DIALOGS_DLL).c_str());
        ASSERT_NE(nullptr, module_);
        dialog_ = CreateDialogParamW(module_, MAKEINTRESOURCEW(IDD_ALL), nullptr, Recording, 0);
        ASSERT_NE(nullptr, dialog_);
        g_log.clear();
        g_refuseDelta = 0;
    }
    void TearDown() override
    {
        DestroyWindow(dialog_);
        FreeLibrary(module_);
    }
    HWND Item(int id) { return GetDlgItem(dialog_, id); }
    LRESULT Send(int id, UINT msg, WPARAM wp = 0, LPARAM lp = 0)
    {
        return SendDlgItemMessageW(dialog_, id, msg, wp, lp);
    }
    LRESULT SendText(int id, UINT msg, WPARAM wp, const char16_t* text)
    {
        return Send(id, msg, wp, reinterpret_cast<LPARAM>(text));
    }
    HMODULE module_ = nullptr;
    HWND dialog_ = nullptr;
};

TEST_F(ControlsTest, ButtonsCheckClickAndKeepTheirRadioGroup)
{
    EXPECT_EQ(BST_UNCHECKED, IsDlgButtonChecked(dialog_, IDC_COLLATE));
    ASSERT_TRUE(CheckDlgButton(dialog_, IDC_COLLATE, BST_CHECKED));
    EXPECT_EQ(BST_CHECKED, Send(IDC_COLLATE, BM_GETCHECK));
    EXPECT_THAT(g_log, IsEmpty()) << "BM_SETCHECK notifies nobody";

    Send(IDC_COLLATE, BM_CLICK);
    EXPECT_EQ(BST_UNCHECKED, Send(IDC_COLLATE, BM_GETCHECK)) << "an auto check box toggles";
    Send(IDC_PORTRAIT, BM_CLICK);
    Send(IDC_LANDSCAPE, BM_CLICK);
    EXPECT_EQ(BST_UNCHECKED, IsDlgButtonChecked(dialog_, IDC_PORTRAIT));
    EXPECT_EQ(BST_CHECKED, IsDlgButtonChecked(dialog_, IDC_LANDSCAPE));
    EXPECT_EQ(BST_UNCHECKED, IsDlgButtonChecked(dialog_, IDC_COLLATE))
        << "the check box lies outside the radio group";
    EXPECT_THAT(g_log, ElementsAre("1007 BN_CLICKED", "1009 BN_CLICKED", "1010 BN_CLICKED"));

    CheckRadioButton(dialog_, IDC_PORTRAIT, IDC_LANDSCAPE, IDC_PORTRAIT);
    EXPECT_EQ(BST_CHECKED, IsDlgButtonChecked(dialog_, IDC_PORTRAIT));
    EXPECT_EQ(BST_UNCHECKED, IsDlgButtonChecked(dialog_, IDC_LANDSCAPE));
    EXPECT_EQ(BST_UNCHECKED, Send(IDOK, BM_GETCHECK)) << "a push button has no check";
    EXPECT_EQ(0, Send(IDC_TEST, BM_SETIMAGE, IMAGE_BITMAP, 0x1234));
    EXPECT_EQ(0x1234, Send(IDC_TEST, BM_SETIMAGE, IMAGE_BITMAP, 0x5678));
    EXPECT_EQ(0, Send(IDC_LOGO, STM_SETIMAGE, IMAGE_ICON, 0x99));
    EXPECT_EQ(0x99, Send(IDC_LOGO, STM_GETIMAGE, IMAGE_ICON));
}

TEST_F(ControlsTest, EditsNotifyChangesAndRefuseWhatTheyMayNotTake)
{
    ASSERT_TRUE(SetDlgItemTextW(dialog_, IDC_NAME, u"abc"));
    EXPECT_THAT(g_log, ElementsAre("1001 EN_UPDATE", "1001 EN_CHANGE"));
    EXPECT_EQ(30000, Send(IDC_NAME, EM_GETLIMITTEXT));

    g_log.clear();
    Send(IDC_NAME, EM_LIMITTEXT, 4);
    Send(IDC_NAME, EM_SETSEL, 3, 3);
    int beeps = host::MessageBeepCount();
    for (char16_t c : std::u16string(u"de"))
        Send(IDC_NAME, WM_CHAR, c, 1);
    EXPECT_EQ(u"abcd", Text(Item(IDC_NAME)));
    EXPECT_THAT(g_log, ElementsAre("1001 EN_UPDATE", "1001 EN_CHANGE", "1001 EN_MAXTEXT"));

    g_log.clear();
    Send(IDC_NAME, WM_CHAR, VK_BACK, 1);
    Send(IDC_NAME, EM_SETSEL, 0, 1);
    Send(IDC_NAME, WM_CHAR, 'X', 1);
    EXPECT_EQ(u"Xbc", Text(Item(IDC_NAME)));
    EXPECT_EQ(4u, g_log.size());

    Send(IDC_COUNT, WM_CHAR, 'a', 1);
    Send(IDC_READONLY, WM_CHAR, '1', 1);
    Send(IDC_COUNT, WM_CHAR, '7', 1);
    EXPECT_EQ(u"7", Text(Item(IDC_COUNT)));
    EXPECT_EQ(u"", Text(Item(IDC_READONLY)));
    EXPECT_EQ(beeps + 2, host::MessageBeepCount()) << "a letter in a number and a read-only field";
}

TEST_F(ControlsTest, DialogItemIntegers)
{
    struct
    {
        const char16_t* text;
        BOOL isSigned;
        UINT value;
        BOOL translated;
    } cases[] = {
        {u"42", FALSE, 42, TRUE},
        {u"  7", FALSE, 7, TRUE},
        {u"12 ", FALSE, 0, FALSE},
        {u"+12", TRUE, 0, FALSE},
        {u"-5", TRUE, UINT(-5), TRUE},
        {u"-5", FALSE, 0, FALSE},
        {u"12a", FALSE, 0, FALSE},
        {u"", FALSE, 0, FALSE},
        {u"4294967295", FALSE, 4294967295u, TRUE},
        {u"4294967296", FALSE, 0, FALSE},
        {u"2147483648", TRUE, 0, FALSE},
    };
    for (const auto& c : cases) {
        SetDlgItemTextW(dialog_, IDC_NAME, c.text);
        BOOL translated = 2;
        EXPECT_EQ(c.value, GetDlgItemInt(dialog_, IDC_NAME, &translated, c.isSigned))
            << host::Utf16ToUtf8(c.text);
        EXPECT_EQ(c.translated, translated) << host::Utf16ToUtf8(c.text);
    }
    SetDlgItemInt(dialog_, IDC_NAME, UINT(-12), TRUE);
    EXPECT_EQ(u"-12", Text(Item(IDC_NAME)));
}

TEST_F(ControlsTest, ComboBoxListMessages)
{
    EXPECT_EQ(CB_ERR, Send(IDC_PAPER, CB_GETCURSEL));
    EXPECT_EQ(0, SendText(IDC_PAPER, CB_ADDSTRING, 0, u"A4"));
    EXPECT_EQ(1, SendText(IDC_PAPER, CB_ADDSTRING, 0, u"Letter"));
    EXPECT_EQ(1, SendText(IDC_PAPER, CB_INSERTSTRING, 1, u"a3"));
    EXPECT_EQ(3, SendText(IDC_PAPER, CB_INSERTSTRING, WPARAM(-1), u"Legal"));
    EXPECT_EQ(CB_ERR, SendText(IDC_PAPER, CB_INSERTSTRING, 9, u"B5"));
    EXPECT_EQ(4, Send(IDC_PAPER, CB_GETCOUNT)); // A4, a3, Letter, Legal

    struct
    {
        int start;
        const char16_t* text;
        UINT msg;
        int found;
    } finds[] = {
        {-1, u"a", CB_FINDSTRING, 0},       {0, u"a", CB_FINDSTRING, 1},
        {1, u"A", CB_FINDSTRING, 0},        {-1, u"LE", CB_FINDSTRING, 2},
        {2, u"le", CB_FINDSTRING, 3},       {3, u"le", CB_FINDSTRING, 2},
        {-1, u"x", CB_FINDSTRING, CB_ERR},  {-1, u"a", CB_FINDSTRINGEXACT, CB_ERR},
        {-1, u"A3", CB_FINDSTRINGEXACT, 1}, {1, u"a3", CB_FINDSTRINGEXACT, 1},
    };
    for (const auto& f : finds)
        EXPECT_EQ(f.found, SendText(IDC_PAPER, f.msg, WPARAM(f.start), f.text))
            << f.start << " " << host::Utf16ToUtf8(f.text);

    Send(IDC_PAPER, CB_SETITEMDATA, 1, 273);
    EXPECT_EQ(273, Send(IDC_PAPER, CB_GETITEMDATA, 1));
    EXPECT_EQ(CB_ERR, Send(IDC_PAPER, CB_GETITEMDATA, 4));
    EXPECT_EQ(2, Send(IDC_PAPER, CB_SETCURSEL, 2));
    EXPECT_EQ(u"Letter", Text(Item(IDC_PAPER)));
    EXPECT_EQ(1, Send(IDC_PAPER, CB_DELETESTRING, 0) - 2) << "returns the count left";
    EXPECT_EQ(1, Send(IDC_PAPER, CB_GETCURSEL)) << "the selection follows its item";
    EXPECT_EQ(CB_ERR, Send(IDC_PAPER, CB_SETCURSEL, 7));
    EXPECT_EQ(CB_ERR, Send(IDC_PAPER, CB_GETCURSEL));
    EXPECT_EQ(1, SendText(IDC_PAPER, CB_SELECTSTRING, WPARAM(-1), u"lett"));
    EXPECT_EQ(CB_ERR, SendText(IDC_PAPER, CB_SELECTSTRING, WPARAM(-1), u"zz"));
    EXPECT_EQ(1, Send(IDC_PAPER, CB_GETCURSEL)) << "a failed select keeps the selection";
    WCHAR text[16];
    EXPECT_EQ(6, Send(IDC_PAPER, CB_GETLBTEXTLEN, 1));
    EXPECT_EQ(6, Send(IDC_PAPER, CB_GETLBTEXT, 1, reinterpret_cast<LPARAM>(text)));
    EXPECT_EQ(std::u16string(u"Letter"), text);
    EXPECT_THAT(g_log, IsEmpty()) << "the application's own changes raise no notification";
    Send(IDC_PAPER, CB_RESETCONTENT);
    EXPECT_EQ(0, Send(IDC_PAPER, CB_GETCOUNT));
    EXPECT_EQ(CB_ERR, Send(IDC_PAPER, CB_GETCURSEL));
}

TEST_F(ControlsTest, DropDownComboBoxEditsLikeAnEdit)
{
    SendText(IDC_ADDRESS, CB_ADDSTRING, 0, u"10.0.0.5");
    Send(IDC_ADDRESS, CB_SETCURSEL, 0);
    EXPECT_EQ(u"10.0.0.5", Text(Item(IDC_ADDRESS)));
    SetDlgItemTextW(dialog_, IDC_ADDRESS, u"10.0.0.");
    EXPECT_THAT(g_log, IsEmpty());
    HWND edit = GetWindow(Item(IDC_ADDRESS), GW_CHILD);
    ASSERT_NE(nullptr, edit);
    SendMessageW(edit, EM_SETSEL, 7, 7);
    SendMessageW(edit, WM_CHAR, '9', 1);
    EXPECT_EQ(u"10.0.0.9", Text(Item(IDC_ADDRESS)));
    EXPECT_THAT(g_log, ElementsAre("1005 CBN_EDITUPDATE", "1005 CBN_EDITCHANGE"));
    EXPECT_EQ(CB_ERR, Send(IDC_ADDRESS, CB_GETCURSEL)) << "typed text is no item";
}

TEST_F(ControlsTest, ListBoxMessages)
{
    EXPECT_EQ(LB_ERR, Send(IDC_LIST, LB_GETCURSEL));
    SendText(IDC_LIST, LB_ADDSTRING, 0, u"one");
    SendText(IDC_LIST, LB_ADDSTRING, 0, u"two");
    Send(IDC_LIST, LB_SETITEMDATA, WPARAM(-1), 5);
    EXPECT_EQ(5, Send(IDC_LIST, LB_GETITEMDATA, 1)) << "-1 sets every item's data";
    EXPECT_EQ(1, Send(IDC_LIST, LB_SETCURSEL, 1));
    EXPECT_EQ(LB_ERR, Send(IDC_LIST, LB_SETCURSEL, 2));
    EXPECT_EQ(1, Send(IDC_LIST, LB_GETCURSEL));
    EXPECT_EQ(LB_ERR, Send(IDC_LIST, LB_SETCURSEL, WPARAM(-1))) << "even though it cleared it";
    EXPECT_EQ(LB_ERR, Send(IDC_LIST, LB_GETCURSEL));
    EXPECT_EQ(1, SendText(IDC_LIST, LB_FINDSTRINGEXACT, WPARAM(-1), u"TWO"));
    EXPECT_EQ(3, Send(IDC_LIST, LB_GETTEXTLEN, 0));
    EXPECT_THAT(g_log, IsEmpty());
}

TEST_F(ControlsTest, UpDownRangePositionAndBuddy)
{
    EXPECT_EQ(MAKELONG(0, 100), Send(IDC_SPIN, UDM_GETRANGE)) << "Windows' default: 100 down to 0";
    Send(IDC_SPIN, UDM_SETRANGE32, 1, 2000);
    int lo = 0, hi = 0;
    Send(IDC_SPIN, UDM_GETRANGE32, reinterpret_cast<WPARAM>(&lo), reinterpret_cast<LPARAM>(&hi));
    EXPECT_EQ(1, lo);
    EXPECT_EQ(2000, hi);

    EXPECT_EQ(0, Send(IDC_SPIN, UDM_SETPOS32, 0, 1500));
    EXPECT_EQ(u"1,500", Text(Item(IDC_COUNT))) << "with the thousands separator";
    EXPECT_THAT(g_log, ElementsAre("1002 EN_UPDATE", "1002 EN_CHANGE"));
    EXPECT_EQ(1500, Send(IDC_SPIN, UDM_SETPOS32, 0, 9999));
    EXPECT_EQ(2000, Send(IDC_SPIN, UDM_GETPOS32)) << "clamped to the range";

    SetDlgItemTextW(dialog_, IDC_COUNT, u"12");
    EXPECT_EQ(MAKELONG(12, 0), Send(IDC_SPIN, UDM_GETPOS)) << "read from the buddy";
    SetDlgItemTextW(dialog_, IDC_COUNT, u"x");
    EXPECT_NE(0, HIWORD(Send(IDC_SPIN, UDM_GETPOS))) << "the buddy holds no number";
}

TEST_F(ControlsTest, UpDownSpinAsksTheParentFirst)
{
    Send(IDC_SPIN, UDM_SETRANGE32, 0, 10);
    Send(IDC_SPIN, UDM_SETPOS32, 0, 9);
    g_log.clear();
    ASSERT_TRUE(host::detail::SpinUpDown(Item(IDC_SPIN), true));
    EXPECT_EQ(u"9", g_buddyTextAtDelta) << "nothing changed before UDN_DELTAPOS";
    EXPECT_THAT(g_log, ElementsAre("1003 UDN_DELTAPOS 9 1", "1002 EN_UPDATE", "1002 EN_CHANGE",
                                   "vscroll 1003 4 10", "vscroll 1003 8 10"));
    g_log.clear();
    host::detail::SpinUpDown(Item(IDC_SPIN), true);
    EXPECT_EQ(10, Send(IDC_SPIN, UDM_GETPOS32)) << "held at the top of the range";

    g_refuseDelta = 1;
    g_log.clear();
    host::detail::SpinUpDown(Item(IDC_SPIN), false);
    EXPECT_THAT(g_log, ElementsAre("1003 UDN_DELTAPOS 10 -1"));
    EXPECT_EQ(10, Send(IDC_SPIN, UDM_GETPOS32));
    EXPECT_EQ(u"10", Text(Item(IDC_COUNT)));
}

// comctl32 counts up towards the maximum: under the default range, 100 down to 0, the up
// arrow gives -1.
TEST_F(ControlsTest, UpDownDeltaFollowsTheRangesDirection)
{
    HWND updown = CreateWindowExW(0, u"msctls_updown32", u"", WS_CHILD, 0, 0, 10, 10, dialog_,
                                  reinterpret_cast<HMENU>(4000), nullptr, nullptr);
    g_log.clear();
    host::detail::SpinUpDown(updown, true);
    host::detail::SpinUpDown(updown, false);
    EXPECT_THAT(g_log,
                ElementsAre("4000 UDN_DELTAPOS 0 -1", "vscroll 4000 4 0", "vscroll 4000 8 0",
                            "4000 UDN_DELTAPOS 0 1", "vscroll 4000 4 1", "vscroll 4000 8 1"));
    DestroyWindow(updown);
}

TEST_F(ControlsTest, TrackbarRangePositionAndDrag)
{
    EXPECT_EQ(0, Send(IDC_QUALITY, TBM_GETRANGEMIN));
    EXPECT_EQ(100, Send(IDC_QUALITY, TBM_GETRANGEMAX));
    Send(IDC_QUALITY, TBM_SETPOS, TRUE, 80);
    Send(IDC_QUALITY, TBM_SETRANGE, TRUE, MAKELONG(10, 50));
    EXPECT_EQ(50, Send(IDC_QUALITY, TBM_GETPOS)) << "the position stays within the new range";
    EXPECT_EQ(8, Send(IDC_QUALITY, TBM_GETPAGESIZE)) << "a fifth of the range";
    EXPECT_EQ(8, Send(IDC_QUALITY, TBM_SETPAGESIZE, 0, 5));
    EXPECT_EQ(1, Send(IDC_QUALITY, TBM_SETLINESIZE, 0, 2));
    Send(IDC_QUALITY, TBM_SETPOS, TRUE, 3);
    EXPECT_EQ(10, Send(IDC_QUALITY, TBM_GETPOS));
    EXPECT_THAT(g_log, IsEmpty());

    host::detail::SlideTrackbar(Item(IDC_QUALITY), 30);
    EXPECT_THAT(g_log, ElementsAre("hscroll 1011 5 30", "hscroll 1011 4 30", "hscroll 1011 8 0"));
    EXPECT_EQ(30, Send(IDC_QUALITY, TBM_GETPOS));
}

} // namespace
