#include "platform/InstallFolders.h"

#include "platform/Environment.h"
#include "platform/windows/WideText.h"

#include <optional>

#include <windows.h>

namespace Orvanta {

namespace {

constexpr const char* InstallKey = "Software\\Wow6432Node\\Tessaly\\Orvanta";
constexpr const char* InstallValue = "InstallDir";

// The value as the installer has written it, without what follows its end.
std::optional<std::string> ReadText(HKEY key, const char* name) {
    DWORD type = 0;
    DWORD size = 0;
    if (::RegQueryValueExA(key, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS ||
        (type != REG_SZ && type != REG_EXPAND_SZ)) {
        return std::nullopt;
    }
    std::string bytes(size, '\0');
    if (::RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(bytes.data()), &size) !=
        ERROR_SUCCESS) {
        return std::nullopt;
    }
    bytes.resize(size);
    return FromActiveCodePage(bytes.substr(0, bytes.find('\0')));
}

std::optional<std::string> RegisteredFolder() {
    HKEY key = nullptr;
    if (::RegOpenKeyExA(HKEY_LOCAL_MACHINE, InstallKey, 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    std::optional<std::string> folder = ReadText(key, InstallValue);
    ::RegCloseKey(key);
    return folder;
}

} // namespace

std::vector<std::string> InstalledCoreFolders() {
    std::vector<std::string> folders;
    if (const auto folder = RegisteredFolder()) {
        folders.push_back(*folder + "\\x64");
    }
    if (const auto programs = EnvironmentVariable("PROGRAMFILES(x86)")) {
        folders.push_back(*programs + "\\Orvanta\\x64");
    }
    folders.emplace_back("C:\\Program Files (x86)\\Orvanta\\x64");
    return folders;
}

} // namespace Orvanta
