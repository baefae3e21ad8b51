// Modules: LoadLibraryW and FreeLibrary over PE files read for their resources, the resource
// functions of kernel32, and LoadStringW.
//
// The driver loads its resource library around nearly every string it shows, so parsed images
// stay cached by host path after their last FreeLibrary. A cached image is used again while the
// file's identity, size and times are unchanged; a changed file is read afresh under a new
// handle, and a handle still loaded keeps the image it was given, as a mapped image on Windows
// does. A handle whose count went to zero answers nothing until LoadLibraryW brings the same
// image back under it. Handles are keys of the module table, never addresses: a made-up or
// stale one is refused, not followed.
#include "modules.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <unordered_map>

namespace host::detail {

namespace {

// Larger files are refused before they are read; resource libraries are far smaller.
constexpr uint64_t kMaxModuleFileSize = uint64_t(256) << 20;
// Images kept for files that no one has loaded right now.
constexpr size_t kMaxUnusedImages = 16;
// Module handles are 64 KiB apart like image bases, in a range the handle table never reaches.
constexpr uintptr_t kFirstModuleHandle = uintptr_t(0x7ff600000000);
constexpr uintptr_t kModuleHandleStep = 0x10000;

// What tells one version of a file from another without reading it.
struct FileStamp
{
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    int64_t modifiedSec = 0, modifiedNsec = 0;
    int64_t changedSec = 0, changedNsec = 0;

    static FileStamp Of(const struct stat& st)
    {
        return {st.st_dev,          st.st_ino,         st.st_size,        st.st_mtim.tv_sec,
                st.st_mtim.tv_nsec, st.st_ctim.tv_sec, st.st_ctim.tv_nsec};
    }
    bool operator==(const FileStamp&) const = default;
};

struct Module
{
    uintptr_t handle = 0;
    std::string path;
    FileStamp stamp;
    std::shared_ptr<const PeImage> image;
    uint64_t refs = 0;
    bool current = true; // the image served for its path; false once the file changed
    uint64_t lastUsed = 0;
};

struct ModuleTable
{
    std::mutex mutex;
    std::unordered_map<uintptr_t, std::shared_ptr<Module>> byHandle;
    std::unordered_map<std::string, std::shared_ptr<Module>> byPath; // current modules only
    uintptr_t next = kFirstModuleHandle;
    uint64_t clock = 0;
    uint64_t reads = 0;

    // Drops a module that is neither loaded nor the current image of its path. Both take the
    // module by value: the caller's pointer may live in the map entry that is erased.
    void DropIfDead(std::shared_ptr<Module> m)
    {
        if (m->refs == 0 && !m->current) {
            byHandle.erase(m->handle);
        }
    }

    // Takes the module out of the path index; it lives on while loaded.
    void Retire(std::shared_ptr<Module> m)
    {
        if (m->current) {
            m->current = false;
            byPath.erase(m->path);
        }
        DropIfDead(m);
    }

    void EvictUnused()
    {
        for (;;) {
            std::shared_ptr<Module> oldest;
            size_t unused = 0;
            for (auto& [path, m] : byPath) {
                if (m->refs == 0) {
                    ++unused;
                    if (!oldest || m->lastUsed < oldest->lastUsed) {
                        oldest = m;
                    }
                }
            }
            if (unused <= kMaxUnusedImages) {
                return;
            }
            Retire(oldest);
        }
    }
};

ModuleTable& Table()
{
    static auto* table = new ModuleTable; // outlives static destructors that free libraries
    return *table;
}

thread_local std::string t_lastLoadError;

bool DirectoryExists(const std::string& path)
{
    struct stat st
    {
    };
    return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// The code Windows gives when it cannot open the file.
DWORD OpenError(int error, const std::string& path)
{
    switch (error) {
    case ENOENT: {
        size_t slash = path.find_last_of('/');
        std::string parent = slash == std::string::npos ? "." : path.substr(0, slash ? slash : 1);
        return DirectoryExists(parent) ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
    }
    case ENOTDIR:
    case ELOOP:
        return ERROR_PATH_NOT_FOUND;
    case ENAMETOOLONG:
        return ERROR_FILENAME_EXCED_RANGE;
    case ENOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    default:
        return ERROR_ACCESS_DENIED;
    }
}

// Reads and parses the file. On failure the Win32 code and the reason.
std::shared_ptr<const PeImage> ReadImage(const std::string& path, FileStamp* stamp, DWORD* code,
                                         std::string* reason)
{
    // Non-blocking, so that a FIFO in the way cannot stall the open; refused below.
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        *code = OpenError(errno, path);
        *reason = "cannot open " + path;
        return nullptr;
    }
    struct stat st
    {
    };
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        *code = ERROR_ACCESS_DENIED;
        *reason = path + " is not a regular file";
        return nullptr;
    }
    if (uint64_t(st.st_size) > kMaxModuleFileSize) {
        ::close(fd);
        *code = ERROR_NOT_ENOUGH_MEMORY;
        *reason = path + " is larger than the host loads";
        return nullptr;
    }
    *stamp = FileStamp::Of(st);
    std::vector<uint8_t> bytes(size_t(st.st_size));
    size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = ::read(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            break; // the file shrank or failed: parse what is there; its stamp differs next time
        }
        done += size_t(n);
    }
    ::close(fd);
    bytes.resize(done);

