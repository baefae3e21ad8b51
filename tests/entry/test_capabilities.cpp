// DrvDeviceCapabilities as an application calls it: every index on every model a driver name
// can select, the count call agreeing with the filling call, and the AutoCAD indexes.
#include "config/configtest.h"
#include "support/hostprinter.h"
#include "support/tracecapture.h"

#include "driver/config/tvodev.h"
#include "driver/devmode/tvodm.h"
#include "driver/entry/tvouidrv.h"
#include "driver/foundation/wstr.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

struct ModelRow
{
    const char16_t* driver;
    DWORD model;
    WORD numRolls;
    int resolutions;
    int papers; // with every family shown and no user forms
};

// The models a driver name can select; 4 and 5 have no name that leads to them.
const ModelRow kModels[] = {
    {u"Tarvo Plan Output System 2420", 0, 3, 3, 23},
    {u"Tarvo Plan Output System 2410", 1, 2, 3, 23},
    {u"Tarvo Plan Output System 2445", 2, 4, 3, 23},
    {u"Tarvo Plan Output System 2440", 3, 3, 3, 23},
    {u"Tarvo Plan Output System 318p", 6, 4, 3, 19},
    {u"Tarvo Plan Output System 427dp", 7, 3, 3, 23},
    {u"Tarvo 3310 Wide Format", 8, 2, 4, 23},
    {u"Tarvo 3320 Wide Format", 9, 4, 4, 23},
    {u"Tarvo 3344 Wide Format", 10, 2, 4, 23},
    {u"Tarvo 3320A Wide Format with Lumivar Pentara", 11, 4, 4, 23},
    {u"Some Other Plotter", 7, 3, 3, 23},
};

LONG Caps(HANDLE hPrinter, WORD index, void* out = nullptr, DEVMODEW* pdm = nullptr)
{
    TVONTUIDriver driver;
    return static_cast<LONG>(driver.DrvDeviceCapabilities(hPrinter, nullptr, index, out, pdm));
}

// Calls for the count, then fills a buffer of exactly that many elements with a tail that
// shows a write past them; returns the elements.
template <typename T>
std::vector<T> List(HANDLE hPrinter, WORD index, size_t perElement = 1, DEVMODEW* pdm = nullptr)
{
    LONG count = Caps(hPrinter, index, nullptr, pdm);
    EXPECT_GE(count, 0) << index;
    if (count < 0)
        return {};
    std::vector<T> buffer((count + 1) * perElement);
    memset(buffer.data(), 0x5A, buffer.size() * sizeof(T));
    EXPECT_EQ(count, Caps(hPrinter, index, buffer.data(), pdm)) << "count and fill of " << index;
    const uint8_t* tail = reinterpret_cast<const uint8_t*>(&buffer[count * perElement]);
    for (size_t i = 0; i < perElement * sizeof(T); i++)
        EXPECT_EQ(0x5A, tail[i]) << "index " << index << " wrote past its count";
    buffer.resize(count * perElement);
    return buffer;
}

std::string Name(const WCHAR* p, size_t cch)
{
    std::u16string text;
    for (size_t i = 0; i < cch && p[i]; i++)
        text += p[i];
    return host::Utf16ToUtf8(text);
}

TEST(DeviceCapabilities, ConstantAnswersOnEveryModel)
{
    const struct
    {
        WORD index;
        LONG answer;
    } kConstants[] = {
        {DC_FIELDS, 61199},
        {DC_DUPLEX, 0},
        {DC_SIZE, 220},
        {DC_EXTRA, 13264},
        {DC_VERSION, 0x401},
        {DC_DRIVER, 0xC07},
        {DC_ORIENTATION, 90},
        {DC_COPIES, 999},
        {DC_COLLATE, 1},
        {DC_PERSONALITY, 1},
        {DC_STAPLE, 0},
        {DC_COLORDEVICE, 0},
        {DC_TRUETYPE, 1},
        {DC_FILEDEPENDENCIES, 0},
        {DC_BINADJUST, 256},
        {DC_MMINCH, 1},
        {DC_IDSYSPRN, -1},
        {DC_MINEXTENT, (2794 << 16) | 2100},
        {DC_MAXEXTENT, (12192 << 16) | 9144},
        {DC_DATATYPE_PRODUCED, -1},
        {DC_MEDIATYPES, -1},
        {0, -1},
        {DC_NUP, -1},
    };
    for (const ModelRow& model : kModels) {
        HostPrinter printer(u"Q", model.driver);
        for (const auto& row : kConstants) {
            EXPECT_EQ(row.answer, Caps(printer.handle(), row.index))
                << host::Utf16ToUtf8(model.driver) << ", index " << row.index;
        }
        host::RemovePrinter(u"Q");
    }
}

