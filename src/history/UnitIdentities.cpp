#include "history/UnitIdentities.h"

#include "platform/FileStamp.h"
#include "platform/Files.h"

#include <unordered_map>
#include <utility>

namespace Orvanta {

namespace {

// To be raised when the driver gives other results for the same inputs.
constexpr std::uint64_t ResultVersion = 1;

// Variables of the driver's own environment that change what a compiler reads. Others come and go with every terminal.
constexpr std::string_view DecisiveVariables[] = {
    "ARMCC5INC",
    "ARMCC5_CCOPT",
    "ARMCOMPILER6_CLANGOPT",
    "ARMINC",
    "C6X_C_DIR",
    "COMPILER_PATH",
    "CPATH",
    "CPLUS_INCLUDE_PATH",
    "C_INCLUDE_PATH",
    "CL",
    "EXTERNAL_INCLUDE",
    "GCC_EXEC_PREFIX",
    "INCLUDE",
    "OBJC_INCLUDE_PATH",
    "QCC_CONF_PATH",
    "QNX_HOST",
    "QNX_TARGET",
    "SDKROOT",
    "SOURCE_DATE_EPOCH",
    "TI_ARM_C_DIR",
    "TI_ARM_C_OPTION",
    "_CL_",
};

void AddFile(FingerprintBuilder& builder, const std::string& path) {
    const std::optional<FileStamp> stamp = StampOf(path);
    builder.Add(path);
    builder.Add(stamp ? stamp->size : 0);
    builder.Add(stamp ? static_cast<std::uint64_t>(stamp->modified) : 0);
}

void AddEnvironment(FingerprintBuilder& builder, const Environment& environment) {
    builder.Add(environment.size());
    for (const auto& [name, value] : environment) {
        builder.Add(name).Add(value);
    }
}

Fingerprint CommonInputs(const RunSettings& settings, const std::string& corePath) {
    FingerprintBuilder builder;
    builder.Add(ResultVersion);
    for (const auto& [key, value] : settings.userSettings) {
        if (key != "output-file") {
            builder.Add(key).Add(value);
        }
        if (key == "rules-config" && IsRegularFile(value)) {
            builder.Add(ReadWholeFile(value));
        }
    }
    for (const std::string& directory : settings.extraIncludes) {
        builder.Add(directory);
    }
    AddEnvironment(builder, settings.environmentChanges);
    builder.Add(settings.analyzeSystemPaths ? 1 : 0);
    for (const std::string_view name : DecisiveVariables) {
        const std::string* const value = FindVariable(OwnEnvironment(), name);
        builder.Add(name).Add(value != nullptr ? *value : std::string());
    }
    AddFile(builder, corePath);
    return builder.Value();
}

/// Fingerprints of what many units share, each made once.
template <typename Shared>
class SharedParts {
public:
    template <typename Make>
    const Fingerprint& Get(const std::shared_ptr<const Shared>& shared, const Make& make) {
        const auto [part, isNew] = parts_.try_emplace(shared.get());
        if (isNew) {
            FingerprintBuilder builder;
            make(builder, *shared);
            part->second = builder.Value();
        }
        return part->second;
    }

private:
    std::unordered_map<const Shared*, Fingerprint> parts_;
};

} // namespace

std::vector<UnitIdentity> IdentifyUnits(std::span<const CompileCommand> units, const RunSettings& settings,
                                        const std::string& corePath) {
    const Fingerprint common = CommonInputs(settings, corePath);
    SharedParts<CompilerInfo> compilers;
    SharedParts<Environment> environments;
    std::unordered_map<std::string, unsigned> namesakes;
    std::vector<UnitIdentity> identities;
    identities.reserve(units.size());
    for (const CompileCommand& unit : units) {
        UnitIdentity identity;
        identity.id = *unit.absoluteDirectory + ": " + std::string(unit.SourceFile());
        if (const unsigned number = ++namesakes[identity.id]; number > 1) {
            identity.id += " (" + std::to_string(number) + ")";
        }
        FingerprintBuilder arguments;
        for (const std::string& argument : unit.arguments.ToVector()) {
            arguments.Add(argument);
        }
        identity.arguments = arguments.Value();
        FingerprintBuilder inputs;
        inputs.Add(common).Add(identity.arguments).Add(*unit.absoluteDirectory).Add(unit.source.index);
        inputs.Add(unit.source.offset).Add(static_cast<std::uint64_t>(unit.environmentScope));
        inputs.Add(environments.Get(unit.environment, AddEnvironment));
        inputs.Add(compilers.Get(unit.compiler, [](FingerprintBuilder& builder, const CompilerInfo& compiler) {
            builder.Add(static_cast<std::uint64_t>(compiler.type)).Add(compiler.version);
            AddFile(builder, compiler.path);
        }));
        identity.inputs = inputs.Value();
        identities.push_back(std::move(identity));
    }
    return identities;
}

} // namespace Orvanta
