// The generic conversion of records between sizes and versions.
#include "driver/devmode/devmodeex.h"
#include "driver/devmode/tvodm.h"
#include "driver/devmode/tvodm_convert.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

// A record of the given shape whose every byte behind the header is `fill`.
std::vector<uint8_t> Record(WORD dmSize, WORD dmDriverExtra, uint8_t fill,
                            WORD specVersion = 0x0401)
{
    std::vector<uint8_t> bytes(size_t(dmSize) + dmDriverExtra + 16, fill);
    DEVMODEW* pdm = reinterpret_cast<DEVMODEW*>(bytes.data());
    pdm->dmSpecVersion = specVersion;
    pdm->dmDriverVersion = 0x0C07;
    pdm->dmSize = dmSize;
    pdm->dmDriverExtra = dmDriverExtra;
    return bytes;
}

DEVMODEW* Dm(std::vector<uint8_t>& bytes)
{
    return reinterpret_cast<DEVMODEW*>(bytes.data());
}

TEST(CheckDevmodeVersion, SizeDecidesOverWhatTheRecordSays)
{
    const struct
    {
        WORD dmSize;
        WORD specVersion;
        WORD expected;
    } rows[] = {{188, 0x0401, 0x0320}, {212, 0x0320, 0x0400}, {220, 0x0320, 0x0401},
                {156, 0x0300, 0x0300}, {230, 0x0402, 0x0402}, {100, 0, 0}};
    for (const auto& row : rows) {
        std::vector<uint8_t> r = Record(row.dmSize, 0, 0, row.specVersion);
        EXPECT_EQ(row.expected, CheckDevmodeVersion(Dm(r))) << row.dmSize;
    }
}

TEST(ConvertDevmode, CopiesTheShorterOfEachHalfAndKeepsTheTargetsShape)
{
    std::vector<uint8_t> in = Record(220, kDEVMODEEX1_DRIVER_EXTRA, 0xAB);
    std::vector<uint8_t> out = Record(220, kDEVMODEEX_DRIVER_EXTRA, 0x11);
    Dm(out)->dmDriverVersion = 0x0C00;
    EXPECT_EQ(220 + 3032, ConvertDevmode(Dm(in), Dm(out)));
    EXPECT_EQ(0x0C00, Dm(out)->dmDriverVersion);
    EXPECT_EQ(kDEVMODEEX_DRIVER_EXTRA, Dm(out)->dmDriverExtra);
    EXPECT_EQ(0xAB, out[220 + 3031]);
    EXPECT_EQ(0x11, out[220 + 3032]) << "the rest of the target stays";

    // And back: the private part is cut to the target's room.
    std::vector<uint8_t> small = Record(220, kDEVMODEEX1_DRIVER_EXTRA, 0x22);
    std::vector<uint8_t> big = Record(220, kDEVMODEEX_DRIVER_EXTRA, 0x33);
    EXPECT_EQ(220 + 3032, ConvertDevmode(Dm(big), Dm(small)));
    EXPECT_EQ(0x33, small[220 + 3031]);
    EXPECT_EQ(0x22, small[220 + 3032]) << "nothing is written behind the target's record";
}

TEST(ConvertDevmode, MissingRecordOrUnknownVersionIsRefused)
{
    std::vector<uint8_t> good = Record(220, 0, 0);
    std::vector<uint8_t> unknown = Record(100, 0, 0, 0);
    EXPECT_EQ(-1, ConvertDevmode(nullptr, Dm(good)));
    EXPECT_EQ(-1, ConvertDevmode(Dm(good), nullptr));
    EXPECT_EQ(-1, ConvertDevmode(Dm(unknown), Dm(good)));
    EXPECT_EQ(-1, ConvertDevmode(Dm(good), Dm(unknown)));
}

// One call of the common routine, with the last error set to a sentinel first.
struct Call
{
    LONG result;
    LONG cbNeeded;
    DWORD lastError;
};

