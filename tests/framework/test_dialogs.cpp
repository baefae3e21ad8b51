// The dialog base, driven through the host's window system as a person drives it: a probe
// dialog on the user-media template uses each service of TVODialog, and the script's actions
// and the host's records show what the user sees.
#include "driver/config/tvoconfg.h"
#include "driver/devmode/tvodm.h"
#include "driver/framework/tvodialog.h"
#include "resources/qlmres.h"
#include "support/hostprinter.h"

#include "platform/host/hostgdi.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

namespace {

const TVOListEntry kFonts[] = {
    {IDS_FONT_SWISS, 10}, {IDS_FONT_SYMBOL, 20}, {IDS_FONT_DUTCH, 20}, {0, 0}};
const TVOListEntry kMore[] = {{IDS_FONT_SWISS_NARROW, 30}, {IDS_FONT_DUTCH_ITALIC, 40}, {0, 0}};
const DWORD kLockList[] = {IDC_USERMEDIA_NAME, 9999, IDC_USERMEDIA_WIDTH, 0};

// A dialog of the base's own kind: its handlers call the base's services, and what they saw is
// kept for the test.
class ProbeDialog : public TVODialog
{
public:
    ProbeDialog(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM)
    {
        m_iResourceID = IDD_USERMEDIA;
        m_pConfig = pConfig;
        m_pDM = pDM;
        m_pPermissionIDs = kLockList;
    }
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        switch (message) {
        case WM_INITDIALOG:
            GetWindowRect(m_hWnd, &m_initialRect);
            SubclassNumericEdit(IDC_USERMEDIA_WIDTH);
            m_pConfig->fillComboBox1(m_hWnd, IDC_USERMEDIA_CATEGORY, kFonts, 20);
            LockControls(TRUE);
            if (m_onInit)
                m_onInit(*this);
            return 1;
        case WM_COMMAND:
            OnCommand(LOWORD(wParam));
            return 0;
        case WM_HELP:
            OnHelp(m_hWnd, wParam, reinterpret_cast<const HELPINFO*>(lParam));
            return 0;
        default:
            return 0;
        }
    }
    void OnCommand(int id)
    {
        switch (id) {
        case IDOK: {
            // The width must lie between 1 and 100: the label names the field in the warning.
            BOOL bOk = FALSE;
            UINT width = GetDlgItemInt(m_hWnd, IDC_USERMEDIA_WIDTH, &bOk, FALSE);
            if (!bOk || width < 1 || width > 100) {
                ShowRangeError(IDC_USERMEDIA_WIDTH_CAPTION, 1L, 100L);
                return;
            }
            EndDialog(m_hWnd, 1);
            return;
        }
        case IDC_USERMEDIA_CLOSE:
            EndDialog(m_hWnd, 2);
            return;
        case IDC_USERMEDIA_SAVE:
            LockControls(FALSE);
            m_selection = GetComboSelection(IDC_USERMEDIA_CATEGORY);
            return;
        default:
            return;
        }
    }

    std::function<void(ProbeDialog&)> m_onInit;
    RECT m_initialRect = {};
    DWORD m_selection = 0;
};

class DialogBase : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_printer = std::make_unique<HostPrinter>(u"Probe");
        m_config = std::make_unique<TVOPrinterConfiguration>(u"Tarvo Plan Output System 2440");
        m_config->setPrinterHandle(m_printer->handle());
        m_record = std::make_unique<TVODevMode>(m_printer->handle());
        ASSERT_TRUE(m_record->getDeviceMode(m_printer->handle(), u"", u"Probe", nullptr));
        host::ClearMessageBoxCalls();
    }
    void TearDown() override
    {
        host::ClearUserScript();
        host::SetScreenSize(1920, 1080);
    }
    // Runs the probe modally with the script; the failures of the script fail the test.
    INT_PTR Run(ProbeDialog& dlg, const std::string& script, HWND parent = nullptr)
    {
        std::string error;
        EXPECT_TRUE(host::SetUserScript(script, &error)) << error;
        INT_PTR result = dlg.doModal(parent);
        for (const std::string& failure : host::UserScriptFailures())
            ADD_FAILURE() << failure;
        return result;
    }
    ProbeDialog Probe() { return ProbeDialog(m_config.get(), m_record->m_lpDM); }

    std::unique_ptr<HostPrinter> m_printer;
    std::unique_ptr<TVOPrinterConfiguration> m_config;
    std::unique_ptr<TVODevMode> m_record;
};

std::string Field(int id)
{
    return std::to_string(id);
}

} // namespace

