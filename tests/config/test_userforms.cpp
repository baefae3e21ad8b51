// User forms in the printer data: "UserFormCount" and "UserForm%d", and what a damaged store
// gives.
#include "configtest.h"

#include <cstring>

using namespace configtest;

namespace {

const char16_t kPrinter[] = u"Plotter";
const char16_t kDriverData[] = u"PrinterDriverData";

USERFORM Form(const char16_t* name, DWORD width, DWORD length, DWORD category)
{
    USERFORM form;
    memset(&form, 0, sizeof(form));
    WstrNCopy(form.name, name, 32);
    form.width = width;
    form.length = length;
    form.category = category;
    return form;
}

void Store(const std::u16string& name, DWORD type, const void* data, size_t size)
{
    host::DataValue value;
    value.key = kDriverData;
    value.name = name;
    value.type = type;
    const auto* bytes = static_cast<const uint8_t*>(data);
    value.data.assign(bytes, bytes + size);
    ASSERT_TRUE(host::SetPrinterData(kPrinter, value)) << host::Utf16ToUtf8(name);
}

void StoreCount(DWORD count)
{
    Store(u"UserFormCount", REG_DWORD, &count, sizeof(count));
}

void StoreForm(int index, const USERFORM& form)
{
    Store(u"UserForm" + host::Utf8ToUtf16(std::to_string(index + 1)), REG_BINARY, &form,
          sizeof(form));
}

bool Stored(const std::u16string& name, host::DataValue* value)
{
    return host::GetPrinterData(kPrinter, kDriverData, name, value);
}

std::u16string FormName(int index)
{
    return u"UserForm" + host::Utf8ToUtf16(std::to_string(index + 1));
}

class ConfigUserForms : public ::testing::Test
{
protected:
    HostPrinter printer{kPrinter};
    TVOPrinterConfiguration config{u"TVO 2410"};

