// Helpers shared by the host's tests.
#pragma once

#include "platform/host/host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace hosttest {

constexpr DWORD kSentinel = 0xdeadbeef;
constexpr uint8_t kFill = 0xCC;

inline bool AllFill(const uint8_t* bytes, size_t size)
{
    for (size_t i = 0; i < size; ++i) {
        if (bytes[i] != kFill) {
            return false;
        }
    }
    return true;
}

inline std::vector<uint8_t> Bytes(const void* data, size_t size)
{
    const auto* p = static_cast<const uint8_t*>(data);
    return std::vector<uint8_t>(p, p + size);
}

// A DEVMODEW of dmSize bytes followed by extra private bytes, each private byte its index.
inline std::vector<uint8_t> MakeDevMode(WORD size = sizeof(DEVMODEW), WORD extra = 0,
                                        short copies = 1)
{
    std::vector<uint8_t> bytes(size_t(size) + extra, 0);
    DEVMODEW dm{};
    std::memcpy(dm.dmDeviceName, u"QLM Test", sizeof(u"QLM Test"));
    dm.dmSpecVersion = DM_SPECVERSION;
    dm.dmSize = size;
    dm.dmDriverExtra = extra;
    dm.dmFields = DM_COPIES;
    dm.dmCopies = copies;
    std::memcpy(bytes.data(), &dm, std::min<size_t>(size, sizeof dm));
    for (size_t i = 0; i < extra; ++i) {
        bytes[size + i] = uint8_t(i);
    }
    return bytes;
}

inline host::PrinterRecord Printer(const std::u16string& name, std::vector<uint8_t> devMode = {})
{
    host::PrinterRecord p;
    p.name = name;
    p.driverName = u"QLM Driver";
    p.portName = u"IP_10.0.0.9";
    p.comment = u"A comment";
    p.location = u"Room 4";
    p.devMode = std::move(devMode);
    return p;
}

// The value names of a key, in the order the enumeration gives them.
inline std::vector<std::u16string> ValueNames(HKEY key)
{
    std::vector<std::u16string> names;
    WCHAR name[64];
    DWORD cch = 64;
    LSTATUS rc;
    for (DWORD i = 0; (rc = RegEnumValueW(key, i, name, &cch, nullptr, nullptr, nullptr,
                                          nullptr)) == ERROR_SUCCESS;
         ++i, cch = 64)
        names.emplace_back(name, cch);
    EXPECT_EQ(ERROR_NO_MORE_ITEMS, rc);
    return names;
}

inline std::string HomeFile(const std::string& name)
{
    return host::HomeDirectory() + "/" + name;
}

} // namespace hosttest
