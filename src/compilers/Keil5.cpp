#include "compilers/Keil5.h"

namespace Orvanta {

namespace {

constexpr std::string_view Keil5Introducers[] = {"-", "--"};
constexpr OptionFileFlag Keil5OptionFiles[] = {
    {"--via", OptionFileFlag::Value::EqualsOrNext},
};
constexpr FlagValue Long = FlagValue::Long;

// Of the rows that fit, the one with the longest name wins; their order is for the reader. A flag without a row is
// kept.
// clang-format off
constexpr FlagRow Keil5Flags[] = {
    // Languages. The last of these holds for every source, whatever its extension.
    {"c90", FlagKind::StandardC90, FlagEffect::NamesC},
    {"c99", FlagKind::StandardC99, FlagEffect::NamesC},
    // Without a number, armcc's C++ is that of 2003.
    {"cpp", FlagKind::StandardCpp03, FlagEffect::NamesCpp},
    {"cpp11", FlagKind::StandardCpp11, FlagEffect::NamesCpp},
    {"signed_chars", FlagKind::Keep, FlagEffect::SignedChar},
    {"unsigned_chars", FlagKind::Keep, FlagEffect::UnsignedChar},
    {"gnu", FlagKind::Keep, FlagEffect::GnuExtensions},
    {"old_style_preprocessing", FlagKind::Keep}, // the build reads the source in this way, too

    // Folders, files and macros.
    // Several folders may stand in one value.
    {"I", FlagKind::UserInclude, FlagValue::List},
    {"J", FlagKind::SystemInclude, FlagValue::List},
    {"preinclude", FlagKind::ForcedInclude, Long},
    {"include", FlagKind::ForcedInclude, Long},
    {"D", FlagKind::Define},
    {"U", FlagKind::Undefine},

    // What is done with the sources.
    {"E", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"P", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"list_macros", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"M", FlagKind::Drop, FlagEffect::ListsDependencies},
    {"C", FlagKind::Drop}, // comments in the preprocessed text
    {"help", FlagKind::NoCompilation},
    {"version_number", FlagKind::NoCompilation},
    {"vsn", FlagKind::NoCompilation},

    // What the build writes.
    {"o", FlagKind::Output},
    {"output_dir", FlagKind::DropWithValue, Long, FlagFile::Written},
    {"omf_browse", FlagKind::DropWithValue, Long, FlagFile::Written},
    {"depend", FlagKind::DropWithValue, Long, FlagFile::Written},
    {"depend_dir", FlagKind::DropWithValue, Long, FlagFile::Written},
    {"depend_format", FlagKind::DropWithValue, Long},
    {"depend_target", FlagKind::DropWithValue, Long},
    {"depend_single_line", FlagKind::Drop},
    {"no_depend_single_line", FlagKind::Drop},
    {"depend_system_headers", FlagKind::Drop},
    {"no_depend_system_headers", FlagKind::Drop},
    {"ignore_missing_headers", FlagKind::Drop},
    {"phony_targets", FlagKind::Drop},
    {"no_phony_targets", FlagKind::Drop},
    {"md", FlagKind::Drop, FlagFile::Written},
    {"asm", FlagKind::Drop, FlagFile::Written},
    {"asm_dir", FlagKind::DropWithValue, Long, FlagFile::Written},
    {"interleave", FlagKind::Drop},
    {"list", FlagKind::Drop, FlagFile::Written},
    {"list_dir", FlagKind::DropWithValue, Long, FlagFile::Written},
    {"errors", FlagKind::DropWithValue, Long, FlagFile::Written},
    {"feedback", FlagKind::DropWithValue, Long, FlagFile::Written},
    {"profile", FlagKind::DropWithValue, Long, FlagFile::Written},

    // Precompiled headers: the unit is preprocessed from the headers that they were made from.
    {"pch", FlagKind::Drop},
    {"pch_dir", FlagKind::DropWithValue, Long},
    {"pch_messages", FlagKind::Drop},
    {"pch_verbose", FlagKind::Drop},
    {"create_pch", FlagKind::DropWithValue, Long},
    {"use_pch", FlagKind::DropWithValue, Long},

    // Hand arguments on to the assembler and the linker.
    {"A", FlagKind::DropWithValue},
    {"L", FlagKind::DropWithValue},

    // What has a value of its own, which is no input.
    {"cpu", FlagKind::KeepWithValue, Long},
    {"fpu", FlagKind::KeepWithValue, Long},
    {"apcs", FlagKind::KeepWithValue, Long},
    {"arch", FlagKind::KeepWithValue, Long},
    {"device", FlagKind::KeepWithValue, Long},
    {"bss_threshold", FlagKind::KeepWithValue, Long},
    {"compatible", FlagKind::KeepWithValue, Long},
    {"diag_error", FlagKind::KeepWithValue, Long},
    {"diag_remark", FlagKind::KeepWithValue, Long},
    {"diag_style", FlagKind::KeepWithValue, Long},
    {"diag_suppress", FlagKind::KeepWithValue, Long},
    {"diag_warning", FlagKind::KeepWithValue, Long},
    {"fpmode", FlagKind::KeepWithValue, Long},
    {"gnu_version", FlagKind::KeepWithValue, Long},
    {"library_type", FlagKind::KeepWithValue, Long},
    {"locale", FlagKind::KeepWithValue, Long},
    {"message_locale", FlagKind::KeepWithValue, Long},
    {"min_array_alignment", FlagKind::KeepWithValue, Long},
    {"pointer_alignment", FlagKind::KeepWithValue, Long},
    {"project", FlagKind::KeepWithValue, Long},
    {"reinitialize_workdir", FlagKind::Keep},
    {"workdir", FlagKind::KeepWithValue, Long},
};
// clang-format on
static_assert(RowsAreSound(Keil5Flags), "a name stands twice, or a flag is kept that makes the compiler write a file");

} // namespace

Keil5::Keil5() : Keil5(CompilerType::Keil5, "keil5") {}

Keil5::Keil5(CompilerType type, std::string_view name)
    : Compiler(type, name, Keil5Introducers, FlagTable({Keil5Flags})) {}

std::vector<std::string> Keil5::BuildPreprocessCommand(const ParsedCommand& command,
                                                       const std::string& outputPath) const {
    std::vector<std::string> words = BeginPreprocessCommand(command, 5);
    words.insert(words.end(), {"-W", "-E", "-o", outputPath, WithFolder(command.sourceFile)});
    return words;
}

void Keil5::FinishParse(ParsedCommand& command) const {
    command.platformWord = "arm";
    // Decided here and not by the compiler's name: one program has both modes.
    if (command.effects.Has(FlagEffect::GnuExtensions)) {
        command.compilerType = CompilerType::Keil5Gnu;
    }
}

OptionFileSyntax Keil5::OptionFiles() const noexcept {
    return {.flags = Keil5OptionFiles, .lineComments = true, .viaQuotes = true};
}

} // namespace Orvanta
