// QLMRefresh against the simulated printer on loopback: what reaches the record from a whole
// conversation, from a capture file, and from each way the printer can fail.
#include "driver/config/tvoconfg.h"
#include "driver/devmode/tvodm.h"
#include "driver/dialogue/pjlgrammar.h"
#include "driver/dialogue/qlmrefresh.h"
#include "pjlsim/pjlsim_support.h"
#include "profile.h"
#include "replies.h"
#include "server.h"
#include "support/hostprinter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using pjlsim_test::Serve;

using pjlsim::Fault;
using pjlsim::FaultMode;

const char16_t kDriver[] = u"Tarvo Plan Output System 2440";

// The parts of the record a refresh writes, in a comparable form.
struct Seen
{
    int rolls = -1;
    bool firmwareChanged = false;
    bool font = false;
    bool stamp = false;
    std::u16string finisherModel;
    DWORD programs = 0;
    bool operator==(const Seen&) const = default;
};

bool ListHas(const WCHAR* list, size_t cch, const std::u16string& name)
{
    for (size_t i = 0; i < cch && list[i];) {
        std::u16string entry;
        while (i < cch && list[i])
            entry += list[i++];
        if (entry == name)
            return true;
        ++i;
    }
    return false;
}

std::u16string Text(const WCHAR* s, size_t cch)
{
    std::u16string out;
    for (size_t i = 0; i < cch && s[i]; ++i)
        out += s[i];
    return out;
}

// Everything of the small profile.
Seen Whole()
{
    return {2, true, true, true, u"F1", 1};
}

int g_addressAsks = 0;
std::vector<std::string> g_addresses; // answered in turn; Cancel when used up

BOOL AskFileCancel(HWND, WCHAR*, DWORD)
{
    return FALSE;
}
BOOL AskAddressListed(LPCWSTR, TVOPrinterConfiguration*, DEVMODEEX*, HWND, char* address,
                      size_t cbAddress)
{
    const int ask = g_addressAsks++;
    if (ask >= static_cast<int>(g_addresses.size()))
        return FALSE;
    const std::string& a = g_addresses[ask];
    std::strncpy(address, a.c_str(), cbAddress - 1);
    return TRUE;
}

class Refresh : public ::testing::Test
{
protected:
    void TearDown() override
    {
        QLMSetRefreshQuestions(QLMDefaultRefreshQuestions());
        host::ClearFilePickerAnswers();
    }

    // A queue whose port is named after address, a default record, and a configuration.
    void Queue(const char* address)
    {
        std::string a(address);
        m_printer =
            std::make_unique<HostPrinter>(u"Plotter", kDriver, std::u16string(a.begin(), a.end()));
        m_config = std::make_unique<TVOPrinterConfiguration>(kDriver);
        m_config->setPrinterHandle(m_printer->handle());
        NewRecord();
    }
    void NewRecord()
    {
        m_record = std::make_unique<TVODevMode>(m_printer->handle());
        ASSERT_NE(nullptr, m_record->m_lpDM);
        m_defaultFirmware = dm()->dmxFirmwareRevision;
        m_entry = Bytes();
    }
    void SetFromFile(BOOL on)
    {
        std::vector<uint8_t> bytes(4);
        std::memcpy(bytes.data(), &on, 4);
        ASSERT_TRUE(host::SetPrinterData(
            u"Plotter", host::DataValue{u"DebugSettings", u"DBG_BidiFromFile", REG_DWORD, bytes}));
    }
    int Run() { return QLMRefresh(m_config.get(), dm(), nullptr); }

    DEVMODEEX* dm() { return m_record->m_lpDM; }
    std::vector<uint8_t> Bytes()
    {
        const uint8_t* p = reinterpret_cast<const uint8_t*>(dm());
        return {p, p + dm()->dmPublic.dmSize + dm()->dmPublic.dmDriverExtra};
    }
    bool Untouched() { return Bytes() == m_entry; }
    Seen Look()
    {
        Seen s;
        s.rolls = dm()->dmxNumRolls;
        s.firmwareChanged = dm()->dmxFirmwareRevision != m_defaultFirmware;
        s.font = ListHas(dm()->dmxFontList, std::size(dm()->dmxFontList), u"HELV");
        s.stamp = ListHas(dm()->dmxRasterStampList, std::size(dm()->dmxRasterStampList), u"DRAFT");
        s.finisherModel = Text(dm()->dmxFinisher.Model, std::size(dm()->dmxFinisher.Model));
        s.programs = dm()->dmxFinisher.numPrograms;
        return s;
    }

