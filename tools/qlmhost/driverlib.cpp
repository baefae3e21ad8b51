#include "driverlib.h"

#include "cli.h"

#include <algorithm>

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