TEST(DeviceCapabilities, ListsAgreeWithTheirCountsOnEveryModel)
{
    for (const ModelRow& model : kModels) {
        SCOPED_TRACE(host::Utf16ToUtf8(model.driver));
        HostPrinter printer(u"Q", model.driver);
        HANDLE h = printer.handle();

        std::vector<WORD> papers = List<WORD>(h, DC_PAPERS);
        ASSERT_EQ(static_cast<size_t>(model.papers), papers.size());
        EXPECT_EQ(257, papers.front());
        EXPECT_EQ(256, papers.back()) << "the custom paper stands last";
        EXPECT_EQ(model.model == 6 ? 274 : 278, papers[papers.size() - 2]);

        std::vector<POINT> sizes = List<POINT>(h, DC_PAPERSIZE);
        ASSERT_EQ(papers.size(), sizes.size());
        EXPECT_EQ(2159, sizes.front().x);
        EXPECT_EQ(2794, sizes.front().y);
        EXPECT_EQ(2159, sizes.back().x) << "the default custom size";
        EXPECT_EQ(2794, sizes.back().y);

        std::vector<WCHAR> names = List<WCHAR>(h, DC_PAPERNAMES, 64);
        ASSERT_EQ(papers.size() * 64, names.size());
        for (size_t i = 0; i < papers.size(); i++) {
            std::string name = Name(&names[i * 64], 64);
            EXPECT_FALSE(name.empty()) << i;
            EXPECT_EQ(std::string::npos, name.find("LoadString Error")) << name;
        }

        std::vector<WORD> bins = List<WORD>(h, DC_BINS);
        std::vector<WORD> expected;
        for (WORD roll = 0; roll < model.numRolls; roll++)
            expected.push_back(257 + roll);
        expected.push_back(DMBIN_MANUAL);
        expected.push_back(DMBIN_AUTO);
        EXPECT_EQ(expected, bins);
        std::vector<WCHAR> binNames = List<WCHAR>(h, DC_BINNAMES, 24);
        EXPECT_EQ(bins.size() * 24, binNames.size());

        std::vector<LONG> resolutions = List<LONG>(h, DC_ENUMRESOLUTIONS, 2);
        ASSERT_EQ(static_cast<size_t>(model.resolutions) * 2, resolutions.size());
        std::vector<LONG> dpi = {200, 200, 300, 300, 400, 400, 600, 600};
        dpi.resize(resolutions.size());
        EXPECT_EQ(dpi, resolutions);

        std::vector<WCHAR> personality = List<WCHAR>(h, DC_PERSONALITY, 32);
        EXPECT_EQ("HP-GL/2", Name(personality.data(), 32));
        host::RemovePrinter(u"Q");
    }
}

// No driver name selects models 4 and 5: their device answers are asked of a device object
// whose configuration was built for them.
TEST(DeviceCapabilities, ModelsWithoutAnAliasAnswerLikeTheirLists)
{
    for (DWORD model : {DWORD(4), DWORD(5)}) {
        SCOPED_TRACE(model);
        HostPrinter printer(u"Q", u"Some Other Plotter");
        TVODevice device;
        device.setDeviceConfiguration(printer.handle());
        delete device.m_pConfig;
        device.m_pConfig = configtest::MakeConfig(model).release();
        ASSERT_EQ(model, device.m_pConfig->m_PrinterModel);
        auto ask = [&](WORD index, void* out) {
            return device.deviceCapabilities(printer.handle(), nullptr, index, out, nullptr);
        };
        LONG papers = ask(DC_PAPERS, nullptr);
        EXPECT_EQ(23, papers);
        std::vector<WORD> codes(papers);
        EXPECT_EQ(papers, ask(DC_PAPERS, codes.data()));
        EXPECT_EQ(256, codes.back());
        std::vector<WORD> bins(ask(DC_BINS, nullptr));
        EXPECT_EQ(static_cast<LONG>(bins.size()), ask(DC_BINS, bins.data()));
        EXPECT_EQ((std::vector<WORD>{257, 258, 259, 4, 7}), bins);
        EXPECT_EQ(3, ask(DC_ENUMRESOLUTIONS, nullptr));
        EXPECT_EQ((12192 << 16) | 9144, ask(DC_MAXEXTENT, nullptr));
        EXPECT_EQ(220, ask(DC_SIZE, nullptr));
        host::RemovePrinter(u"Q");
    }
}

