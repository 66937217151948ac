#include "compilers/Keil5.h"

#include <algorithm>

namespace Orvanta {

namespace {

constexpr std::string_view Keil5Introducers[] = {"-", "--"};
constexpr OptionFileFlag Keil5OptionFiles[] = {
    {"--via", OptionFileFlag::Value::EqualsOrNext},
};
constexpr FlagEffect NoEffect = FlagEffect::None;
constexpr FlagValue Long = FlagValue::Long;

// Of the rows that fit, the one with the longest name wins; their order is for the reader. A flag without a row is
// kept.
// clang-format off
constexpr FlagRow Keil5Flags[] = {
    // Languages. The last of these holds for every source, whatever its extension.
    {"c90", FlagKind::StandardC90, FlagEffect::NamesC},
    {"c99", FlagKind::StandardC99, FlagEffect::NamesC},
    {"cpp", FlagKind::StandardCpp03, FlagEffect::NamesCpp},
    {"cpp11", FlagKind::StandardCpp11, FlagEffect::NamesCpp},
    {"signed_chars", FlagKind::Keep, FlagEffect::SignedChar},
    {"unsigned_chars", FlagKind::Keep, FlagEffect::UnsignedChar},
    {"old_style_preprocessing", FlagKind::Keep}, // the build reads the source in this way, too

    // Folders, files and macros.
    {"I", FlagKind::UserInclude, NoEffect, FlagValue::List},
    {"J", FlagKind::SystemInclude, NoEffect, FlagValue::List},
    {"preinclude", FlagKind::ForcedInclude, NoEffect, Long},
    {"include", FlagKind::ForcedInclude, NoEffect, Long},
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
    {"output_dir", FlagKind::DropWithValue, NoEffect, Long},
    {"omf_browse", FlagKind::DropWithValue, NoEffect, Long},
    {"depend", FlagKind::DropWithValue, NoEffect, Long},
    {"depend_dir", FlagKind::DropWithValue, NoEffect, Long},
    {"depend_format", FlagKind::DropWithValue, NoEffect, Long},
    {"depend_target", FlagKind::DropWithValue, NoEffect, Long},
    {"depend_single_line", FlagKind::Drop},
    {"no_depend_single_line", FlagKind::Drop},
    {"depend_system_headers", FlagKind::Drop},
    {"no_depend_system_headers", FlagKind::Drop},
    {"ignore_missing_headers", FlagKind::Drop},
    {"phony_targets", FlagKind::Drop},
    {"no_phony_targets", FlagKind::Drop},
    {"md", FlagKind::Drop},
    {"asm", FlagKind::Drop},
    {"asm_dir", FlagKind::DropWithValue, NoEffect, Long},
    {"interleave", FlagKind::Drop},
    {"list", FlagKind::Drop},
    {"list_dir", FlagKind::DropWithValue, NoEffect, Long},
    {"errors", FlagKind::DropWithValue, NoEffect, Long},
    {"feedback", FlagKind::DropWithValue, NoEffect, Long},
    {"profile", FlagKind::DropWithValue, NoEffect, Long},

    // Precompiled headers: the unit is preprocessed from the headers that they were made from.
    {"pch", FlagKind::Drop},
    {"pch_dir", FlagKind::DropWithValue, NoEffect, Long},
    {"pch_messages", FlagKind::Drop},
    {"pch_verbose", FlagKind::Drop},
    {"create_pch", FlagKind::DropWithValue, NoEffect, Long},
    {"use_pch", FlagKind::DropWithValue, NoEffect, Long},

    // Hand arguments on to the assembler and the linker.
    {"A", FlagKind::DropWithValue},
    {"L", FlagKind::DropWithValue},

    // What has a value of its own, which is no input.
    {"cpu", FlagKind::KeepWithValue, NoEffect, Long},
    {"fpu", FlagKind::KeepWithValue, NoEffect, Long},
    {"apcs", FlagKind::KeepWithValue, NoEffect, Long},
    {"arch", FlagKind::KeepWithValue, NoEffect, Long},
    {"device", FlagKind::KeepWithValue, NoEffect, Long},
    {"bss_threshold", FlagKind::KeepWithValue, NoEffect, Long},
    {"compatible", FlagKind::KeepWithValue, NoEffect, Long},
    {"diag_error", FlagKind::KeepWithValue, NoEffect, Long},
    {"diag_remark", FlagKind::KeepWithValue, NoEffect, Long},
    {"diag_style", FlagKind::KeepWithValue, NoEffect, Long},
    {"diag_suppress", FlagKind::KeepWithValue, NoEffect, Long},
    {"diag_warning", FlagKind::KeepWithValue, NoEffect, Long},
    {"fpmode", FlagKind::KeepWithValue, NoEffect, Long},
    {"gnu_version", FlagKind::KeepWithValue, NoEffect, Long},
    {"library_type", FlagKind::KeepWithValue, NoEffect, Long},
    {"locale", FlagKind::KeepWithValue, NoEffect, Long},
    {"message_locale", FlagKind::KeepWithValue, NoEffect, Long},
    {"min_array_alignment", FlagKind::KeepWithValue, NoEffect, Long},
    {"pointer_alignment", FlagKind::KeepWithValue, NoEffect, Long},
    {"project", FlagKind::KeepWithValue, NoEffect, Long},
    {"reinitialize_workdir", FlagKind::Keep},
    {"workdir", FlagKind::KeepWithValue, NoEffect, Long},
};
// clang-format on
static_assert(NamesAreUnique(Keil5Flags), "a name stands twice: its second row would never be read");

} // namespace

Keil5::Keil5() : Keil5(CompilerType::Keil5, "keil5") {}

Keil5::Keil5(CompilerType type, std::string_view name)
    : Compiler(type, name, Keil5Introducers, FlagTable(Keil5Flags)) {}

std::vector<std::string> Keil5::BuildPreprocessCommand(const ParsedCommand& command,
                                                       const std::string& outputPath) const {
    std::vector<std::string> words = BeginPreprocessCommand(command, 5);
    words.insert(words.end(), {"-W", "-E", "-o", outputPath, WithFolder(command.sourceFile)});
    return words;
}

void Keil5::FinishParse(std::span<const std::string> arguments, ParsedCommand& command) const {
    command.platformWord = "arm";
    if (std::find(arguments.begin(), arguments.end(), "--gnu") != arguments.end()) {
        command.compilerType = CompilerType::Keil5Gnu;
    }
}

OptionFileSyntax Keil5::OptionFiles() const noexcept {
    return {.flags = Keil5OptionFiles, .lineComments = true, .viaQuotes = true};
}

} // namespace Orvanta
