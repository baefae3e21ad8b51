// The printer address dialog as the refresh shows it, and the about dialog, run by scripts of
// a person's actions.
#include "driver/config/tvoconfg.h"
#include "driver/devmode/tvodm.h"
#include "driver/dialogs/tvoprinteripdlg.h"
#include "driver/dialogue/qlmrefresh.h"
#include "driver/foundation/qlmutils.h"
#include "driver/tabs/tvoabout.h"
#include "pjlsim/pjlsim_support.h"
#include "resources/qlmres.h"
#include "server.h"
#include "support/hostprinter.h"

#include "platform/host/hostgdi.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using pjlsim_test::Serve;

class AddressDialog : public ::testing::Test
{
protected:
    void SetUp() override { QLMInstallPrinterAddressDialog(); }
    void TearDown() override
    {
        QLMSetRefreshQuestions(QLMDefaultRefreshQuestions());
        host::ClearUserScript();
    }
    // A queue whose port names an address where nothing listens.
    void Queue(const std::u16string& name, const char16_t* port)
    {
        m_printer = std::make_unique<HostPrinter>(name, u"Tarvo Plan Output System 2440", port);
        m_config = std::make_unique<TVOPrinterConfiguration>(u"Tarvo Plan Output System 2440");
        m_config->setPrinterHandle(m_printer->handle());
        m_record = std::make_unique<TVODevMode>(m_printer->handle());
        const uint8_t* p = reinterpret_cast<const uint8_t*>(m_record->m_lpDM);
        m_entry.assign(p, p + sizeof(DEVMODEEX));
    }
    int Refresh(const std::string& script)
    {
        std::string error;
        EXPECT_TRUE(host::SetUserScript(script, &error)) << error;
        host::ClearMessageBoxCalls();
        int rc = QLMRefresh(m_config.get(), m_record->m_lpDM, GetDesktopWindow());
        for (const std::string& failure : host::UserScriptFailures())
            ADD_FAILURE() << failure;
        return rc;
    }
    bool Untouched() const
    {
        const uint8_t* p = reinterpret_cast<const uint8_t*>(m_record->m_lpDM);
        return std::vector<uint8_t>(p, p + sizeof(DEVMODEEX)) == m_entry;
    }
    bool PlacementStored()
    {
        BYTE placement[64];
        DWORD cb = sizeof(placement);
        return QLMGetUserBINARY(QLMGetPrinterName(m_printer->handle()), u"PrinterIPDlg_WindowPos",
                                placement, &cb) == 0 &&
               cb == sizeof(WINDOWPLACEMENT);
    }

    std::unique_ptr<HostPrinter> m_printer;
    std::unique_ptr<TVOPrinterConfiguration> m_config;
    std::unique_ptr<TVODevMode> m_record;
    std::vector<uint8_t> m_entry;
};

} // namespace

// The dialog starts with the port's name in both places; Cancel ends the refresh with 0 and
// the record as it was, and stores no placement.
TEST_F(AddressDialog, CancelGivesUpAndChangesNothing)
{
    Queue(u"IP cancel", u"127.0.0.91");
    EXPECT_EQ(0, Refresh("expect 1351 text 127.0.0.91\n"
                         "expect 1349 text 127.0.0.91\n"
                         "expect 1350 enabled\n"
                         "cancel\n"));
    EXPECT_TRUE(Untouched());
    EXPECT_FALSE(PlacementStored());
    EXPECT_EQ(0, Refresh("")) << "no one answers: the dialog ends as Cancel";
}

// A typed address that reaches the printer completes the refresh; a wrong one brings the
// dialog back, and OK on an empty box tries the last address again.
TEST_F(AddressDialog, TheAddressTypedReachesThePrinter)
{
    auto server = Serve("127.0.0.93");
    Queue(u"IP typed", u"127.0.0.92");
    EXPECT_EQ(1, Refresh("type 1349 127.0.0.94\n"
                         "ok\n"
                         "type 1349\n"
                         "expect 1350 disabled\n"
                         "ok\n"
                         "expect 1349 text 127.0.0.92\n"
                         "type 1349 127.0.0.93\n"
                         "ok\n"));
    EXPECT_EQ(1u, server->Connections());
    EXPECT_EQ(2, m_record->m_lpDM->dmxNumRolls);
    EXPECT_TRUE(PlacementStored());
}

