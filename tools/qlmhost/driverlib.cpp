#include "driverlib.h"

#include "cli.h"

#include <algorithm>
#include <cstdio>

namespace {

bool s_bCounting = false;
bool s_bDriverCounted = false;

// Counts the calls of a library just loaded when --counts asked for it.
void CountLoaded(const DriverLibrary& driver)
{
    std::string error;
    if (!s_bCounting)
        return;
    if (StartCallCounts(driver, &error)) {
        // What the tool itself called before the first library is not the driver's.
        if (!s_bDriverCounted)
            TakeCallCounts();
        s_bDriverCounted = true;
    } else
        fprintf(stderr, "%s: %s\n", g_pszToolName, error.c_str());
}

} // namespace

#ifdef _WIN32

// Windows' loader calls DllMain itself.
DriverLibrary::~DriverLibrary()
{
    if (m_handle)
        FreeLibrary(static_cast<HMODULE>(m_handle));
}

bool DriverLibrary::Load(const std::string& path, std::string* error)
{
    std::u16string wide = W(path);
    m_handle = LoadLibraryW(reinterpret_cast<LPCWSTR>(wide.c_str()));
    if (!m_handle) {
        *error = "cannot load the driver library " + path + ": " + Win32Error(GetLastError());
        return false;
    }
    CountLoaded(*this);
    return true;
}

void* DriverLibrary::Export(const char* name) const
{
    return m_handle ? reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(m_handle), name))
                    : nullptr;
}

#else

#include <dlfcn.h>

DriverLibrary::~DriverLibrary()
{
    if (!m_handle)
        return;
    if (auto* dllMain = Entry<BOOL(HINSTANCE, DWORD, LPVOID)>("DllMain"))
        dllMain(reinterpret_cast<HINSTANCE>(m_handle), DLL_PROCESS_DETACH, nullptr);
    dlclose(m_handle);
}

bool DriverLibrary::Load(const std::string& path, std::string* error)
{
    m_handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!m_handle) {
        *error = "cannot load the driver library " + path + ": " + dlerror();
        return false;
    }
    auto* dllMain = Entry<BOOL(HINSTANCE, DWORD, LPVOID)>("DllMain");
    if (!dllMain) {
        *error = path + " has no DllMain: not a driver library";
        return false;
    }
    if (!dllMain(reinterpret_cast<HINSTANCE>(m_handle), DLL_PROCESS_ATTACH, nullptr)) {
        *error = "DllMain of " + path + " refused to load";
        return false;
    }
    CountLoaded(*this);
    return true;
}

void* DriverLibrary::Export(const char* name) const
{
    return m_handle ? dlsym(m_handle, name) : nullptr;
}

#endif

GuardedBuffer::GuardedBuffer(size_t cb) : m_cb(cb), m_bytes(cb + kGuard, 0)
{
    std::fill(m_bytes.begin() + cb, m_bytes.end(), kGuardByte);
}

size_t GuardedBuffer::Overrun() const
{
    for (size_t i = m_bytes.size(); i > m_cb; i--)
        if (m_bytes[i - 1] != kGuardByte)
            return i - m_cb;
    return 0;
}

std::string OverrunMessage(const GuardedBuffer& buffer, const std::string& what)
{
    size_t overrun = buffer.Overrun();
    if (!overrun)
        return std::string();
    return "the driver wrote " + std::to_string(overrun) + " byte" + (overrun == 1 ? "" : "s") +
           " past the end of the " + std::to_string(buffer.size()) +
           "-byte buffer it was given for " + what;
}

CallCountSummary SummarizeCallCounts(const CallCountList& counts)
{
    CallCountSummary summary;
    for (const auto& [name, count] : counts) {
        const bool registry = name.rfind("Reg", 0) == 0;
        std::string& text = registry ? summary.registryText : summary.spoolerText;
        (registry ? summary.registry : summary.spooler) += count;
        text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + name;
    }
    return summary;
}

void CountDriverCalls()
{
    s_bCounting = true;
    TakeCallCounts();
}

void PrintCallCounts()
{
    CallCountSummary summary = SummarizeCallCounts(TakeCallCounts());
    fflush(stdout);
    fprintf(stderr, "%s: %s: %lld spooler (%s), %lld registry (%s)\n", g_pszToolName,
            s_bDriverCounted ? "calls of the driver library"
                             : "calls of the command (no driver library was loaded)",
            summary.spooler, summary.spoolerText.empty() ? "none" : summary.spoolerText.c_str(),
            summary.registry, summary.registryText.empty() ? "none" : summary.registryText.c_str());
}
