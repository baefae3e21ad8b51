// Helpers of the configuration tests: a configuration for any model, the rows of a list, list
// tables written as "id=value" text, and a home without the resource library.
#pragma once

#include "support/hostprinter.h"
#include "support/tracecapture.h"

#include "driver/config/tvoconfg.h"
#include "driver/foundation/wstr.h"
#include "platform/host/host.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace configtest {

using Rows = std::vector<std::pair<DWORD, DWORD>>;

// "5713=257 5714=258" as rows.
inline Rows ParseRows(const std::string& text)
{
    Rows rows;
    std::istringstream in(text);
    std::string token;
    while (in >> token) {
        size_t eq = token.find('=');
        rows.emplace_back(std::stoul(token.substr(0, eq)), std::stoul(token.substr(eq + 1)));
    }
    return rows;
}

// The rows of a list up to its end row.
inline Rows ListRows(TVOList list)
{
    Rows rows;
    for (; list && list->dwResourceId; list++)
        rows.emplace_back(list->dwResourceId, list->dwValue);
    return rows;
}

inline std::string Utf8(const WCHAR* text)
{
    return host::Utf16ToUtf8(text);
}

// A driver name of each model that has one; models 4 and 5 have no alias.
inline const char16_t* DriverNameOf(DWORD model)
{
    static const char16_t* const kNames[kNUM_MODELS] = {
        u"Tarvo Plan Output System 2420",
        u"Pentara 2410",
        u"TVO 2445",
        u"Orvanta 2440",
        nullptr,
        nullptr,
        u"Orvanta Print System 318p",
        u"Tarvo Plan Output System 427dp",
        u"Tarvo Kesmark 3310",
        u"Tarvo 3320 Wide Format",
        u"Tarvo 3344 Wide Format PS",
        u"Tarvo 3320A Wide Format with Lumivar Pentara",
    };
    return model < kNUM_MODELS ? kNames[model] : nullptr;
}

// A configuration of the model. Models without an alias are built as model 7 and initialized
// afresh with their identifier, after what the first initialize took has been given back.
inline std::unique_ptr<TVOPrinterConfiguration> MakeConfig(DWORD model)
{
    const char16_t* name = DriverNameOf(model);
    auto config =
        std::make_unique<TVOPrinterConfiguration>(reinterpret_cast<LPCWSTR>(name ? name : u"x"));
    if (!name) {
        FreeLibrary(config->m_hResources);
        config->m_hResources = nullptr;
        delete[] config->m_pSpareBlock1;
        delete[] config->m_pSpareBlock2;
        config->m_pSpareBlock1 = config->m_pSpareBlock2 = nullptr;
        config->m_bInitialized = FALSE;
        config->initialize(model);
    }
    return config;
}

// Switches to an empty home for the life of the object, so that no resource library is
// installed, and goes back to the test's home at the end.
class EmptyHome
{
public:
    EmptyHome() : m_saved(host::HomeDirectory())
    {
        m_dir = std::filesystem::temp_directory_path() /
                ("qlmtest-empty-" + std::to_string(reinterpret_cast<uintptr_t>(this)));
        std::filesystem::create_directories(m_dir);
        host::SetHomeDirectory(m_dir.string());
    }
    ~EmptyHome()
    {
        host::SetHomeDirectory(m_saved);
        std::error_code ignored;
        std::filesystem::remove_all(m_dir, ignored);
    }
    EmptyHome(const EmptyHome&) = delete;
    EmptyHome& operator=(const EmptyHome&) = delete;

private:
    std::string m_saved;
    std::filesystem::path m_dir;
};

} // namespace configtest
