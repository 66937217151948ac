#include "compilers/IARArm_v7_OrOlder.h"

namespace Orvanta {

namespace {

constexpr std::string_view IarIntroducers[] = {"-", "--"};
constexpr OptionFileFlag IarOptionFiles[] = {
    {"--f", OptionFileFlag::Value::Next},
    {"-f", OptionFileFlag::Value::GluedOrNext},
};
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
    // Embedded C++ is a part of C++98: the core has no nearer word.
    {"ec++", FlagKind::StandardCpp98, FlagEffect::NamesCpp},
    {"eec++", FlagKind::StandardCpp98, FlagEffect::NamesCpp},
    {"char_is_signed", FlagKind::Keep, FlagEffect::SignedChar}, // wins over "char_is_unsigned", which says what is so

    // Folders, files and macros.
    {"I", FlagKind::UserInclude},
    {"system_include_dir", FlagKind::SystemInclude, Long},
    {"preinclude", FlagKind::ForcedInclude, Long},
    {"include", FlagKind::ForcedInclude, Long},
    {"D", FlagKind::Define},
    {"U", FlagKind::Undefine},

    // Preprocessed text: with an "n" nothing is compiled. Its file stands in the next argument.
    {"preprocess", FlagKind::DropWithValue},
    {"preprocess=", FlagKind::DropWithValue, GluedAndNext},
    {"preprocess=n", FlagKind::DropWithValue, FlagEffect::PreprocessesOnly, GluedAndNext},
    {"preprocess=cn", FlagKind::DropWithValue, FlagEffect::PreprocessesOnly, GluedAndNext},
    {"preprocess=ln", FlagKind::DropWithValue, FlagEffect::PreprocessesOnly, GluedAndNext},
    {"preprocess=sn", FlagKind::DropWithValue, FlagEffect::PreprocessesOnly, GluedAndNext},
    {"predef_macros", FlagKind::DropWithValue, FlagEffect::PreprocessesOnly, Long},
    {"version", FlagKind::NoCompilation},
    {"help", FlagKind::NoCompilation},

    // What the build writes.
    {"o", FlagKind::Output},
    {"output", FlagKind::Output, Long},
    // What is glued to it chooses what is listed; the file stands behind it.
    {"l", FlagKind::DropWithValue, GluedAndNext, FlagFile::Written},
    {"dependencies", FlagKind::DropWithValue, FlagFile::Written},
    {"dependencies=", FlagKind::DropWithValue, GluedAndNext, FlagFile::Written},
    {"diagnostics_tables", FlagKind::DropWithValue, Long, FlagFile::Written},
    {"stack_usage", FlagKind::Drop},
    {"header_context", FlagKind::Drop},
    {"public_equ", FlagKind::KeepWithValue, Long},

    // How the tools of the environment talk, and how loud.
    {"IDE2", FlagKind::Drop},
    {"IDE3", FlagKind::Drop},
    {"remarks", FlagKind::Drop},
    {"warnings_are_errors", FlagKind::Drop},
    {"silent", FlagKind::Drop},
    {"S", FlagKind::Drop},
    {"no_warnings", FlagKind::Drop},
    {"error_limit", FlagKind::DropWithValue, Long},

    // The encodings of the sources and of the preprocessed text are those of the preprocessing command.
    {"enable_multibytes", FlagKind::Drop},
    {"utf8_text_in", FlagKind::Drop},
    {"utf8_text_out", FlagKind::Drop},
    {"source_encoding", FlagKind::DropWithValue, Long},
    {"text_out", FlagKind::DropWithValue, Long},
    {"no_bom", FlagKind::Drop},

    // Several sources compiled as one: each is a unit of its own here.
    {"mfc", FlagKind::Drop},
    {"discard_unused_publics", FlagKind::Drop},

    // What has a value of its own, which is no input.
    {"cpu", FlagKind::KeepWithValue, Long},
    {"fpu", FlagKind::KeepWithValue, Long},
    {"cpu_mode", FlagKind::KeepWithValue, Long},
    {"endian", FlagKind::KeepWithValue, Long},
    {"dlib_config", FlagKind::KeepWithValue, Long},
    {"diag_error", FlagKind::KeepWithValue, Long},
    {"diag_remark", FlagKind::KeepWithValue, Long},
    {"diag_suppress", FlagKind::KeepWithValue, Long},
    {"diag_warning", FlagKind::KeepWithValue, Long},
    {"lock_regs", FlagKind::KeepWithValue, Long},
    {"section", FlagKind::KeepWithValue, Long},
};
// clang-format on
static_assert(RowsAreSound(IarFlags), "a name stands twice, or a flag is kept that makes the compiler write a file");

} // namespace

IARArm_v7_OrOlder::IARArm_v7_OrOlder() : IARArm_v7_OrOlder(CompilerType::IARArm_v7_OrOlder) {}

IARArm_v7_OrOlder::IARArm_v7_OrOlder(CompilerType type)
    : Compiler(type, "iar", IarIntroducers, FlagTable({IarFlags})) {}

std::vector<std::string> IARArm_v7_OrOlder::BuildPreprocessCommand(const ParsedCommand& command,
                                                                   const std::string& outputPath) const {
    std::vector<std::string> words = BeginPreprocessCommand(command, 6);
    words.insert(words.end(), {"--no_warnings", "--silent", "--enable_multibytes", "--preprocess=nl", outputPath,
                               WithFolder(command.sourceFile)});
    return words;
}

void IARArm_v7_OrOlder::FinishParse(ParsedCommand& command) const {
    command.platformWord = "arm";
}

OptionFileSyntax IARArm_v7_OrOlder::OptionFiles() const noexcept {
    return {.flags = IarOptionFiles, .cComments = true};
}

} // namespace Orvanta