TEST(DeviceCapabilities, CallersRecordDecidesFamiliesRollsAndUnits)
{
    HostPrinter printer(u"Q", u"Tarvo Plan Output System 2410");
    TVODevMode dm;
    DEVMODEW* pdm = &dm.m_lpDM->dmPublic;

    dm.m_lpDM->dmxShowPaperTypes = 0;
    EXPECT_EQ(std::vector<WORD>{256}, List<WORD>(printer.handle(), DC_PAPERS, 1, pdm));
    dm.m_lpDM->dmxShowPaperTypes = 0x02 | 0x08;
    EXPECT_EQ(9u + 5u + 1u, List<WORD>(printer.handle(), DC_PAPERS, 1, pdm).size());

    // A custom plot longer than the public fields can carry keeps its length in the answer.
    dm.m_lpDM->dmxShowPaperTypes = 0;
    dm.m_lpDM->dmxPaperWidth = TVOFixed(9144);
    dm.m_lpDM->dmxPaperLength = TVOFixed(40000);
    std::vector<POINT> sizes = List<POINT>(printer.handle(), DC_PAPERSIZE, 1, pdm);
    ASSERT_EQ(1u, sizes.size());
    EXPECT_EQ(9144, sizes[0].x);
    EXPECT_EQ(40000, sizes[0].y);

    // Model 1 holds two rolls: the record is told so.
    dm.m_lpDM->dmxNumRolls = 6;
    EXPECT_EQ((std::vector<WORD>{257, 258, 4, 7}), List<WORD>(printer.handle(), DC_BINS, 1, pdm));
    EXPECT_EQ(2, dm.m_lpDM->dmxNumRolls);
    dm.m_lpDM->dmxNumRolls = 0;
    EXPECT_EQ((std::vector<WORD>{4, 7}), List<WORD>(printer.handle(), DC_BINS, 1, pdm));

    EXPECT_EQ(1, Caps(printer.handle(), DC_MMINCH, nullptr, pdm));
    dm.m_lpDM->dmxUnits = kDISTANCE_MM;
    EXPECT_EQ(2, Caps(printer.handle(), DC_MMINCH, nullptr, pdm));
    pdm->dmDriverExtra = 100; // another driver's record
    EXPECT_EQ(1, Caps(printer.handle(), DC_MMINCH, nullptr, pdm));
}

TEST(DeviceCapabilities, ShortRecordIsReadNoFurtherThanItReaches)
{
    HostPrinter printer(u"Q");
    // A bare public part in a buffer of exactly its size: a read past it is a sanitizer error.
    std::vector<uint8_t> bytes(sizeof(DEVMODEW), 0);
    DEVMODEW* pdm = reinterpret_cast<DEVMODEW*>(bytes.data());
    pdm->dmSize = sizeof(DEVMODEW);
    EXPECT_EQ(std::vector<WORD>{256}, List<WORD>(printer.handle(), DC_PAPERS, 1, pdm))
        << "nothing shown but the custom paper";
    EXPECT_EQ((std::vector<WORD>{4, 7}), List<WORD>(printer.handle(), DC_BINS, 1, pdm));
    EXPECT_EQ(61199, Caps(printer.handle(), DC_FIELDS, nullptr, pdm));
    EXPECT_EQ(1, Caps(printer.handle(), DC_MMINCH, nullptr, pdm));
}

TEST(DeviceCapabilities, UserFormsStandBeforeTheCustomPaper)
{
    HostPrinter printer(u"Q", u"Tarvo Plan Output System 318p");
    struct
    {
        const char16_t* name;
        DWORD length, width;
    } forms[] = {{u"Banner", 30000, 9144}, {u"Poster", 10000, 7000}};
    DWORD count = 2;
    SetPrinterDataW(printer.handle(), const_cast<LPWSTR>(u"UserFormCount"), REG_DWORD,
                    reinterpret_cast<LPBYTE>(&count), sizeof(count));
    for (int i = 0; i < 2; i++) {
        USERFORM form{};
        WstrCopy(form.name, 32, reinterpret_cast<const WCHAR*>(forms[i].name));
        form.length = forms[i].length;
        form.width = forms[i].width;
        WCHAR valueName[16];
        WstrPrintf(valueName, 16, TEXT("UserForm%d"), i + 1);
        SetPrinterDataW(printer.handle(), valueName, REG_BINARY, reinterpret_cast<LPBYTE>(&form),
                        sizeof(form));
    }
    std::vector<WORD> papers = List<WORD>(printer.handle(), DC_PAPERS);
    ASSERT_EQ(21u, papers.size());
    EXPECT_EQ(274, papers[17]);
    EXPECT_EQ(281, papers[18]);
    EXPECT_EQ(282, papers[19]);
    EXPECT_EQ(256, papers[20]);
    std::vector<POINT> sizes = List<POINT>(printer.handle(), DC_PAPERSIZE);
    EXPECT_EQ(9144, sizes[18].x);
    EXPECT_EQ(30000, sizes[18].y);
    std::vector<WCHAR> names = List<WCHAR>(printer.handle(), DC_PAPERNAMES, 64);
    EXPECT_EQ("Banner (36.00x118.11in)", Name(&names[18 * 64], 64));
}