    std::unique_ptr<HostPrinter> m_printer;
    std::unique_ptr<TVOPrinterConfiguration> m_config;
    std::unique_ptr<TVODevMode> m_record;
    LONG m_defaultFirmware = 0;
    std::vector<uint8_t> m_entry;
};

void PrintTo(const Seen& s, std::ostream* os)
{
    *os << "{rolls " << s.rolls << ", firmware " << s.firmwareChanged << ", font " << s.font
        << ", stamp " << s.stamp << ", finisher \"" << host::Utf16ToUtf8(s.finisherModel)
        << "\" with " << s.programs << " programs}";
}

TEST_F(Refresh, APrinterOnItsPortNameFillsTheRecordWithoutAskingAnything)
{
    auto server = Serve("127.0.0.41");
    Queue("127.0.0.41");
    g_addressAsks = 0;
    g_addresses = {"127.0.0.41"};
    QLMSetRefreshQuestions({AskAddressListed, AskFileCancel});
    EXPECT_EQ(1, Run());
    EXPECT_EQ(Whole(), Look());
    EXPECT_EQ(0, g_addressAsks);
    EXPECT_EQ(1u, server->Connections()) << "one connection carries all six queries";
}

// The fixture is a Plan 2440's six replies written out by hand; pjlsim answers from the same
// printer's profile. Both roads must end in the same record.
TEST_F(Refresh, AHandWrittenCaptureAndThePrinterGiveTheSameRecord)
{
    const std::string source = QLM_TEST_SOURCE_DIR;
    std::string error;
    auto profile = pjlsim::LoadProfile(source + "/tools/pjlsim/profiles/plan2440.profile", &error);
    ASSERT_TRUE(profile) << error;
    auto server = Serve("127.0.0.42", {}, *profile);
    Queue("127.0.0.42");
    ASSERT_EQ(1, Run());
    const std::vector<uint8_t> fromPrinter = Bytes();
    EXPECT_EQ(3, dm()->dmxNumRolls);
    EXPECT_EQ(TVODevMode::GetRollSizeCode(u"Roll 24in"), dm()->dmxRollSize[1]);
    EXPECT_EQ(TVODevMode::GetMediaTypeCode(u"PRESENTATION_360"), dm()->dmxRollType[1]);
    EXPECT_EQ(TVODevMode::GetRollStatusCode(u"Empty"), dm()->dmxRollStatus[2]);
    EXPECT_EQ(TVODevMode::GetFirmwareRev(u"12.2"), dm()->dmxFirmwareRevision);
    EXPECT_TRUE(ListHas(dm()->dmxFontList, std::size(dm()->dmxFontList), u"COUR"));
    EXPECT_TRUE(
        ListHas(dm()->dmxRasterStampList, std::size(dm()->dmxRasterStampList), u"APPROVED"));
    EXPECT_EQ(3u, dm()->dmxFinisher.numPrograms);
    EXPECT_EQ(u"ANSI_A_WALLET", Text(dm()->dmxFinisher.programs[2].name,
                                     std::size(dm()->dmxFinisher.programs[2].name)));

    // From the file, picked in the open dialog.
    SetFromFile(1);
    NewRecord();
    const std::string capture = source + "/tests/fixtures/pjl/plan2440.pjl";
    host::ClearFilePickerTitles();
    host::QueueFilePickerAnswer(std::u16string(capture.begin(), capture.end()));
    EXPECT_EQ(1, Run());
    EXPECT_EQ(fromPrinter, Bytes());
    EXPECT_EQ(std::vector<std::u16string>{u"pick a pjl file"}, host::FilePickerTitles());
    EXPECT_EQ(1u, server->Connections()) << "a refresh from a file opens no socket";

    // Without a file there is nothing to refresh from: Cancel, no answer at all, or a file
    // that is not there (the dialog refuses it, then the user cancels).
    const std::optional<std::u16string> answers[] = {std::nullopt, u"/nonexistent/reply.pjl"};
    for (const auto& answer : answers) {
        NewRecord();
        host::QueueFilePickerAnswer(answer);
        EXPECT_EQ(0, Run());
        EXPECT_TRUE(Untouched());
    }
    NewRecord();
    EXPECT_EQ(0, Run());
    EXPECT_TRUE(Untouched());
    EXPECT_EQ(1u, server->Connections());
}

