#include "buildinput/ProgramName.h"

#include "platform/Paths.h"
#include "platform/Text.h"

#include <algorithm>

namespace Orvanta {

namespace {

std::string_view WithoutExe(std::string_view name) {
    constexpr std::string_view Exe = ".exe";
    const bool ends = name.size() > Exe.size() && EqualsIgnoringCase(name.substr(name.size() - Exe.size()), Exe);
    return ends ? name.substr(0, name.size() - Exe.size()) : name;
}

// These may stand behind a target and before a version, the names below only alone.
constexpr std::string_view CompilerStems[] = {"gcc", "g++", "cc", "c++", "clang", "clang++"};
constexpr std::string_view CompilerNames[] = {"cl",     "clang-cl", "armcc", "armclang", "armcl", "iccarm",
                                              "icc",    "icx",      "icpc",  "icpx",     "qcc",   "q++",
                                              "xc8-cc", "xlc",      "tcc",   "nvc",      "nvc++"};

} // namespace

std::string_view ProgramNameOf(std::string_view path) noexcept {
    return WithoutExe(FileNameOf(path));
}

bool LooksLikeCompiler(std::string_view path) noexcept {
    std::string_view name = ProgramNameOf(path);
    for (const std::string_view known : CompilerNames) {
        if (EqualsIgnoringCase(name, known)) {
            return true;
        }
    }
    // The version first, which would otherwise be the part behind the last dash.
    const std::size_t version = name.find_last_not_of("0123456789.");
    if (version != std::string_view::npos && name[version] == '-' && version + 1 < name.size()) {
        name = name.substr(0, version);
    }
    name = name.substr(name.rfind('-') == std::string_view::npos ? 0 : name.rfind('-') + 1);
    for (const std::string_view stem : CompilerStems) {
        if (EqualsIgnoringCase(name, stem)) {
            return true;
        }
    }
    return false;
}

bool IsProgramNamed(std::string_view path, std::string_view name) noexcept {
    const std::string_view wantedName = FileNameOf(name);
    // A bare name is that of a program in any folder.
    if (wantedName.size() == name.size()) {
        return EqualsIgnoringCase(ProgramNameOf(path), WithoutExe(name));
    }
    // A path: a bare name may stand for it, another path does not.
    const bool isBare = FileNameOf(path).size() == path.size();
    return isBare ? EqualsIgnoringCase(WithoutExe(path), WithoutExe(wantedName)) : WithoutExe(path) == WithoutExe(name);
}

bool IsProgramAmong(std::string_view path, std::span<const std::string> names) noexcept {
    return std::any_of(names.begin(), names.end(),
                       [path](std::string_view name) { return IsProgramNamed(path, name); });
}

} // namespace Orvanta
