// The host's home directory, which stands in for drive C:, and the mapping of Windows paths.
#include "hostinternal.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

namespace {

std::string& HomeOverride()
{
    static auto* home = new std::string;
    return *home;
}

std::string DefaultHome()
{
    if (const char* env = std::getenv("QLMHOST_HOME"); env && *env) {
        return env;
    }
    std::string user;
    if (const char* env = std::getenv("HOME"); env && *env) {
        user = env;
    } else if (passwd* pw = getpwuid(geteuid()); pw && pw->pw_dir) {
        user = pw->pw_dir;
    } else {
        user = "/tmp";
    }
    return user + "/.qlmhost";
}

} // namespace

namespace host {

std::string HomeDirectory()
{
    detail::Lock lock(detail::StateMutex());
    std::string home = HomeOverride().empty() ? DefaultHome() : HomeOverride();
    // Every mapped path asks for the home (a trace line each); make it once, not each time.
    static auto* made = new std::string;
    if (home != *made) {
        std::error_code ignored; // a home that cannot be made fails later, where it is used
        if (std::filesystem::create_directories(home, ignored) ||
            std::filesystem::is_directory(home, ignored)) {
            *made = home;
        }
    }
    return home;
}

void SetHomeDirectory(const std::string& dir)
{
    detail::Lock lock(detail::StateMutex());
    HomeOverride() = dir;
}

std::string MapWindowsPath(const std::u16string& windowsPath)
{
    std::string path = Utf16ToUtf8(windowsPath);
    bool driveC = path.size() >= 2 && (path[0] == 'C' || path[0] == 'c') && path[1] == ':';
    if (!driveC) {
        for (char& c : path) {
            if (c == '\\') {
                c = '/';
            }
        }
        return path;
    }
    // Normalise as Windows does: "." goes, ".." climbs but never above the drive's root.
    std::vector<std::string> parts;
    std::string part;
    auto flush = [&] {
        if (part == "..") {
            if (!parts.empty()) {
                parts.pop_back();
            }
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
        part.clear();
    };
    for (size_t i = 2; i < path.size(); ++i) {
        if (path[i] == '\\' || path[i] == '/') {
            flush();
        } else {
            part += path[i];
        }
    }
    flush();
    std::string mapped = HomeDirectory();
    for (const auto& p : parts) {
        mapped += '/';
        mapped += p;
    }
    return mapped;
}

std::u16string DriverDirectory()
{
    return u"C:\\Windows\\System32\\spool\\drivers\\x64";
}

} // namespace host