TEST_F(Refresh, TheAddressQuestionComesBackUntilAConnectionOrCancel)
{
    auto server = Serve("127.0.0.45");
    Queue("127.0.0.43");
    g_addressAsks = 0;
    g_addresses = {"127.0.0.44", "127.0.0.45"};
    QLMSetRefreshQuestions({AskAddressListed, nullptr});
    EXPECT_EQ(1, Run());
    EXPECT_EQ(2, g_addressAsks);
    EXPECT_EQ(Whole(), Look());

    NewRecord();
    g_addressAsks = 0;
    g_addresses = {"127.0.0.44", "127.0.0.43"};
    EXPECT_EQ(0, Run());
    EXPECT_EQ(3, g_addressAsks) << "two failed answers, then Cancel";
    EXPECT_TRUE(Untouched());
}

TEST_F(Refresh, ARefusingPrinterOrAQueueWithoutPortLeavesTheRecordAlone)
{
    auto server = Serve("127.0.0.46", {{FaultMode::Refuse, ""}});
    Queue("127.0.0.46");
    EXPECT_EQ(0, Run()) << "the address dialog is not there: the question ends as Cancel";
    EXPECT_TRUE(Untouched());

    m_config->setPrinterHandle(nullptr);
    EXPECT_EQ(0, Run());
    EXPECT_TRUE(Untouched());
}

// What a fault in one reply leaves: the replies before it. A reply that is all garbage ends the
// parse, and a reply too big for the buffer leaves no room for those after it. A reply that
// comes a byte at a time is whole, and a printer that hangs up has said nothing.
TEST_F(Refresh, AFaultyReplyKeepsWhatWasParsedBeforeIt)
{
    struct Case
    {
        const char* address;
        Fault fault;
        Seen seen;
    };
    const Case cases[] = {
        {"127.0.0.47", {FaultMode::Garbage, "TVOFONTS"}, {2, true, false, false, u"", 0}},
        {"127.0.0.48", {FaultMode::Reset, "TVOFINISHER"}, {2, true, true, true, u"", 0}},
        {"127.0.0.49", {FaultMode::Big, "TVORASTERSTAMPS"}, {2, true, true, true, u"", 0}},
        {"127.0.0.50", {FaultMode::Garbage, ""}, {0, false, false, false, u"", 0}},
        {"127.0.0.53", {FaultMode::Drip, "ID"}, Whole()},
        {"127.0.0.54", {FaultMode::Drip, "TVOFINISHER"}, Whole()},
        {"127.0.0.55", {FaultMode::Hangup, ""}, {0, false, false, false, u"", 0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.address);
        auto server = Serve(c.address, {c.fault});
        Queue(c.address);
        EXPECT_EQ(1, Run());
        EXPECT_EQ(c.seen, Look());
        m_record.reset();
        m_printer.reset();
        host::RemovePrinter(u"Plotter");
    }
}

// Each costs the socket's 5-second read time-out once.
TEST_F(Refresh, ASilentFontReplyStillLetsTheLaterRepliesThrough)
{
    auto server = Serve("127.0.0.51", {{FaultMode::Silence, "TVOFONTS"}});
    Queue("127.0.0.51");
    EXPECT_EQ(1, Run());
    EXPECT_EQ((Seen{2, true, false, true, u"F1", 1}), Look());
}

TEST_F(Refresh, ALastReplyCutShortKeepsTheEarlierOnes)
{
    auto server = Serve("127.0.0.52", {{FaultMode::Cut, "TVOFINISHER"}});
    Queue("127.0.0.52");
    EXPECT_EQ(1, Run());
    Seen seen = Look();
    EXPECT_EQ(2, seen.rolls);
    EXPECT_TRUE(seen.firmwareChanged);
    EXPECT_TRUE(seen.font);
    EXPECT_TRUE(seen.stamp);
}

} // namespace