// Only digits, signs, point, comma and backspace reach a numeric field; anything else beeps.
TEST_F(DialogBase, NumericFieldTakesOnlyNumberCharacters)
{
    ProbeDialog dlg = Probe();
    const int beeps = host::MessageBeepCount();
    const std::string w = Field(IDC_USERMEDIA_WIDTH);
    EXPECT_EQ(2, Run(dlg, "type " + w +
                              " 1a2.5,-+x\n"
                              "expect " +
                              w +
                              " text 12.5,-+\n"
                              "key " +
                              w +
                              " backspace\n"
                              "key " +
                              w +
                              " q\n"
                              "expect " +
                              w +
                              " text 12.5,-\n"
                              "type " +
                              w +
                              " 0123456789\n"
                              "expect " +
                              w +
                              " text 0123456789\n"
                              "click " +
                              Field(IDC_USERMEDIA_CLOSE) + "\n"));
    EXPECT_EQ(3, host::MessageBeepCount() - beeps);
}

// A value out of range names the field's label without its mnemonic and the limits, with the
// printer's name as caption; the dialog stays open until the value is right.
TEST_F(DialogBase, RangeWarningNamesTheFieldAndKeepsTheDialogOpen)
{
    ProbeDialog dlg = Probe();
    const std::string w = Field(IDC_USERMEDIA_WIDTH);
    EXPECT_EQ(1, Run(dlg, "type " + w + " 250\nok\nanswer ok\ntype " + w + " 50\nok\n"));
    auto boxes = host::MessageBoxCalls();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(u"Width:\n\nEnter a value from 1 to 100.", boxes[0].text);
    EXPECT_EQ(u"Probe", boxes[0].caption);
    EXPECT_EQ(UINT(MB_ICONEXCLAMATION), boxes[0].type);
}

// Distances are shown in the record's units with the class's text form.
TEST_F(DialogBase, RangeWarningOfADistanceUsesTheRecordsUnits)
{
    ProbeDialog dlg = Probe();
    dlg.m_onInit = [](ProbeDialog& d) {
        d.m_pDM->dmxUnits = kFIXED_INCHES;
        d.ShowRangeError(IDC_USERMEDIA_LENGTH_CAPTION, TVOFixed(1.5), TVOFixed(36));
        d.m_pDM->dmxUnits = kFIXED_MM;
        d.ShowRangeError(9999, TVOFixed(1.5), TVOFixed(36));
    };
    Run(dlg, "answer ok\nanswer ok\ncancel\n");
    auto boxes = host::MessageBoxCalls();
    ASSERT_EQ(2u, boxes.size());
    EXPECT_EQ(u"Length:\n\nEnter a value from 1.50 to 36.00.", boxes[0].text);
    EXPECT_EQ(u"?unknown?\n\nEnter a value from  1.5 to 36.0.", boxes[1].text)
        << "a label the template lacks";
}

// A dialog without parent or owner stands on the crossed screen rectangle; with a parent it is
// centred on the parent. Both are held within the crossed limits.
TEST_F(DialogBase, CentringUsesTheParentOrTheCrossedScreen)
{
    ProbeDialog alone = Probe();
    Run(alone, "cancel\n");
    const RECT r = alone.m_initialRect;
    const int w = r.right - r.left, h = r.bottom - r.top;
    EXPECT_EQ(540 - w / 2, r.left);
    EXPECT_EQ(960 - h / 2, r.top);

    HWND parent = CreateWindowExW(0, u"Static", u"parent", WS_POPUP, 100, 100, 400, 300, nullptr,
                                  nullptr, nullptr, nullptr);
    ProbeDialog centred = Probe();
    Run(centred, "cancel\n", parent);
    EXPECT_EQ(300 - w / 2, centred.m_initialRect.left);
    EXPECT_EQ(250 - h / 2, centred.m_initialRect.top);
    DestroyWindow(parent);

    // Near the right edge the limit is the screen's height: the dialog is pulled left to
    // 1080 - w on a 1920-wide screen.
    HWND right = CreateWindowExW(0, u"Static", u"right", WS_POPUP, 1500, 100, 300, 200, nullptr,
                                 nullptr, nullptr, nullptr);
    ProbeDialog pulled = Probe();
    Run(pulled, "cancel\n", right);
    EXPECT_EQ(1080 - w, pulled.m_initialRect.left);
    DestroyWindow(right);
}