    std::string why;
    std::shared_ptr<const PeImage> image = PeImage::Parse(std::move(bytes), &why);
    if (!image) {
        *code = ERROR_BAD_EXE_FORMAT;
        *reason = path + ": " + why;
        return nullptr;
    }
    return image;
}

std::shared_ptr<Module> LoadedModule(HMODULE module)
{
    ModuleTable& t = Table();
    std::lock_guard lock(t.mutex);
    auto it = t.byHandle.find(reinterpret_cast<uintptr_t>(module));
    if (it == t.byHandle.end() || it->second->refs == 0) {
        return nullptr;
    }
    return it->second;
}

// The entry a HRSRC names, when it is one of the image's; never read before that is known.
const ResourceEntry* EntryOf(const PeImage& image, HRSRC resource)
{
    const auto& entries = image.Resources();
    if (entries.empty()) {
        return nullptr;
    }
    uintptr_t first = reinterpret_cast<uintptr_t>(entries.data());
    uintptr_t p = reinterpret_cast<uintptr_t>(resource);
    if (p < first || (p - first) % sizeof(ResourceEntry) != 0 ||
        (p - first) / sizeof(ResourceEntry) >= entries.size()) {
        return nullptr;
    }
    return &entries[(p - first) / sizeof(ResourceEntry)];
}

bool FindEntry(HMODULE module, LPCWSTR type, LPCWSTR name, uint32_t language,
               std::shared_ptr<const PeImage>* image, const ResourceEntry** entry)
{
    *image = LoadedImage(module);
    if (!*image) {
        return false;
    }
    switch ((*image)->Find(ResourceNameOf(type), ResourceNameOf(name), language, entry)) {
    case ResourceLookup::Found:
        return true;
    case ResourceLookup::NoResourceSection:
        SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
        break;
    case ResourceLookup::NoType:
        SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
        break;
    case ResourceLookup::NoName:
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        break;
    case ResourceLookup::NoLanguage:
        SetLastError(ERROR_RESOURCE_LANG_NOT_FOUND);
        break;
    }
    return false;
}

} // namespace

std::shared_ptr<const PeImage> LoadedImage(HMODULE module)
{
    if (!module) {
        SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
        return nullptr;
    }
    auto m = LoadedModule(module);
    if (!m) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return m->image;
}

ResourceName ResourceNameOf(LPCWSTR name)
{
    if (IS_INTRESOURCE(name)) {
        return ResourceName::Number(LOWORD(name));
    }
    std::u16string text = FromW(name);
    // "#123" names resource 123, as the resource functions of Windows read it.
    if (text.size() > 1 && text[0] == u'#') {
        uint32_t value = 0;
        bool digits = true;
        for (size_t i = 1; i < text.size() && digits; ++i) {
            digits = text[i] >= u'0' && text[i] <= u'9';
            value = value * 10 + (text[i] - u'0');
            digits = digits && value <= 0xffff;
        }
        if (digits) {
            return ResourceName::Number(uint16_t(value));
        }
    }
    return ResourceName::String(std::move(text));
}

bool FindResourceData(HMODULE module, LPCWSTR type, LPCWSTR name, uint32_t language,
                      const uint8_t** data, DWORD* size)
{
    std::shared_ptr<const PeImage> image;
    const ResourceEntry* entry = nullptr;
    if (!FindEntry(module, type, name, language, &image, &entry)) {
        return false;
    }
    *data = entry->data;
    *size = entry->size;
    return true;
}

std::string LastLoadError()
{
    return t_lastLoadError;
}

uint64_t ModuleFileReads()
{
    ModuleTable& t = Table();
    std::lock_guard lock(t.mutex);
    return t.reads;
}

