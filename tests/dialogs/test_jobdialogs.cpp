// The job tab's dialogs with what a script cannot give them: damaged records, which must come
// through without a read or write outside the record (the sanitizer build watches), the beep of
// a full label, the label button's font, and the nesting field's exact text limit.
#include "driver/config/tvoconfg.h"
#include "driver/devmode/tvodm.h"
#include "driver/dialogs/tvofinsh.h"
#include "driver/dialogs/tvolabel.h"
#include "driver/dialogs/tvonest.h"
#include "driver/dialogs/tvostamp.h"
#include "resources/qlmres.h"
#include "support/hostprinter.h"

#include "platform/host/hostgdi.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

// Fills a text field to its very end, without a terminator.
template <size_t N> void FillWithout0(WCHAR (&field)[N], WCHAR c)
{
    for (size_t i = 0; i < N; ++i)
        field[i] = c;
}

std::string Id(int id)
{
    return std::to_string(id);
}

class JobDialogs : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_printer = std::make_unique<HostPrinter>(u"Job dialogs");
        m_config = std::make_unique<TVOPrinterConfiguration>(u"Tarvo Plan Output System 2440");
        m_config->setPrinterHandle(m_printer->handle());
        FreshRecord();
    }
    // The queue's default record in a heap block of exactly one record, so that a read past
    // it is caught.
    void FreshRecord()
    {
        TVODevMode defaults(m_printer->handle());
        m_record.reset(new DEVMODEEX);
        memcpy(static_cast<void*>(m_record.get()), defaults.m_lpDM, sizeof(DEVMODEEX));
        host::ClearMessageBoxCalls();
    }
    void TearDown() override { host::ClearUserScript(); }

    // Runs a dialog modally with a person's actions; the script's failures fail the test.
    INT_PTR Run(TVODialog& dlg, const std::string& script)
    {
        std::string error;
        EXPECT_TRUE(host::SetUserScript(script, &error)) << error;
        INT_PTR result = dlg.doModal(GetDesktopWindow());
        for (const std::string& failure : host::UserScriptFailures())
            ADD_FAILURE() << failure;
        return result;
    }
    DEVMODEEX& Record() { return *m_record; }

    std::unique_ptr<HostPrinter> m_printer;
    std::unique_ptr<TVOPrinterConfiguration> m_config;
    std::unique_ptr<DEVMODEEX> m_record;
};

} // namespace