// fillComboBox1 selects the later of two equal rows; fillComboBox2 puts its rows in front and
// keeps the same item selected when none matches; the value is read from the item data.
TEST_F(DialogBase, ListsAreFilledByValueAndReadByItemData)
{
    ProbeDialog dlg = Probe();
    const std::string c = Field(IDC_USERMEDIA_CATEGORY);
    dlg.m_onInit = [](ProbeDialog& d) {
        d.m_pConfig->fillComboBox2(d.m_hWnd, IDC_USERMEDIA_CATEGORY, kMore, 99);
    };
    Run(dlg, "expect " + c +
                 " data 20\n"
                 "click " +
                 Field(IDC_USERMEDIA_SAVE) +
                 "\n"
                 "cancel\n");
    EXPECT_EQ(20u, dlg.m_selection) << "the later of the two rows of 20, moved down by two";

    ProbeDialog listed = Probe();
    listed.m_onInit = [](ProbeDialog& d) {
        d.m_pConfig->fillComboBox2(d.m_hWnd, IDC_USERMEDIA_CATEGORY, kMore, 40);
        auto controls = host::DescribeWindow(d.m_hWnd);
        for (const host::ControlState& control : controls) {
            if (control.id != IDC_USERMEDIA_CATEGORY)
                continue;
            ASSERT_EQ(5u, control.items.size());
            EXPECT_EQ(30, control.items[0].second);
            EXPECT_EQ(40, control.items[1].second);
            EXPECT_EQ(10, control.items[2].second);
            EXPECT_EQ(1, control.selection);
        }
        SendDlgItemMessageW(d.m_hWnd, IDC_USERMEDIA_CATEGORY, CB_SETCURSEL, WPARAM(-1), 0);
    };
    Run(listed, "click " + Field(IDC_USERMEDIA_SAVE) + "\ncancel\n");
    EXPECT_EQ(DWORD(CB_ERR), listed.m_selection) << "no selection passes the error through";
}

// Without permission the listed controls grey, those the template lacks are skipped, and
// nothing is ever enabled; with it nothing changes.
TEST_F(DialogBase, LockingGreysTheListedControlsOnly)
{
    ProbeDialog dlg = Probe();
    Run(dlg, "expect " + Field(IDC_USERMEDIA_NAME) +
                 " enabled\n"
                 "expect " +
                 Field(IDC_USERMEDIA_DELETE) +
                 " disabled\n"
                 "click " +
                 Field(IDC_USERMEDIA_SAVE) +
                 "\n"
                 "expect " +
                 Field(IDC_USERMEDIA_NAME) +
                 " disabled\n"
                 "expect " +
                 Field(IDC_USERMEDIA_WIDTH) +
                 " disabled\n"
                 "expect " +
                 Field(IDC_USERMEDIA_LENGTH) +
                 " enabled\n"
                 "expect " +
                 Field(IDC_USERMEDIA_DELETE) +
                 " disabled\n"
                 "cancel\n");
}

// The firmware gate compares the record's revision with the minimum.
TEST_F(DialogBase, FirmwareGateEnablesFromTheMinimumOn)
{
    const int ids[] = {IDC_USERMEDIA_NAME, IDC_USERMEDIA_DELETE, 9999};
    for (LONG offset : {0, 1}) {
        ProbeDialog dlg = Probe();
        dlg.m_onInit = [&](ProbeDialog& d) {
            d.EnableForFirmware(ids, 3, d.m_pDM->dmxFirmwareRevision + offset);
        };
        const std::string state = offset == 0 ? "enabled" : "disabled";
        Run(dlg, "expect " + Field(IDC_USERMEDIA_NAME) + " " + state +
                     "\n"
                     "expect " +
                     Field(IDC_USERMEDIA_DELETE) + " " + state +
                     "\n"
                     "cancel\n");
    }
}

// Context help asks for the control's topic in the help file beside the driver.
TEST_F(DialogBase, HelpShowsTheControlsTopicAsAPopup)
{
    ProbeDialog dlg = Probe();
    dlg.m_onInit = [](ProbeDialog& d) {
        HELPINFO info = {};
        info.cbSize = sizeof(info);
        info.iCtrlId = IDC_USERMEDIA_WIDTH;
        info.MousePos = {12, 34};
        host::TakeHtmlHelpCalls();
        d.OnHelp(d.m_hWnd, 0, &info);
    };
    Run(dlg, "cancel\n");
    auto calls = host::TakeHtmlHelpCalls();
    ASSERT_EQ(1u, calls.size());
    EXPECT_EQ(UINT(HH_DISPLAY_TEXT_POPUP), calls[0].command);
    EXPECT_NE(std::u16string::npos, calls[0].path.find(u"\\3\\QLMDrv.chm::/cshelp.txt"));
    ASSERT_TRUE(calls[0].popup.has_value());
    EXPECT_EQ(72, calls[0].popup->cbStruct);
    EXPECT_EQ(UINT(IDC_USERMEDIA_WIDTH), calls[0].popup->idString);
    EXPECT_EQ(12, calls[0].popup->pt.x);
    EXPECT_EQ(COLORREF(-1), calls[0].popup->clrForeground);
}
