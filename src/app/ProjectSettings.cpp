#include "app/ProjectSettings.h"

#include "platform/Console.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvanta {

namespace {

constexpr const char* ProjectSettingsName = ".orvanta.cfg";

// What a file that came with the sources may say. None of these names a program, an address, or a place to write to.
constexpr std::string_view TrustedKeys[] = {
    "analysis-mode", "exclude-path", "rules-config", "platform", "preprocessor", SourceTreeRootKey, "new-output-format",
};

// Worktrees and submodules have a file of that name where a clone has a folder.
bool IsRootOfCheckout(const std::string& folder) {
    return PathExists(JoinPath(folder, ".git"));
}

// From the current one up to the root of the checkout, else of the disk.
std::vector<std::string> FoldersOfCheckout() {
    std::vector<std::string> folders = {CurrentDirectory()};
    while (!IsRootOfCheckout(folders.back())) {
        std::string above(DirectoryOf(folders.back()));
        if (above.empty() || above == folders.back()) {
            break;
        }
        folders.push_back(std::move(above));
    }
    return folders;
}

// No further than the checkout: a file above it is another project's, or somebody else's on a shared machine.
std::optional<std::string> FindProjectSettings() {
    for (const std::string& folder : FoldersOfCheckout()) {
        if (std::string path = JoinPath(folder, ProjectSettingsName); IsRegularFile(path)) {
            return path;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> CheckoutRoot() {
    const std::string top = FoldersOfCheckout().back();
    return IsRootOfCheckout(top) ? std::optional(top) : std::nullopt;
}

std::optional<std::string> SettingsFileOf(const AnalyzeOptions& options) {
    if (!options.settingsFile) {
        return std::nullopt;
    }
    if (*options.settingsFile != FindSettingsFile) {
        return AbsolutePath(*options.settingsFile);
    }
    std::optional<std::string> found = FindProjectSettings();
    // Told in any case: which settings count must not depend on the folder in silence.
    PrintLine(found ? "Using settings file: " + *found
                    : std::string("No settings file: there is no ") + ProjectSettingsName +
                          " here or above, up to the root of the checkout");
    return found;
}

void DropUntrusted(SettingsMap& settings, const std::string& path) {
    std::set<std::string> dropped;
    for (auto entry = settings.begin(); entry != settings.end();) {
        // A list of what is trusted, not of what is not: a key that is added later is not trusted by oversight.
        const bool isTrusted =
            std::find(std::begin(TrustedKeys), std::end(TrustedKeys), entry->first) != std::end(TrustedKeys);
        if (!isTrusted) {
            dropped.insert(entry->first);
        }
        entry = isTrusted ? std::next(entry) : settings.erase(entry);
    }
    if (dropped.empty()) {
        return;
    }
    std::string keys;
    for (const std::string& key : dropped) {
        keys += (keys.empty() ? "" : ", ") + key;
    }
    PrintLine("Not taken from " + path + ", which came with the sources: " + keys +
              " (name the file with --cfg to take all)");
}

} // namespace Orvanta
