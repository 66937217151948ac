#include "bundled/Engine.h"

#include "bundled/ClangEngine.h"
#include "bundled/CppcheckEngine.h"
#include "platform/Exceptions.h"
#include "platform/Executable.h"

#include <algorithm>

namespace Orvanta {

namespace {

/// An engine that is known, installed or not.
struct EngineRow {
    EngineKind kind;
    std::string_view name;    // for users
    std::string_view program; // as it is looked up along PATH
    std::string_view package; // of Debian
};

// In the order in which they look at a unit.
constexpr EngineRow Rows[] = {
    {EngineKind::Cppcheck, "Cppcheck", "cppcheck", "cppcheck"},
    {EngineKind::Clang, "clang-tidy", "clang-tidy", "clang-tidy"},
};

std::unique_ptr<Engine> MakeEngine(EngineKind kind, std::string program) {
    switch (kind) {
    case EngineKind::Cppcheck:
        return std::make_unique<CppcheckEngine>(std::move(program));
    case EngineKind::Clang:
        return std::make_unique<ClangEngine>(std::move(program));
    }
    return nullptr;
}

std::string HowToInstall(const EngineRow& row) {
    return "install the package \"" + std::string(row.package) + "\"";
}

[[noreturn]] void FailWithoutEngines() {
    std::string names;
    std::string packages;
    for (const EngineRow& row : Rows) {
        names += (names.empty() ? "Neither " : " nor ") + std::string(row.name);
        packages += (packages.empty() ? "" : " or ") + ("\"" + std::string(row.package) + "\"");
    }
    throw ZelmException(names + " was found along PATH: install the package " + packages +
                        ", or name another core with --orvanta-path");
}

} // namespace

std::vector<std::unique_ptr<Engine>> EnginesFor(const UnitSettings& unit) {
    std::vector<std::unique_ptr<Engine>> engines;
    for (const EngineRow& row : Rows) {
        const bool isNamed = std::find(unit.engines.begin(), unit.engines.end(), row.kind) != unit.engines.end();
        if (!isNamed && !unit.engines.empty()) {
            continue;
        }
        if (std::string program = FindExecutable(std::string(row.program)); !program.empty()) {
            engines.push_back(MakeEngine(row.kind, std::move(program)));
        } else if (isNamed) {
            throw ZelmException(std::string(row.name) + " was not found along PATH: " + HowToInstall(row) +
                                ", or leave it out of \"engines\"");
        }
    }
    if (engines.empty()) {
        FailWithoutEngines();
    }
    return engines;
}

std::string EngineVersions(const std::string& workingDirectory) {
    std::string versions;
    std::string notes;
    for (const std::unique_ptr<Engine>& engine : EnginesFor({})) {
        const std::string version = engine->Version(workingDirectory);
        versions += (versions.empty() ? "" : "; ") + version;
        // Without the file.
        notes += (notes.empty() ? "It can run " : " and ") + version.substr(0, version.find(','));
    }
    for (const EngineRow& row : Rows) {
        if (FindExecutable(std::string(row.program)).empty()) {
            notes += "\n" + std::string(row.name) + " is not installed and finds nothing: " + HowToInstall(row);
        }
    }
    return versions + "\n" + notes;
}

} // namespace Orvanta