// HKLM\SOFTWARE\Autodesk\Hardcopy with one value.
void SetHardcopyValue(DWORD type, const void* data, DWORD cb)
{
    HKEY hKey = nullptr;
    ASSERT_EQ(ERROR_SUCCESS,
              RegCreateKeyExW(HKEY_LOCAL_MACHINE, TEXT("SOFTWARE\\Autodesk\\Hardcopy"), 0, nullptr,
                              0, KEY_ALL_ACCESS, nullptr, &hKey, nullptr));
    ASSERT_EQ(ERROR_SUCCESS,
              RegSetValueExW(hKey, TEXT("Version"), 0, type, static_cast<const BYTE*>(data), cb));
    RegCloseKey(hKey);
}

TEST(DeviceCapabilities, AutoCADGetsTheDriversOwnDescriptionWhenItIsNewEnough)
{
    SwitchGuard guard;
    HostPrinter printer(u"Q");
    char out[40];
    memset(out, 0x5A, sizeof(out));
    EXPECT_EQ(-1, Caps(printer.handle(), DC_IDSYSPRN, out)) << "no AutoCAD";

    DWORD version = 7;
    SetHardcopyValue(REG_DWORD, &version, sizeof(version));
    EXPECT_EQ(-1, Caps(printer.handle(), DC_IDSYSPRN, nullptr)) << "nowhere to write";
    EXPECT_EQ(34, Caps(printer.handle(), DC_IDSYSPRN, out));
    EXPECT_STREQ("IPTVOgdi7", out);
    for (int i = 9; i < 34; i++)
        EXPECT_EQ(0, out[i]) << i;
    EXPECT_EQ(0x5A, out[34]);

    DWORD on = 1;
    SetPrinterDataExW(printer.handle(), TEXT("DebugSettings"), TEXT("DontBeOptimized_UI"),
                      REG_DWORD, reinterpret_cast<LPBYTE>(&on), sizeof(on));
    EXPECT_EQ(-1, Caps(printer.handle(), DC_IDSYSPRN, out)) << "the switch sends AutoCAD away";
}

TEST(DeviceCapabilities, AutoCADTooOldOrUnreadableIsRefused)
{
    const struct
    {
        const char* name;
        DWORD type;
        std::vector<uint8_t> data;
    } rows[] = {
        {"version 6", REG_DWORD, {6, 0, 0, 0}},
        {"a text longer than four bytes", REG_SZ, {'1', 0, '8', 0, 0, 0}},
        {"a first byte of 200 is new enough", REG_BINARY, {200}},
    };
    for (const auto& row : rows) {
        host::OpenStore(":memory:");
        HostPrinter printer(u"Q");
        SetHardcopyValue(row.type, row.data.data(), static_cast<DWORD>(row.data.size()));
        char out[34];
        LONG expected = row.data[0] >= 7 && row.data.size() <= 4 ? 34 : -1;
        EXPECT_EQ(expected, Caps(printer.handle(), DC_IDSYSPRN, out)) << row.name;
    }
}

TEST(DeviceCapabilities, FileDependenciesWriteNothing)
{
    HostPrinter printer(u"Q");
    WCHAR out[64];
    out[0] = 0x1234;
    EXPECT_EQ(0, Caps(printer.handle(), DC_FILEDEPENDENCIES));
    EXPECT_EQ(-1, Caps(printer.handle(), DC_FILEDEPENDENCIES, out));
    EXPECT_EQ(0x1234, out[0]);
}

TEST(DeviceCapabilities, UnknownIndexIsTraced)
{
    SwitchGuard guard;
    g_bTraceTVODevice = 1;
    HostPrinter printer(u"Q");
    TraceCapture trace;
    EXPECT_EQ(-1, Caps(printer.handle(), DC_MEDIATYPENAMES));
    EXPECT_TRUE(trace.contains("Out DeviceCapabilities Unknown 34"));
}

} // namespace