// The test button connects and tells the outcome in a box captioned with the dialog's title;
// the dialog stays open.
TEST_F(AddressDialog, TestTellsWhetherTheAddressAnswers)
{
    auto server = Serve("127.0.0.96");
    Queue(u"IP test", u"127.0.0.95");
    EXPECT_EQ(0, Refresh("click 1350\n"
                         "answer ok\n"
                         "type 1349 127.0.0.96\n"
                         "click 1350\n"
                         "answer ok\n"
                         "cancel\n"));
    auto boxes = host::MessageBoxCalls();
    ASSERT_EQ(2u, boxes.size());
    EXPECT_EQ(UINT(MB_ICONWARNING), boxes[0].type);
    EXPECT_EQ(UINT(MB_ICONINFORMATION), boxes[1].type);
    EXPECT_EQ(boxes[0].caption, boxes[1].caption);
    EXPECT_NE(boxes[0].text, boxes[1].text);
}

// 127 characters fit and the 128th is refused; without permission the fields are locked.
TEST_F(AddressDialog, LimitsAndPermission)
{
    Queue(u"IP limit", u"127.0.0.97");
    const std::string long127(127, '7');
    EXPECT_EQ(0, Refresh("type 1349 " + long127 +
                         "8\n"
                         "expect 1349 text " +
                         long127 +
                         "\n"
                         "cancel\n"));
    // What OK hands back holds all 127 characters.
    std::string error;
    ASSERT_TRUE(host::SetUserScript("type 1349 " + long127 + "\nok\n", &error)) << error;
    TVOPrinterIPDlg dlg(u"127.0.0.97", m_config.get(), m_record->m_lpDM);
    EXPECT_EQ(1, dlg.doModal(GetDesktopWindow()));
    EXPECT_EQ(long127, std::string(dlg.m_szAddress));

    m_config->m_bHasPermission = 0;
    EXPECT_EQ(0, Refresh("expect 1349 disabled\nexpect 1350 disabled\ncancel\n"));
}

// The about dialog shows the resource library's product version and makes one heavy font each
// time it opens, which is never deleted.
TEST(AboutDialog, ShowsTheVersionsAndLeaksOneFontPerOpening)
{
    HostPrinter printer(u"About");
    TVOPrinterConfiguration config(u"Tarvo Plan Output System 2440");
    config.setPrinterHandle(printer.handle());
    TVODevMode record(printer.handle());
    const host::LiveObjectCounts before = host::LiveObjects();
    for (int i = 0; i < 2; ++i) {
        std::string error;
        ASSERT_TRUE(host::SetUserScript("expect 1932 text 12.7.0.0\nok\n", &error)) << error;
        TVOAboutDlg dlg(&config, record.m_lpDM);
        SetLastError(0);
        EXPECT_EQ(1, dlg.doModal(GetDesktopWindow())) << GetLastError();
        EXPECT_TRUE(host::UserScriptFailures().empty());
    }
    EXPECT_EQ(before.fonts + 2, host::LiveObjects().fonts);
}

TEST(AboutDialog, ModelPicturesAndProductVersions)
{
    struct Row
    {
        DWORD model;
        int bitmap;
    } rows[] = {{0, IDB_MODEL_0}, {2, IDB_MODEL_OTHER}, {9, IDB_MODEL_8}, {12, IDB_MODEL_OTHER}};
    for (const Row& row : rows)
        EXPECT_EQ(row.bitmap, QLMModelBitmap(row.model)) << row.model;

    WCHAR buffer[8];
    const std::string installed = host::InstalledDriverFilePath(u"QLMRes.DLL", 3);
    std::u16string path = host::Utf8ToUtf16(installed);
    ASSERT_TRUE(QLMGetProductVersion(path.c_str(), buffer, 8));
    EXPECT_EQ(u"12.7.0.", std::u16string(buffer)) << "cut to the buffer and terminated";
    EXPECT_FALSE(QLMGetProductVersion(u"C:\\no\\such.dll", buffer, 8));
}
