// What the host's other units (dialogs, menus, bitmaps, version queries) use to reach the
// resources of a module that LoadLibraryW loaded.
#pragma once

#include "hostinternal.h"
#include "peimage.h"

#include <memory>
#include <string>

namespace host::detail {

// The image of a loaded module (one LoadLibraryW not yet freed), or null with the last error
// set: ERROR_RESOURCE_DATA_NOT_FOUND for null (the host's own program has no resources),
// ERROR_INVALID_HANDLE for anything that is not a loaded module.
std::shared_ptr<const PeImage> LoadedImage(HMODULE module);

// The name of a resource type or name as Win32 passes it: MAKEINTRESOURCEW(n), "#n", or text.
ResourceName ResourceNameOf(LPCWSTR name);

// The data of a resource of a loaded module. language is a LANGID, or kAnyLanguage for the
// neutral language, then en-US, then the first present. The bytes are read-only, 4-byte
// aligned, and valid while the module stays loaded. On failure false with the last error set
// as FindResourceW sets it: ERROR_RESOURCE_DATA_NOT_FOUND (no resources at all),
// ERROR_RESOURCE_TYPE_NOT_FOUND, ERROR_RESOURCE_NAME_NOT_FOUND, ERROR_RESOURCE_LANG_NOT_FOUND,
// or the errors of LoadedImage.
bool FindResourceData(HMODULE module, LPCWSTR type, LPCWSTR name, uint32_t language,
                      const uint8_t** data, DWORD* size);

// Why the calling thread's last failed LoadLibraryW refused its file ("" after a success).
std::string LastLoadError();

// How many times a module file has been read and parsed since the process started: a cached
// load does not count.
uint64_t ModuleFileReads();

} // namespace host::detail
