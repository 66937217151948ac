#include "history/UnitIdentities.h"

#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <fstream>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace Orvanta {

namespace {

/// A variable of the driver's own environment that changes what a compiler reads. Others come and go with every
/// terminal.
/// One that only another family reads must not make this one's units run. Those of the invocation itself count all,
/// whatever their names: a build that sets one has a reason.
struct DecisiveVariable {
    std::string_view name;
    bool (*counts)(CompilerType type); // for this family
};

bool IsIar(CompilerType type) {
    return type == CompilerType::IARArm || type == CompilerType::IARArm_v7_OrOlder;
}

bool IsKeil(CompilerType type) {
    return type == CompilerType::Keil5 || type == CompilerType::Keil5Gnu || type == CompilerType::Keil6;
}

bool IsTi(CompilerType type) {
    return type == CompilerType::TiArmCGT;
}

bool IsQcc(CompilerType type) {
    return type == CompilerType::Qcc;
}

// Clang itself, and what is made from it.
bool IsClang(CompilerType type) {
    return type == CompilerType::Clang || type == CompilerType::ClangCl || type == CompilerType::Keil6;
}

// The family cannot be told apart further where one driver hands on to another.
bool IsGccLike(CompilerType type) {
    return !IsMsvcFamily(type) && !IsIar(type) && !IsTi(type);
}

constexpr DecisiveVariable DecisiveVariables[] = {
    {"ARMCC5INC", IsKeil},
    {"ARMCC5_CCOPT", IsKeil},
    {"ARMCOMPILER6_CLANGOPT", IsKeil},
    {"ARMINC", IsKeil},
    {"ARM_PRODUCT_DEF", IsKeil},
    {"ARM_PRODUCT_PATH", IsKeil},
    {"ARM_TOOL_VARIANT", IsKeil},
    {"C6X_C_DIR", IsTi},
    {"CCC_ADD_ARGS", IsClang},
    {"CCC_OVERRIDE_OPTIONS", IsClang},
    {"CL", IsMsvcFamily},
    {"CLANG_NO_DEFAULT_CONFIG", IsClang},
    {"COMPILER_PATH", IsGccLike},
    {"CPATH", IsGccLike},
    {"CPLUS_INCLUDE_PATH", IsGccLike},
    {"C_DIR", IsTi},
    {"C_INCLUDE", IsIar},
    {"C_INCLUDE_PATH", IsGccLike},
    {"C_OPTION", IsTi},
    {"EXTERNAL_INCLUDE", IsMsvcFamily},
    {"GCC_EXEC_PREFIX", IsGccLike},
    {"GCC_ROOT", IsGccLike},
    {"INCLUDE", IsMsvcFamily},
    {"IPHONEOS_DEPLOYMENT_TARGET", IsGccLike},
    {"LIBPATH", IsMsvcFamily},
    {"MACOSX_DEPLOYMENT_TARGET", IsGccLike},
    {"OBJC_INCLUDE_PATH", IsGccLike},
    {"QCCARM", IsIar},
    {"QCC_CONF_PATH", IsQcc},
    {"QNX_CONFIGURATION", IsQcc},
    {"QNX_CONFIGURATION_EXCLUSIVE", IsQcc},
    {"QNX_HOST", IsQcc},
    {"QNX_TARGET", IsQcc},
    {"SDKROOT", IsGccLike},
    {"SOURCE_DATE_EPOCH", IsGccLike},
    {"TI_ARM_C_DIR", IsTi},
    {"TI_ARM_C_OPTION", IsTi},
    {"TVOS_DEPLOYMENT_TARGET", IsGccLike},
    {"UniversalCRTSdkDir", IsMsvcFamily},
    {"VCINSTALLDIR", IsMsvcFamily},
    {"VCToolsInstallDir", IsMsvcFamily},
    {"WATCHOS_DEPLOYMENT_TARGET", IsGccLike},
    {"WindowsSdkDir", IsMsvcFamily},
    {"_CL_", IsMsvcFamily},
};

void AddVariable(FingerprintBuilder& builder, std::string_view name) {
    const std::string* const value = FindVariable(OwnEnvironment(), name);
    // A variable that is empty is not the same as none.
    builder.Add(name).Add(value != nullptr ? 1 : 0).Add(value != nullptr ? *value : std::string());
}

void AddEnvironment(FingerprintBuilder& builder, const Environment& environment) {
    // How many there are belongs to it, so that what follows can't pass for one more.
    builder.Add(environment.size());
    for (const auto& [name, value] : environment) {
        builder.Add(name).Add(value);
    }
}

// A script finds what it runs along PATH.
bool IsScript(const std::string& path) {
    char beginning[2] = {};
    if (LookAt(path).kind != PathKind::File || !std::ifstream(NativePath(path), std::ios::binary).read(beginning, 2)) {
        return false;
    }
    const std::string_view extension = ExtensionOf(path);
    return std::string_view(beginning, 2) == "#!" || EqualsIgnoringCase(extension, ".bat") ||
           EqualsIgnoringCase(extension, ".cmd");
}

void AddCompiler(FingerprintBuilder& builder, const CompilerInfo& compiler) {
    builder.Add(static_cast<std::uint64_t>(compiler.type)).Add(compiler.version).Add(compiler.path);
    // Where the path leads, so that a link which is turned to another version counts as a change.
    builder.Add(ResolveLinks(compiler.path));
    for (const std::string_view name : VariablesReadBy(compiler.type)) {
        AddVariable(builder, name);
    }
    if (IsScript(compiler.path)) {
        AddVariable(builder, "PATH");
    }
}

/// What many units share, made once for each.
template <typename Shared, typename Part>
class SharedParts {
public:
    template <typename Make>
    const Part& Get(const std::shared_ptr<const Shared>& shared, const Make& make) {
        // By address: whoever shares an object has the same pointer, and the units keep it alive.
        const auto [part, isNew] = parts_.try_emplace(shared.get());
        if (isNew) {
            part->second = make(*shared);
        }
        return part->second;
    }

private:
    std::unordered_map<const Shared*, Part> parts_;
};

/// What a compiler is to the units that it compiles.
struct CompilerPart {
    Fingerprint inputs;
    std::shared_ptr<const std::vector<std::string>> programs; // it, and the core
};

} // namespace

