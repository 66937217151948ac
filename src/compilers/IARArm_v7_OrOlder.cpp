#include "compilers/IARArm_v7_OrOlder.h"

#include <algorithm>

namespace Orvanta {

namespace {

constexpr std::string_view IarIntroducers[] = {"-", "--"};
constexpr OptionFileFlag IarOptionFiles[] = {
    {"--f", OptionFileFlag::Value::Next       },
    {"-f",  OptionFileFlag::Value::GluedOrNext},
};
constexpr FlagEffect NoEffect = FlagEffect::None;
constexpr FlagValue Long = FlagValue::Long;
constexpr FlagValue GluedAndNext = FlagValue::GluedAndNext;

// Of the rows that fit, the one with the longest name wins; their order is for the reader. A flag without a row is
// kept.
// clang-format off
constexpr FlagRow IarFlags[] = {
    // Languages. A flag for C++ holds for every source, whatever its extension; its standard is the release's own.
    {"c89", FlagKind::StandardC90, FlagEffect::NamesC},
    {"c99", FlagKind::StandardC99, FlagEffect::NamesC},
    {"c11", FlagKind::StandardC11, FlagEffect::NamesC},
    {"c++", FlagKind::Keep, FlagEffect::NamesCpp},
    {"ec++", FlagKind::StandardCpp98, FlagEffect::NamesCpp},
    {"eec++", FlagKind::StandardCpp98, FlagEffect::NamesCpp},
    {"char_is_signed", FlagKind::Keep, FlagEffect::SignedChar},
    {"char_is_unsigned", FlagKind::Keep, FlagEffect::UnsignedChar},

    // Folders, files and macros.
    {"I", FlagKind::UserInclude},
    {"system_include_dir", FlagKind::SystemInclude, NoEffect, Long},
    {"preinclude", FlagKind::ForcedInclude, NoEffect, Long},
    {"include", FlagKind::ForcedInclude, NoEffect, Long},
    {"D", FlagKind::Define},
    {"U", FlagKind::Undefine},

    // Preprocessed text: with an "n" nothing is compiled. Its file stands in the next argument.
    {"preprocess", FlagKind::DropWithValue},
    {"preprocess=", FlagKind::DropWithValue, NoEffect, GluedAndNext},
    {"preprocess=n", FlagKind::DropWithValue, FlagEffect::PreprocessesOnly, GluedAndNext},
    {"preprocess=cn", FlagKind::DropWithValue, FlagEffect::PreprocessesOnly, GluedAndNext},
    {"preprocess=ln", FlagKind::DropWithValue, FlagEffect::PreprocessesOnly, GluedAndNext},
    {"preprocess=sn", FlagKind::DropWithValue, FlagEffect::PreprocessesOnly, GluedAndNext},
    {"predef_macros", FlagKind::DropWithValue, FlagEffect::PreprocessesOnly, Long},
    {"version", FlagKind::NoCompilation},
    {"help", FlagKind::NoCompilation},

    // What the build writes.
    {"o", FlagKind::Output},
    {"output", FlagKind::Output, NoEffect, Long},
    {"l", FlagKind::DropWithValue, NoEffect, GluedAndNext},
    {"dependencies", FlagKind::DropWithValue},
    {"dependencies=", FlagKind::DropWithValue, NoEffect, GluedAndNext},
    {"diagnostics_tables", FlagKind::DropWithValue, NoEffect, Long},
    {"stack_usage", FlagKind::Drop},
    {"header_context", FlagKind::Drop},
    {"public_equ", FlagKind::KeepWithValue, NoEffect, Long},

    // How the tools of the environment talk, and how loud.
    {"IDE2", FlagKind::Drop},
    {"IDE3", FlagKind::Drop},
    {"remarks", FlagKind::Drop},
    {"warnings_are_errors", FlagKind::Drop},
    {"silent", FlagKind::Drop},
    {"S", FlagKind::Drop},
    {"no_warnings", FlagKind::Drop},
    {"error_limit", FlagKind::DropWithValue, NoEffect, Long},

    // The encodings of the sources and of the preprocessed text are those of the preprocessing command.
    {"enable_multibytes", FlagKind::Drop},
    {"utf8_text_in", FlagKind::Drop},
    {"utf8_text_out", FlagKind::Drop},
    {"source_encoding", FlagKind::DropWithValue, NoEffect, Long},
    {"text_out", FlagKind::DropWithValue, NoEffect, Long},
    {"no_bom", FlagKind::Drop},

    // Several sources compiled as one: each is a unit of its own here.
    {"mfc", FlagKind::Drop},
    {"discard_unused_publics", FlagKind::Drop},

    // What has a value of its own, which is no input.
    {"cpu", FlagKind::KeepWithValue, NoEffect, Long},
    {"fpu", FlagKind::KeepWithValue, NoEffect, Long},
    {"cpu_mode", FlagKind::KeepWithValue, NoEffect, Long},
    {"endian", FlagKind::KeepWithValue, NoEffect, Long},
    {"dlib_config", FlagKind::KeepWithValue, NoEffect, Long},
    {"diag_error", FlagKind::KeepWithValue, NoEffect, Long},
    {"diag_remark", FlagKind::KeepWithValue, NoEffect, Long},
    {"diag_suppress", FlagKind::KeepWithValue, NoEffect, Long},
    {"diag_warning", FlagKind::KeepWithValue, NoEffect, Long},
    {"lock_regs", FlagKind::KeepWithValue, NoEffect, Long},
    {"section", FlagKind::KeepWithValue, NoEffect, Long},
};
// clang-format on
static_assert(NamesAreUnique(IarFlags), "a name stands twice: its second row would never be read");

} // namespace

IARArm_v7_OrOlder::IARArm_v7_OrOlder() : IARArm_v7_OrOlder(CompilerType::IARArm_v7_OrOlder) {}

IARArm_v7_OrOlder::IARArm_v7_OrOlder(CompilerType type) : Compiler(type, "iar", IarIntroducers, FlagTable(IarFlags)) {}

std::vector<std::string> IARArm_v7_OrOlder::BuildPreprocessCommand(const ParsedCommand& command,
                                                                   const std::string& outputPath) const {
    std::vector<std::string> words = BeginPreprocessCommand(command, 6);
    words.insert(words.end(), {"--no_warnings", "--silent", "--enable_multibytes", "--preprocess=nl", outputPath,
                               WithFolder(command.sourceFile)});
    return words;
}

void IARArm_v7_OrOlder::FinishParse(std::span<const std::string> arguments, ParsedCommand& command) const {
    if (std::find(arguments.begin(), arguments.end(), "--char_is_signed") != arguments.end()) {
        command.unsignedChar = false;
    }
    command.platformWord = "arm";
}

OptionFileSyntax IARArm_v7_OrOlder::OptionFiles() const noexcept {
    return {.flags = IarOptionFiles, .cComments = true};
}

} // namespace Orvanta