    std::unique_ptr<TVOPrinterConfiguration> ReadBack()
    {
        auto other = std::make_unique<TVOPrinterConfiguration>(u"TVO 2410");
        other->setPrinterHandle(printer.handle());
        other->getUserForms(printer.handle());
        return other;
    }
};

TEST_F(ConfigUserForms, FormsGoToTheStoreAndComeBackByteForByte)
{
    config.setPrinterHandle(printer.handle());
    config.m_UserForms[0] = Form(u"Site plan", 5940, 8410, 4);
    config.m_UserForms[1] = Form(u"ABCDEFGHIJKLMNOPQRSTUVWXYZ012345", 9144, 30000, 13);
    config.m_UserFormCount = 2;
    config.setUserForms(printer.handle());

    host::DataValue value;
    ASSERT_TRUE(Stored(u"UserFormCount", &value));
    EXPECT_EQ(value.type, static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(value.data, (std::vector<uint8_t>{2, 0, 0, 0}));
    ASSERT_TRUE(Stored(u"UserForm2", &value));
    EXPECT_EQ(value.type, static_cast<DWORD>(REG_BINARY));
    ASSERT_EQ(value.data.size(), sizeof(USERFORM));
    EXPECT_EQ(memcmp(value.data.data(), &config.m_UserForms[1], sizeof(USERFORM)), 0);
    EXPECT_FALSE(Stored(u"UserForm3", &value));

    auto other = ReadBack();
    ASSERT_EQ(other->m_UserFormCount, 2);
    EXPECT_EQ(memcmp(other->m_UserForms, config.m_UserForms, 2 * sizeof(USERFORM)), 0);

    // Written twice, the same data, and the second time nothing needs writing.
    host::ResetCallCounts();
    config.setUserForms(printer.handle());
    for (const auto& [name, count] : host::CallCounts())
        EXPECT_NE(name, "SetPrinterDataW") << count << " values written again";
    auto again = ReadBack();
    EXPECT_EQ(again->m_UserFormCount, 2);
    EXPECT_EQ(memcmp(again->m_UserForms, config.m_UserForms, 2 * sizeof(USERFORM)), 0);

    // Another sheet changed a form meanwhile: the last to save wins with its whole set.
    StoreForm(1, Form(u"Changed elsewhere", 100, 200, 0));
    config.setUserForms(printer.handle());
    auto last = ReadBack();
    EXPECT_EQ(memcmp(last->m_UserForms, config.m_UserForms, 2 * sizeof(USERFORM)), 0);
}

TEST_F(ConfigUserForms, DeletingFormsEmptiesTheOldValues)
{
    StoreCount(3);
    for (int i = 0; i < 3; i++)
        StoreForm(i, Form(u"Old", 3000 + i, 4000, 0));
    config.m_UserFormCount = 0;
    config.setUserForms(printer.handle());

    host::DataValue value;
    ASSERT_TRUE(Stored(u"UserFormCount", &value));
    EXPECT_EQ(value.data, (std::vector<uint8_t>{0, 0, 0, 0}));
    for (int i = 0; i < 3; i++) {
        ASSERT_TRUE(Stored(FormName(i), &value)) << i;
        EXPECT_TRUE(value.data.empty()) << i;
    }
    EXPECT_EQ(ReadBack()->m_UserFormCount, 0);
}

TEST_F(ConfigUserForms, ADamagedOldCountIsEmptiedToItsEndAndTheNewCountIsCapped)
{
    StoreCount(70);
    config.m_UserFormCount = 80;
    for (int i = 0; i < kMAX_USER_FORMS; i++)
        config.m_UserForms[i] = Form(u"Form", 2000 + i, 3000, 4);
    config.setUserForms(printer.handle());

    EXPECT_EQ(config.m_UserFormCount, kMAX_USER_FORMS);
    host::DataValue value;
    ASSERT_TRUE(Stored(u"UserFormCount", &value));
    EXPECT_EQ(value.data, (std::vector<uint8_t>{64, 0, 0, 0}));
    ASSERT_TRUE(Stored(u"UserForm64", &value));
    EXPECT_EQ(value.data.size(), sizeof(USERFORM));
    // Every value up to the old count is emptied, so none is left behind the new count.
    for (const char16_t* name : {u"UserForm65", u"UserForm70"}) {
        ASSERT_TRUE(Stored(name, &value));
        EXPECT_TRUE(value.data.empty());
    }
    EXPECT_FALSE(Stored(u"UserForm71", &value));
}

TEST_F(ConfigUserForms, StoredCountsAreCutToTheTableAndTo16Bits)
{
    const struct
    {
        DWORD stored;
        int count;
    } kCases[] = {{70, 64}, {64, 64}, {3, 3}, {65536, 0}, {65536 + 2, 2}, {0, 0}};
    for (int i = 0; i < 70; i++)
        StoreForm(i, Form(u"F", 1000 + i, 2000, 0));
    for (const auto& c : kCases) {
        StoreCount(c.stored);
        auto other = ReadBack();
        EXPECT_EQ(other->m_UserFormCount, c.count) << c.stored;
        if (c.count) {
            EXPECT_EQ(other->m_UserForms[c.count - 1].width, 1000u + c.count - 1) << c.stored;
        }
        // Nothing is read behind the count.
        EXPECT_EQ(other->m_UserForms[c.count].width, 0u) << c.stored;
    }
}

TEST_F(ConfigUserForms, AMissingOrUnreadableCountGivesNoFormsAndIsTraced)
{
    SwitchGuard guard;
    g_bTraceTVOConfig = TRUE;
    {
        TraceCapture capture;
        EXPECT_EQ(ReadBack()->m_UserFormCount, 0);
        EXPECT_TRUE(capture.contains("Couldn't get userformcount, dwError=2,")) << capture.text();
    }
    {
        // Eight bytes do not fit the four that are read.
        const uint8_t eight[8] = {5, 0, 0, 0, 0, 0, 0, 0};
        Store(u"UserFormCount", REG_BINARY, eight, sizeof(eight));
        TraceCapture capture;
        EXPECT_EQ(ReadBack()->m_UserFormCount, 0);
        EXPECT_TRUE(capture.contains("Couldn't get userformcount, dwError=234,")) << capture.text();
    }
    // No printer at all.
    TVOPrinterConfiguration none(u"TVO 2410");
    none.getUserForms(nullptr);
    EXPECT_EQ(none.m_UserFormCount, 0);
}

TEST_F(ConfigUserForms, ValuesOfAnotherTypeOrSizeAreTakenAsFarAsTheyGo)
{
    // A two-byte count of another type still counts.
    const uint8_t two[2] = {2, 0};
    Store(u"UserFormCount", REG_SZ, two, sizeof(two));
    // A short record fills the front of the form; a long one does not fit and is left out.
    USERFORM first = Form(u"Short", 1111, 2222, 3);
    Store(u"UserForm1", REG_BINARY, &first, 64 + 4);
    std::vector<uint8_t> tooLong(200, 0x41);
    Store(u"UserForm2", REG_SZ, tooLong.data(), tooLong.size());

    auto other = ReadBack();
    ASSERT_EQ(other->m_UserFormCount, 2);
    EXPECT_EQ(Utf8(other->m_UserForms[0].name), "Short");
    EXPECT_EQ(other->m_UserForms[0].length, 2222u);
    EXPECT_EQ(other->m_UserForms[0].width, 0u);
    EXPECT_EQ(other->m_UserForms[1].name[0], 0);
    EXPECT_EQ(other->m_UserForms[1].width, 0u);

    // Such forms still make paper rows without reading past a record.
    auto dm = std::make_unique<DEVMODEEX>();
    dm->dmxShowPaperTypes = kSHOW_USER_FORMS;
    std::vector<WCHAR> names(3 * kPAPER_NAME_CCH);
    EXPECT_EQ(other->getPaperInfo(dm.get(), names.data(), DC_PAPERNAMES), 3);
    EXPECT_EQ(Utf8(&names[0]), "Short (0.00x8.75in)");
}

} // namespace
