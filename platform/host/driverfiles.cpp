// Driver files in the version subdirectories of the printer driver directory.
#include "hostinternal.h"

#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace {

bool Fail(std::string* error, std::string text)
{
    if (error) {
        *error = std::move(text);
    }
    return false;
}

// One component, nothing that could lead out of the directory.
bool PlainFileName(const std::u16string& name)
{
    if (name.empty() || name == u"." || name == u"..") {
        return false;
    }
    for (char16_t c : name) {
        if (c == u'\\' || c == u'/' || c == u':' || c == 0) {
            return false;
        }
    }
    return true;
}

} // namespace

namespace host {

std::string InstalledDriverFilePath(const std::u16string& fileName, int version)
{
    return MapWindowsPath(DriverDirectory() + u"\\" + Utf8ToUtf16(std::to_string(version)) + u"\\" +
                          fileName);
}

bool InstallDriverFile(const std::string& sourcePath, const std::u16string& fileName, int version,
                       std::string* error)
{
    if (!PlainFileName(fileName)) {
        return Fail(error, "not a plain file name: \"" + Utf16ToUtf8(fileName) + "\"");
    }
    if (version < 0) {
        return Fail(error, "no driver version " + std::to_string(version));
    }
    const fs::path target = InstalledDriverFilePath(fileName, version);
    std::error_code ec;
    fs::create_directories(target.parent_path(), ec);
    if (ec) {
        return Fail(error, "cannot create " + target.parent_path().string() + ": " + ec.message());
    }
    // Copy beside the target, then rename over it: a module loaded meanwhile sees the old file
    // or the new one, and the new one under a new identity, so its cache notices.
    static std::atomic<unsigned> counter{0};
    fs::path part = target;
    part += ".part-" + std::to_string(getpid()) + "-" + std::to_string(counter++);
    fs::copy_file(sourcePath, part, fs::copy_options::overwrite_existing, ec);
    if (ec) {
        std::string why = ec.message();
        std::error_code ignored;
        fs::remove(part, ignored);
        return Fail(error, "cannot copy " + sourcePath + " to " + target.string() + ": " + why);
    }
    fs::rename(part, target, ec);
    if (ec) {
        std::error_code ignored;
        fs::remove(part, ignored);
        return Fail(error, "cannot install " + target.string() + ": " + ec.message());
    }
    return true;
}

} // namespace host
