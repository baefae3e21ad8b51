#include "driverlib.h"

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