// Records that a printer or another program damaged: counts beyond the finisher block, texts
// and lists that run to their field's end. Each dialog shows what its rules give, OK stores
// values within their fields, and the record's other bytes stay as they were.
TEST_F(JobDialogs, DamagedRecordsComeThroughEveryDialog)
{
    struct Case
    {
        const char* what;
        std::function<void(DEVMODEEX&)> damage;
        std::function<std::unique_ptr<TVODialog>(TVOPrinterConfiguration*, DEVMODEEX*)> make;
        std::string script;
        // The fields OK may change, and what they must hold afterwards.
        std::function<void(const DEVMODEEX&)> check;
    };
    auto finishing = [](TVOPrinterConfiguration* c, DEVMODEEX* d) {
        return std::unique_ptr<TVODialog>(new TVOFinishDlg(c, d));
    };
    const Case cases[] = {
        {"a finisher counting more programs than the block holds, every text unterminated",
         [](DEVMODEEX& d) {
             d.dmxFinisher.numPrograms = 0xFFFFFFFF;
             FillWithout0(d.dmxFinisher.Model, u'M');
             FillWithout0(d.dmxFinisher.Version, u'0');
             for (auto& program : d.dmxFinisher.programs)
                 FillWithout0(program.name, u'P');
             d.dmxFinisher.programs[19].crossFold = 4;
             d.dmxFinishProgram = 19;
         },
         finishing,
         // The block's twenty programs, the last one chosen and kept.
         "expect " + Id(IDC_FINISH_PROGRAM) + " data 19\nexpect " + Id(IDC_FINISH_CROSS_FOLD) +
             " enabled\nok\n",
         [](const DEVMODEEX& d) { EXPECT_EQ(19, d.dmxFinishProgram); }},
        {"a finisher without programs",
         [](DEVMODEEX& d) {
             memset(&d.dmxFinisher, 0, sizeof(d.dmxFinisher));
             d.dmxFinishProgram = 3;
             d.dmxFinishFlags[2] = 0;
         },
         finishing,
         // Program 0 of the empty block: it can do nothing, so cross fold goes off.
         "expect " + Id(IDC_FINISH_CROSS_FOLD) + " disabled\nexpect " + Id(IDC_FINISH_CROSS_FOLD) +
             " unchecked\nok\n",
         [](const DEVMODEEX& d) {
             EXPECT_EQ(0, d.dmxFinishProgram);
             EXPECT_EQ(1u, d.dmxFinishFlags[2]);
         }},
        {"a label whose text, font and the printer's font list fill their fields",
         [](DEVMODEEX& d) {
             FillWithout0(d.dmxLabelText, u'T');
             FillWithout0(d.dmxLabelFont, u'F');
             FillWithout0(d.dmxDefaultFont, u'D');
             FillWithout0(d.dmxFontList, u'L');
         },
         [](TVOPrinterConfiguration* c, DEVMODEEX* d) {
             return std::unique_ptr<TVODialog>(new TVOLabelDlg(c, d));
         },
         "ok\n",
         [](const DEVMODEEX& d) {
             // The edit hands back what its field holds with a terminator.
             EXPECT_EQ(std::u16string(kLABEL_TEXT_CCH - 1, u'T'), std::u16string(d.dmxLabelText));
             // The one name of the unterminated list is chosen, cut to what the field takes.
             EXPECT_EQ(std::u16string(63, u'L'), std::u16string(d.dmxLabelFont));
         }},
        {"a stamp name and the printer's stamp list that fill their fields",
         [](DEVMODEEX& d) {
             FillWithout0(d.dmxStampName, u'S');
             FillWithout0(d.dmxDefaultStamp, u'D');
             FillWithout0(d.dmxRasterStampList, u'R');
         },
         [](TVOPrinterConfiguration* c, DEVMODEEX* d) {
             return std::unique_ptr<TVODialog>(new TVOStampDlg(c, d));
         },
         "ok\n",
         // The name is taken back as far as the list's edit part reads it.
         [](const DEVMODEEX& d) {
             EXPECT_EQ(std::u16string(32, u'S'), std::u16string(d.dmxStampName));
         }},
        {"a nesting margin typed as no number", [](DEVMODEEX& d) { d.dmxPlotNestMargin = 20; },
         [](TVOPrinterConfiguration* c, DEVMODEEX* d) {
             return std::unique_ptr<TVODialog>(new TVOPlotNestDlg(c, d));
         },
         "type " + Id(IDC_PLOTNEST_MARGIN) + " -.+\nok\n",
         [](const DEVMODEEX& d) { EXPECT_EQ(0, d.dmxPlotNestMargin); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        FreshRecord();
        c.damage(Record());
        std::vector<uint8_t> before(reinterpret_cast<uint8_t*>(m_record.get()),
                                    reinterpret_cast<uint8_t*>(m_record.get()) + sizeof(DEVMODEEX));
        std::unique_ptr<TVODialog> dlg = c.make(m_config.get(), m_record.get());
        EXPECT_EQ(1, Run(*dlg, c.script));
        c.check(Record());
        EXPECT_TRUE(host::MessageBoxCalls().empty());
        // The dialogs write only the fields that they show.
        DEVMODEEX expected;
        memcpy(static_cast<void*>(&expected), before.data(), sizeof(expected));
        auto keep = [&](size_t offset, size_t size) {
            memcpy(reinterpret_cast<uint8_t*>(&expected) + offset,
                   reinterpret_cast<const uint8_t*>(m_record.get()) + offset, size);
        };
        keep(offsetof(DEVMODEEX, dmxLabelText),
             offsetof(DEVMODEEX, dmxDefaultFont) - offsetof(DEVMODEEX, dmxLabelText));
        keep(offsetof(DEVMODEEX, dmxStampName),
             offsetof(DEVMODEEX, dmxAccountingEnable) - offsetof(DEVMODEEX, dmxStampName));
        keep(offsetof(DEVMODEEX, dmxFinishOption), sizeof(DWORD));
        EXPECT_EQ(0, memcmp(&expected, m_record.get(), sizeof(expected)))
            << "bytes outside the dialog's fields changed";
    }
}

// A special field that no longer fits beeps and leaves the text as it was; the one before it
// still fits exactly. The button's "Marlett" font lives as long as the dialog.
TEST_F(JobDialogs, AFullLabelBeepsAndItsFontGoesWithTheDialog)
{
    const std::u16string start(kLABEL_TEXT_CCH - 1 - 6, u'x'); // room for one "<DATE>"
    memcpy(Record().dmxLabelText, start.c_str(), (start.size() + 1) * sizeof(WCHAR));
    const host::LiveObjectCounts objects = host::LiveObjects();
    const int beeps = host::MessageBeepCount();

    class FontProbe : public TVOLabelDlg
    {
    public:
        using TVOLabelDlg::TVOLabelDlg;
        INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override
        {
            INT_PTR result = TVOLabelDlg::DialogProc(message, wParam, lParam);
            if (message == WM_INITDIALOG) {
                auto hFont = reinterpret_cast<HFONT>(
                    SendDlgItemMessageW(m_hWnd, IDC_LABEL_FIELDS, WM_GETFONT, 0, 0));
                LOGFONTW font = {};
                if (hFont && GetObjectW(hFont, sizeof(font), &font))
                    m_face = font.lfFaceName;
                m_hFont = hFont;
            }
            return result;
        }
        std::u16string m_face;
        HFONT m_hFont = nullptr;
    } dlg(m_config.get(), m_record.get());

    const std::string text = Id(IDC_LABEL_TEXT);
    EXPECT_EQ(1, Run(dlg, "click " + Id(IDC_LABEL_FIELDS) + "\nmenu " + Id(IDM_FIELD_DATE) +
                              "\nclick " + Id(IDC_LABEL_FIELDS) + "\nmenu " + Id(IDM_FIELD_TIME) +
                              "\nok\n"));
    EXPECT_EQ(beeps + 1, host::MessageBeepCount());
    EXPECT_EQ(start + u"<DATE>", std::u16string(Record().dmxLabelText));
    EXPECT_EQ(u"Marlett", dlg.m_face);
    EXPECT_EQ(host::ImageKind::None, host::DescribeImage(dlg.m_hFont).kind)
        << "the font is freed with the dialog";
    EXPECT_EQ(objects, host::LiveObjects());
}

// The nesting field takes 1053 characters, its own identifier, and no more.
TEST_F(JobDialogs, TheNestingFieldTakesAsManyCharactersAsItsNumber)
{
    TVOPlotNestDlg dlg(m_config.get(), m_record.get());
    const std::string field = Id(IDC_PLOTNEST_MARGIN);
    const std::string typed(IDC_PLOTNEST_MARGIN + 1, '0');
    EXPECT_EQ(2, Run(dlg, "type " + field + " " + typed + "\nexpect " + field + " text " +
                              typed.substr(1) + "\ncancel\n"));
}
