// The driver library as the spooler loads it: QLMUIDrv.so, its DllMain called on load, its
// exports looked up by name.
#pragma once

#include "platform/win32.h"

#include <string>

class DriverLibrary
{
public:
    ~DriverLibrary();
    // Loads the library and calls DllMain(DLL_PROCESS_ATTACH). False with *error on failure.
    bool Load(const std::string& path, std::string* error);
    void* Export(const char* name) const;
    template <typename F> F* Entry(const char* name) const
    {
        return reinterpret_cast<F*>(Export(name));
    }

private:
    void* m_handle = nullptr;
};
