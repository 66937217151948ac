#include "compilers/ClangCl.h"

#include <algorithm>

namespace Orvanta {

namespace {

constexpr FlagValue Glued = FlagValue::Glued;
constexpr FlagEffect NoEffect = FlagEffect::None;

// clang-format off
constexpr FlagRow ClangClFlags[] = {
    {"m32", FlagKind::Target32},
    {"m64", FlagKind::Target64},
    {"imsvc", FlagKind::SystemInclude},
    {"isystem", FlagKind::SystemInclude},
    {"winsysroot", FlagKind::SystemInclude},
    {"vctoolsdir", FlagKind::SystemInclude},
    {"winsdkdir", FlagKind::SystemInclude},
    {"diasdkdir", FlagKind::SystemInclude},
    {"vctoolsversion", FlagKind::KeepWithValue},
    {"winsdkversion", FlagKind::KeepWithValue},
    {"clang:", FlagKind::Preprocessor, NoEffect, Glued},
    {"Xclang", FlagKind::Preprocessor},
    {"mllvm", FlagKind::KeepWithValue},
    {"target", FlagKind::KeepWithValue},
    {"target=", FlagKind::Keep},
    {"resource-dir", FlagKind::KeepWithValue},
    {"ivfsoverlay", FlagKind::KeepWithValue},

    // What would make a warning fail the unit.
    {"Werror", FlagKind::Drop},
    {"Werror=", FlagKind::Drop},
    {"pedantic-errors", FlagKind::Drop},

    // What would write files of the build again, or change the preprocessed text.
    {"fdebug-macro", FlagKind::Drop},
    {"ftime-trace", FlagKind::Drop},
    {"ftime-trace=", FlagKind::Drop},
    {"object-file-name=", FlagKind::Drop},

    // Information instead of work.
    {"###", FlagKind::NoCompilation},
    {"version", FlagKind::NoCompilation},
    {"print-supported-cpus", FlagKind::NoCompilation},
    {"v", FlagKind::Drop, FlagEffect::PrintsWithoutInput},
};
// clang-format on
static_assert(NamesAreUnique(ClangClFlags), "a name stands twice: its second row would never be read");

constexpr std::string_view TargetFlags[] = {"--target=", "-target=", "/clang:--target=", "-clang:--target="};

// The target that the last flag for it names.
std::optional<TargetBits> StatedTarget(std::span<const std::string> arguments) {
    std::optional<TargetBits> target;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "-target" && i + 1 < arguments.size()) {
            target = TargetByTriple(arguments[i + 1]);
        }
        for (const std::string_view flag : TargetFlags) {
            if (argument.starts_with(flag)) {
                target = TargetByTriple(argument.substr(flag.size()));
            }
        }
    }
    return target;
}

} // namespace

ClangCl::ClangCl() : Cl(CompilerType::ClangCl, ClangClFlags) {}

void ClangCl::FinishParse(std::span<const std::string> arguments, ParsedCommand& command) const {
    const std::vector<std::string>& kept = command.keptArguments;
    command.unsignedChar = std::any_of(kept.begin(), kept.end(), [](std::string_view argument) {
        return argument.ends_with("clang:-funsigned-char");
    });
    Cl::FinishParse(arguments, command);
}

// The size of words that a flag states changes whatever target there is.
TargetBits ClangCl::TargetOf(const ParsedCommand& command) const {
    if (command.platformWord == "linux32") {
        return TargetBits::Bits32;
    }
    if (command.platformWord == "linux64") {
        return TargetBits::Bits64;
    }
    if (const std::optional<TargetBits> target = StatedTarget(command.keptArguments)) {
        return *target;
    }
    return Targets().TargetOf(command.compilerPath, CompilerTargets::PathMeaning::Host);
}

void ClangCl::AddSource(const std::string& source, std::vector<std::string>& words) const {
    if (source.starts_with('/') || source.starts_with('-')) {
        words.emplace_back("--");
        words.push_back(source);
        return;
    }
    Cl::AddSource(source, words);
}

} // namespace Orvanta