Call Convert(DEVMODEW* in, DEVMODEW* out, LONG cbNeeded, DWORD fMode, bool bNullNeeded = false)
{
    SetLastError(0xDEADBEEF);
    Call call{};
    call.cbNeeded = cbNeeded;
    call.result = CommonDrvConvertDevMode(
        TEXT("Plan"), in, out, bNullNeeded ? nullptr : &call.cbNeeded, fMode, &g_DriverVersionInfo);
    call.lastError = GetLastError();
    return call;
}

TEST(CommonDrvConvertDevMode, ModesAndTheirAnswers)
{
    std::vector<uint8_t> in = Record(220, kDEVMODEEX1_DRIVER_EXTRA, 0x44);
    std::vector<uint8_t> out = Record(220, kDEVMODEEX_DRIVER_EXTRA, 0);
    Call call = Convert(Dm(in), Dm(out), 13484, CDM_CONVERT);
    EXPECT_EQ(CDM_RESULT_TRUE, call.result);
    EXPECT_EQ(13484, call.cbNeeded);
    EXPECT_EQ(0xDEADBEEFu, call.lastError) << "success leaves the last error alone";

    call = Convert(Dm(in), Dm(out), 13483, CDM_CONVERT);
    EXPECT_EQ(CDM_RESULT_FALSE, call.result);
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), call.lastError);

    call = Convert(nullptr, Dm(out), 13484, CDM_CONVERT);
    EXPECT_EQ(CDM_RESULT_FALSE, call.result);
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), call.lastError);

    call = Convert(Dm(in), Dm(out), 13484, CDM_CONVERT, true);
    EXPECT_EQ(CDM_RESULT_FALSE, call.result);
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), call.lastError);

    call = Convert(Dm(in), Dm(out), 100, CDM_DRIVER_DEFAULT);
    EXPECT_EQ(CDM_RESULT_FALSE, call.result);
    EXPECT_EQ(13484, call.cbNeeded);
    EXPECT_EQ(static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER), call.lastError);

    call = Convert(Dm(in), nullptr, 20000, CDM_DRIVER_DEFAULT);
    EXPECT_EQ(CDM_RESULT_FALSE, call.result);
    EXPECT_EQ(13484, call.cbNeeded);

    call = Convert(Dm(in), Dm(out), 13484, CDM_DRIVER_DEFAULT);
    EXPECT_EQ(CDM_RESULT_NOT_HANDLED, call.result);
    EXPECT_EQ(CDM_RESULT_NOT_HANDLED, Convert(Dm(in), Dm(out), 13484, 3).result);
}

TEST(CommonDrvConvertDevMode, ConvertStampsTheTargetsVersionBySize)
{
    std::vector<uint8_t> in = Record(220, 0, 0x55);
    std::vector<uint8_t> out = Record(188, 0, 0, 0x0401);
    Call call = Convert(Dm(in), Dm(out), 188, CDM_CONVERT);
    EXPECT_EQ(CDM_RESULT_TRUE, call.result);
    EXPECT_EQ(0x0320, Dm(out)->dmSpecVersion);
    EXPECT_EQ(188, Dm(out)->dmSize);
}

TEST(CommonDrvConvertDevMode, Convert351GivesABarePublicPart)
{
    std::vector<uint8_t> in = Record(220, kDEVMODEEX_DRIVER_EXTRA, 0x66);
    std::vector<uint8_t> out = Record(220, 0, 0);
    Call call = Convert(Dm(in), Dm(out), 100, CDM_CONVERT351);
    EXPECT_EQ(CDM_RESULT_FALSE, call.result);
    EXPECT_EQ(188, call.cbNeeded);
    EXPECT_EQ(static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER), call.lastError);

    call = Convert(Dm(in), Dm(out), 188, CDM_CONVERT351);
    EXPECT_EQ(CDM_RESULT_TRUE, call.result);
    EXPECT_EQ(188, call.cbNeeded);
    EXPECT_EQ(0x0320, Dm(out)->dmSpecVersion);
    EXPECT_EQ(0, Dm(out)->dmDriverVersion);
    EXPECT_EQ(0, Dm(out)->dmDriverExtra);
    EXPECT_EQ(0x66, out[187]);
    EXPECT_EQ(0, out[188]);
}

} // namespace