Fingerprint FingerprintOfSettings(const RunSettings& settings) {
    FingerprintBuilder builder;
    for (const auto& [key, value] : settings.userSettings) {
        // Where the report goes decides no result.
        if (key != "output-file") {
            builder.Add(key).Add(value);
        }
        // What the file holds, which may change without its name.
        if (key == "rules-config" && IsRegularFile(value)) {
            builder.Add(ReadWholeFile(value));
        }
    }
    for (const std::string& directory : settings.extraIncludes) {
        builder.Add(directory);
    }
    AddEnvironment(builder, settings.environmentChanges);
    return builder.Add(settings.analyzeSystemPaths ? 1 : 0).Value();
}

Fingerprint FingerprintOfRun(const RunSettings& settings, const ResultMakers& makers) {
    FingerprintBuilder builder;
    builder.Add(ResultVersion).Add(makers.ownVersion).Add(FingerprintOfSettings(settings));
    builder.Add(makers.corePath).Add(ResolveLinks(makers.corePath)).Add(makers.coreVersion);
    return builder.Value();
}

std::vector<std::string_view> VariablesReadBy(CompilerType type) {
    std::vector<std::string_view> names;
    for (const DecisiveVariable& variable : DecisiveVariables) {
        if (variable.counts(type)) {
            names.push_back(variable.name);
        }
    }
    return names;
}

std::vector<UnitIdentity> IdentifyUnits(std::span<const CompileCommand> units, const RunSettings& settings,
                                        const ResultMakers& makers) {
    const Fingerprint common = FingerprintOfRun(settings, makers);
    SharedParts<CompilerInfo, CompilerPart> compilers;
    SharedParts<Environment, Fingerprint> environments;
    const auto partOf = [&](const CompilerInfo& compiler) {
        FingerprintBuilder builder;
        AddCompiler(builder, compiler);
        std::vector<std::string> programs = {compiler.path, makers.corePath};
        return CompilerPart{builder.Value(), std::make_shared<const std::vector<std::string>>(std::move(programs))};
    };
    const auto fingerprintOf = [](const Environment& environment) {
        FingerprintBuilder builder;
        AddEnvironment(builder, environment);
        return builder.Value();
    };
    std::vector<UnitIdentity> identities;
    identities.reserve(units.size());
    for (const CompileCommand& unit : units) {
        UnitIdentity identity;
        // As it stands in `depend_info.json`, where people read it.
        identity.id = *unit.absoluteDirectory + ": " + std::string(unit.SourceFile());
        FingerprintBuilder arguments;
        for (const std::string& argument : unit.arguments.ToVector()) {
            arguments.Add(argument);
        }
        identity.arguments = arguments.Value();
        const CompilerPart& compiler = compilers.Get(unit.compiler, partOf);
        FingerprintBuilder inputs;
        inputs.Add(common).Add(identity.arguments).Add(*unit.absoluteDirectory).Add(unit.source.index);
        inputs.Add(unit.source.offset).Add(static_cast<std::uint64_t>(unit.environmentScope));
        inputs.Add(environments.Get(unit.environment, fingerprintOf)).Add(compiler.inputs);
        identity.inputs = inputs.Value();
        identity.programs = compiler.programs;
        identities.push_back(std::move(identity));
    }
    return identities;
}

} // namespace Orvanta
