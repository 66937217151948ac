#include "compilers/Clang.h"

namespace Orvanta {

namespace {

// clang-format off
constexpr FlagRow ClangFlags[] = {
    {"main-file-name", FlagKind::MainFileName},
    // One program has all modes: the flag goes over what its own name says.
    {"driver-mode=g++", FlagKind::Keep, FlagEffect::NamesCpp},
    {"driver-mode=cpp", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"fmodules", FlagKind::Keep, FlagEffect::UsesModules},
    {"fcxx-modules", FlagKind::Keep, FlagEffect::UsesModules},
};
// clang-format on
static_assert(RowsAreSound(ClangFlags), "a name stands twice, or a flag is kept that makes the compiler write a file");

// What only the program behind the driver knows: it stands behind -Xclang. The driver would read "-load" as "-l oad".
// clang-format off
constexpr FlagRow FrontEndRows[] = {
    {"load", FlagKind::KeepWithValue, FlagValue::Next, FlagFile::Read},
    {"plugin", FlagKind::KeepWithValue, FlagValue::Next},
    {"add-plugin", FlagKind::KeepWithValue, FlagValue::Next},
    {"plugin-arg-", FlagKind::KeepWithValue, FlagValue::GluedAndNext},
    {"target-cpu", FlagKind::KeepWithValue, FlagValue::Next},
    {"target-feature", FlagKind::KeepWithValue, FlagValue::Next},
    {"triple", FlagKind::KeepWithValue, FlagValue::Next},
    {"fdebug-compilation-dir", FlagKind::KeepWithValue, FlagValue::Next},
    {"header-include-file", FlagKind::DropWithValue, FlagValue::Next, FlagFile::Written},
    {"opt-record-file", FlagKind::DropWithValue, FlagValue::Next, FlagFile::Written},
    {"print-stats", FlagKind::Drop},
};
// clang-format on
static_assert(RowsAreSound(FrontEndRows),
              "a name stands twice, or a flag is kept that makes the compiler write a file");

} // namespace

Clang::Clang() : Clang(CompilerType::Clang, CharSign::UnsignedByFlag) {}

Clang::Clang(CompilerType type, CharSign charSign)
    : Gcc(type, "clang", ClangFlags, charSign), frontEnd_({FrontEndRows}) {}

// A header that comes from a module leaves no text. Without modules it is read like any other.
void Clang::FinishParse(ParsedCommand& command) const {
    Gcc::FinishParse(command);
    if (command.effects.Has(FlagEffect::UsesModules)) {
        command.keptArguments.emplace_back("-fno-modules");
    }
}

} // namespace Orvanta
