#include "compilers/ClangCl.h"

namespace Orvanta {

namespace {

constexpr FlagValue Glued = FlagValue::Glued;

// clang-format off
constexpr FlagRow ClangClFlags[] = {
    {"m32", FlagKind::Target32},
    {"m64", FlagKind::Target64},
    {"fmodules", FlagKind::Keep, FlagEffect::UsesModules},
    {"driver-mode=cl", FlagKind::Keep},
    {"working-directory", FlagKind::DropWithValue, FlagEffect::NamesDirectory},
    {"working-directory=", FlagKind::Drop, FlagEffect::NamesDirectory},
    {"imsvc", FlagKind::SystemInclude},
    {"isystem", FlagKind::SystemInclude},
    // Below these lie the headers of the SDK and of the library: nothing there is the project's own.
    {"winsysroot", FlagKind::SystemInclude},
    {"vctoolsdir", FlagKind::SystemInclude},
    {"winsdkdir", FlagKind::SystemInclude},
    {"diasdkdir", FlagKind::SystemInclude},
    {"vctoolsversion", FlagKind::KeepWithValue},
    {"winsdkversion", FlagKind::KeepWithValue},
    {"clang:", FlagKind::Preprocessor, Glued},
    {"Xclang", FlagKind::Preprocessor, FlagValue::Next},
    {"mllvm", FlagKind::Preprocessor, FlagValue::Next},
    {"target", FlagKind::KeepWithValue, FlagValue::Next, FlagEffect::NamesTarget},
    {"target=", FlagKind::Keep, FlagEffect::NamesTarget},
    {"resource-dir", FlagKind::KeepWithValue},
    {"ivfsoverlay", FlagKind::KeepWithValue, FlagFile::Read},

    // What would make a warning fail the unit.
    {"Werror", FlagKind::Drop},
    {"Werror=", FlagKind::Drop},
    {"pedantic-errors", FlagKind::Drop},

    // What would write files of the build again, or change the preprocessed text.
    {"fdebug-macro", FlagKind::Drop},
    {"ftime-trace", FlagKind::Drop, FlagFile::Written},
    {"ftime-trace=", FlagKind::Drop, FlagFile::Written},
    {"object-file-name=", FlagKind::Drop},
    {"fproc-stat-report", FlagKind::Drop},
    {"fproc-stat-report=", FlagKind::Drop, FlagFile::Written},
    {"save-stats", FlagKind::Drop, FlagFile::Written},
    {"save-stats=", FlagKind::Drop, FlagFile::Written},
    {"gen-cdb-fragment-path", FlagKind::DropWithValue, FlagValue::Next, FlagFile::Written},
    {"foptimization-record-file=", FlagKind::Drop, FlagFile::Written},
    {"fsave-optimization-record", FlagKind::Drop, FlagFile::Written},
    {"fsave-optimization-record=", FlagKind::Drop, FlagFile::Written},
    {"serialize-diagnostics", FlagKind::DropWithValue, FlagValue::Next, FlagFile::Written},
    {"MJ", FlagKind::DropWithValue, FlagFile::Written},
    {"dependency-file", FlagKind::DropWithValue, FlagFile::Written},

    // Information instead of work.
    {"###", FlagKind::NoCompilation},
    {"version", FlagKind::NoCompilation},
    {"print-supported-cpus", FlagKind::NoCompilation},
    {"v", FlagKind::Drop, FlagEffect::PrintsWithoutInput},
};
// clang-format on
static_assert(RowsAreSound(ClangClFlags),
              "a name stands twice, or a flag is kept that makes the compiler write a file");

} // namespace

ClangCl::ClangCl(LauncherWords launcher) : Cl(CompilerType::ClangCl, ClangClFlags, launcher) {}

// A header that comes from a module leaves no text.
void ClangCl::FinishParse(ParsedCommand& command) const {
    // The platform word is made there, by this class's TargetOf.
    Cl::FinishParse(command);
    if (command.effects.Has(FlagEffect::UsesModules)) {
        command.keptArguments.emplace_back("-fno-modules");
    }
}

// The size of words that a flag states changes whatever target there is.
TargetBits ClangCl::TargetOf(const ParsedCommand& command) const {
    if (command.targetBits) {
        return *command.targetBits;
    }
    if (const std::optional<TargetBits> target = TargetByTriple(command.targetTriple)) {
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