size_t LoadedModuleCount()
{
    ModuleTable& t = Table();
    std::lock_guard lock(t.mutex);
    size_t count = 0;
    for (const auto& [handle, m] : t.byHandle)
        count += m->refs > 0;
    return count;
}

} // namespace host::detail

using namespace host::detail;

extern "C" {

// The module of the PE file at the Windows path, or NULL with the last error:
// ERROR_FILE_NOT_FOUND or ERROR_PATH_NOT_FOUND for a missing file or directory,
// ERROR_BAD_EXE_FORMAT for a file that is not a well-formed PE32 or PE32+ file (the reason is
// written to standard error when QLMHOST_TRACE is set), ERROR_ACCESS_DENIED for a directory
// or an unreadable file, ERROR_INVALID_PARAMETER for a null or empty path. No code of the file
// runs. Loading the same unchanged file again gives the same handle and one more reference.
HMODULE WINAPI LoadLibraryW(LPCWSTR lpLibFileName)
{
    if (!lpLibFileName || !*lpLibFileName) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const std::string path = host::MapWindowsPath(FromW(lpLibFileName));
    ModuleTable& t = Table();

    struct stat st
    {
    };
    if (::stat(path.c_str(), &st) != 0) {
        DWORD code = OpenError(errno, path);
        std::lock_guard lock(t.mutex);
        if (auto it = t.byPath.find(path); it != t.byPath.end()) {
            t.Retire(it->second); // the file is gone: its image is of no further use
        }
        t_lastLoadError = "cannot find " + path;
        SetLastError(code);
        return nullptr;
    }
    {
        std::lock_guard lock(t.mutex);
        auto it = t.byPath.find(path);
        if (it != t.byPath.end() && it->second->stamp == FileStamp::Of(st)) {
            Module& m = *it->second;
            ++m.refs;
            m.lastUsed = ++t.clock;
            t_lastLoadError.clear();
            return reinterpret_cast<HMODULE>(m.handle);
        }
    }

    // Read outside the lock: other threads go on using their modules meanwhile.
    FileStamp stamp;
    DWORD code = ERROR_SUCCESS;
    std::string reason;
    std::shared_ptr<const PeImage> image = ReadImage(path, &stamp, &code, &reason);

    std::lock_guard lock(t.mutex);
    ++t.reads;
    if (!image) {
        t_lastLoadError = reason;
        if (code == ERROR_BAD_EXE_FORMAT && std::getenv("QLMHOST_TRACE")) {
            std::fprintf(stderr, "LoadLibraryW: %s\n", reason.c_str());
        }
        SetLastError(code);
        return nullptr;
    }
    t_lastLoadError.clear();
    auto it = t.byPath.find(path);
    if (it != t.byPath.end()) {
        if (it->second->stamp == stamp) { // another thread read the same file meanwhile
            Module& m = *it->second;
            ++m.refs;
            m.lastUsed = ++t.clock;
            return reinterpret_cast<HMODULE>(m.handle);
        }
        t.Retire(it->second);
    }
    auto m = std::make_shared<Module>();
    m->handle = t.next;
    t.next += kModuleHandleStep;
    m->path = path;
    m->stamp = stamp;
    m->image = std::move(image);
    m->refs = 1;
    m->lastUsed = ++t.clock;
    t.byHandle.emplace(m->handle, m);
    t.byPath.emplace(path, m);
    t.EvictUnused();
    return reinterpret_cast<HMODULE>(m->handle);
}

// TRUE after dropping one reference. A handle that is not loaded (never was, or freed as often
// as it was loaded) gives FALSE with ERROR_INVALID_HANDLE.
BOOL WINAPI FreeLibrary(HMODULE hLibModule)
{
    ModuleTable& t = Table();
    std::lock_guard lock(t.mutex);
    auto it = t.byHandle.find(reinterpret_cast<uintptr_t>(hLibModule));
    if (it == t.byHandle.end() || it->second->refs == 0) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    auto m = it->second;
    if (--m->refs == 0) {
        t.DropIfDead(m);
        t.EvictUnused();
    }
    return TRUE;
}

// The entry of the resource, or NULL with the last error of host::detail::FindResourceData.
// lpName and lpType are MAKEINTRESOURCEW numbers, "#n" or names (compared without ASCII case).
// The language is the neutral one, else en-US, else the first the module lists.
HRSRC WINAPI FindResourceW(HMODULE hModule, LPCWSTR lpName, LPCWSTR lpType)
{
    std::shared_ptr<const PeImage> image;
    const ResourceEntry* entry = nullptr;
    if (!FindEntry(hModule, lpType, lpName, kAnyLanguage, &image, &entry)) {
        return nullptr;
    }
    return reinterpret_cast<HRSRC>(const_cast<ResourceEntry*>(entry));
}

// As FindResourceW in one language; LANG_NEUTRAL/SUBLANG_NEUTRAL (0) asks for the default
// choice. Another language finds that language only, else ERROR_RESOURCE_LANG_NOT_FOUND.
HRSRC WINAPI FindResourceExW(HMODULE hModule, LPCWSTR lpType, LPCWSTR lpName, WORD wLanguage)
{
    std::shared_ptr<const PeImage> image;
    const ResourceEntry* entry = nullptr;
    uint32_t language = wLanguage == 0 ? kAnyLanguage : wLanguage;
    if (!FindEntry(hModule, lpType, lpName, language, &image, &entry)) {
        return nullptr;
    }
    return reinterpret_cast<HRSRC>(const_cast<ResourceEntry*>(entry));
}

// The read-only data of a resource FindResourceW found in the same module; NULL with
// ERROR_INVALID_HANDLE for a resource handle that is not one of the module's.
HGLOBAL WINAPI LoadResource(HMODULE hModule, HRSRC hResInfo)
{
    auto image = LoadedImage(hModule);
    if (!image) {
        return nullptr;
    }
    const ResourceEntry* entry = EntryOf(*image, hResInfo);
    if (!entry) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return const_cast<uint8_t*>(entry->data);
}

// The data itself: what LoadResource gives is already its address.
LPVOID WINAPI LockResource(HGLOBAL hResData)
{
    return hResData;
}

// The size in bytes, or 0 with the last error as for LoadResource.
DWORD WINAPI SizeofResource(HMODULE hModule, HRSRC hResInfo)
{
    auto image = LoadedImage(hModule);
    if (!image) {
        return 0;
    }
    const ResourceEntry* entry = EntryOf(*image, hResInfo);
    if (!entry) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    return entry->size;
}

// String uID (its low 16 bits) of the module's string tables: slot uID & 15 of RT_STRING block
// (uID >> 4) + 1, in the neutral language, else en-US, else the first the module lists.
// Copies at most cchBufferMax - 1 characters and a terminator and returns the count;
// cchBufferMax 0 stores a read-only, unterminated pointer to the string in *(LPCWSTR*)lpBuffer
// and returns its length. Success leaves the last error alone. Zero is returned, with the
// buffer (when cchBufferMax > 0) holding "", and the last error telling why, so that a caller
// following the documentation learns something from GetLastError:
//   ERROR_INVALID_PARAMETER        lpBuffer null or cchBufferMax negative (nothing written)
//   ERROR_RESOURCE_DATA_NOT_FOUND  hInstance null (the host's program has no resources) or a
//                                  module without a resource tree
//   ERROR_INVALID_HANDLE           anything else that is not a loaded module
//   ERROR_RESOURCE_TYPE_NOT_FOUND  the module has no string tables
//   ERROR_RESOURCE_NAME_NOT_FOUND  no block for the id, or an empty slot in the block
//   ERROR_INVALID_DATA             the block's lengths run past its end
int WINAPI LoadStringW(HINSTANCE hInstance, UINT uID, LPWSTR lpBuffer, int cchBufferMax)
{
    if (!lpBuffer || cchBufferMax < 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    auto fail = [&](DWORD error) {
        if (cchBufferMax > 0) {
            lpBuffer[0] = 0;
        }
        SetLastError(error);
        return 0;
    };
    auto image = LoadedImage(hInstance);
    if (!image) {
        return fail(GetLastError());
    }
    const char16_t* text = nullptr;
    uint16_t length = 0;
    switch (image->FindString(uID, &text, &length)) {
    case StringLookup::Found:
        break;
    case StringLookup::NoResourceSection:
        return fail(ERROR_RESOURCE_DATA_NOT_FOUND);
    case StringLookup::NoStringTables:
        return fail(ERROR_RESOURCE_TYPE_NOT_FOUND);
    case StringLookup::NoBlock:
    case StringLookup::Empty:
        return fail(ERROR_RESOURCE_NAME_NOT_FOUND);
    case StringLookup::Malformed:
        return fail(ERROR_INVALID_DATA);
    }
    if (cchBufferMax == 0) {
        const WCHAR* pointer = text;
        std::memcpy(lpBuffer, &pointer, sizeof pointer); // lpBuffer need not be 8-byte aligned
        return length;
    }
    int count = std::min<int>(length, cchBufferMax - 1);
    std::memcpy(lpBuffer, text, size_t(count) * sizeof(WCHAR));
    lpBuffer[count] = 0;
    return count;
}

} // extern "C"
