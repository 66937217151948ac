#include "platform/InstallFolders.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <windows.h>

namespace Orvanta {
namespace {

constexpr const char* Place = "Software\\orvanta-install-folders-test";

// Shows this process another hive of the machine, an empty one, for as long as it lives.
class OwnHive {
public:
    OwnHive() {
        EXPECT_EQ(::RegCreateKeyA(HKEY_CURRENT_USER, Place, &hive_), ERROR_SUCCESS);
        EXPECT_EQ(::RegOverridePredefKey(HKEY_LOCAL_MACHINE, hive_), ERROR_SUCCESS);
    }

    ~OwnHive() {
        ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        ::RegCloseKey(hive_);
        ::RegDeleteTreeA(HKEY_CURRENT_USER, Place);
    }

    OwnHive(const OwnHive&) = delete;
    OwnHive& operator=(const OwnHive&) = delete;

    /// Sets the value as an installer does.
    void SetInstallFolder(DWORD type, const std::string& bytes) const {
        HKEY key = nullptr;
        EXPECT_EQ(::RegCreateKeyA(hive_, "Software\\Wow6432Node\\Tessaly\\Orvanta", &key), ERROR_SUCCESS);
        const auto* const data = reinterpret_cast<const BYTE*>(bytes.data());
        EXPECT_EQ(::RegSetValueExA(key, "InstallDir", 0, type, data, static_cast<DWORD>(bytes.size())), ERROR_SUCCESS);
        ::RegCloseKey(key);
    }

private:
    HKEY hive_ = nullptr;
};

TEST(InstalledCoreFolders, BeginWithTheRegisteredOne) {
    const OwnHive hive;
    const std::vector<std::string> programs = InstalledCoreFolders();
    ASSERT_FALSE(programs.empty());
    EXPECT_EQ(programs.back(), "C:\\Program Files (x86)\\Orvanta\\x64");

    using namespace std::string_literals;
    hive.SetInstallFolder(REG_SZ, "E:\\Orvanta \xC3\xB6\0rest"s);
    std::vector<std::string> all = {"E:\\Orvanta \xC3\xB6\\x64"};
    all.insert(all.end(), programs.begin(), programs.end());
    EXPECT_EQ(InstalledCoreFolders(), all);

    hive.SetInstallFolder(REG_DWORD, "four"s);
    EXPECT_EQ(InstalledCoreFolders(), programs) << "a value that is no text";
}

} // namespace
} // namespace Orvanta
