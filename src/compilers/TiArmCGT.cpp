#include "compilers/TiArmCGT.h"

#include "platform/Paths.h"

namespace Orvanta {

namespace {

constexpr std::string_view TiIntroducers[] = {"-", "--"};
constexpr OptionFileFlag TiOptionFiles[] = {
    {"--cmd_file", OptionFileFlag::Value::EqualsOrNext},
    {"-@=", OptionFileFlag::Value::Glued},
    {"-@", OptionFileFlag::Value::GluedOrNext},
};
constexpr FlagValue Glued = FlagValue::Glued;
constexpr FlagValue Short = FlagValue::ShortGlued;
constexpr FlagValue Long = FlagValue::Long;

// Most flags have a long name and a short one. Of the rows that fit, the one with the longest name wins; their order is
// for the reader. A flag without a row is kept.
// clang-format off
constexpr FlagRow TiFlags[] = {
    // These stop after preprocessing, unless "preproc_with_compile" stands with them.
    {"preproc_only", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"ppo", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"preproc_with_comment", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"ppc", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"preproc_with_line", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"ppl", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"preproc_dependency", FlagKind::Drop, FlagEffect::ListsDependencies},
    {"preproc_dependency=", FlagKind::Drop, FlagEffect::ListsDependencies},
    {"ppd", FlagKind::Drop, FlagEffect::ListsDependencies},
    {"ppd=", FlagKind::Drop, FlagEffect::ListsDependencies},
    {"preproc_includes", FlagKind::Drop, FlagEffect::ListsDependencies},
    {"preproc_includes=", FlagKind::Drop, FlagEffect::ListsDependencies},
    {"ppi", FlagKind::Drop, FlagEffect::ListsDependencies},
    {"ppi=", FlagKind::Drop, FlagEffect::ListsDependencies},
    {"preproc_macros", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"preproc_macros=", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"ppm", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"ppm=", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"preproc_with_compile", FlagKind::Drop, FlagEffect::Compiles},
    {"ppa", FlagKind::Drop, FlagEffect::Compiles},
    {"help", FlagKind::NoCompilation},
    {"h", FlagKind::NoCompilation},
    {"compiler_revision", FlagKind::NoCompilation},

    // Sources whose language the flag tells, not the extension.
    {"c_file=", FlagKind::SourceOfLanguage, FlagEffect::NamesC},
    {"fc", FlagKind::SourceOfLanguage, FlagEffect::NamesC, Short},
    {"fc=", FlagKind::SourceOfLanguage, FlagEffect::NamesC},
    {"cpp_file=", FlagKind::SourceOfLanguage, FlagEffect::NamesCpp},
    {"fp", FlagKind::SourceOfLanguage, FlagEffect::NamesCpp, Short},
    {"fp=", FlagKind::SourceOfLanguage, FlagEffect::NamesCpp},
    {"asm_file=", FlagKind::SourceOfLanguage, FlagEffect::NamesAssembly},
    {"fa", FlagKind::SourceOfLanguage, FlagEffect::NamesAssembly, Short},
    {"fa=", FlagKind::SourceOfLanguage, FlagEffect::NamesAssembly},
    {"cpp_default", FlagKind::Keep, FlagEffect::NamesCpp},
    {"fg", FlagKind::Keep, FlagEffect::NamesCpp},

    // Languages.
    {"c89", FlagKind::StandardC90},
    {"c99", FlagKind::StandardC99},
    {"c11", FlagKind::StandardC11},
    {"c++03", FlagKind::StandardCpp03},
    {"c++14", FlagKind::StandardCpp14},
    {"plain_char=signed", FlagKind::Keep, FlagEffect::SignedChar},
    {"mc", FlagKind::Keep, FlagEffect::SignedChar},
    {"plain_char=unsigned", FlagKind::Keep, FlagEffect::UnsignedChar},
    {"signed_chars", FlagKind::Keep, FlagEffect::SignedChar},
    {"unsigned_chars", FlagKind::Keep, FlagEffect::UnsignedChar},

    // Folders, files and macros.
    {"include_path=", FlagKind::UserInclude},
    {"include_path", FlagKind::UserInclude, Long},
    {"I", FlagKind::UserInclude},
    {"I=", FlagKind::UserInclude},
    {"preinclude", FlagKind::ForcedInclude, Long},
    {"define", FlagKind::Define, Long},
    {"D", FlagKind::Define},
    {"D=", FlagKind::Define},
    {"undefine", FlagKind::Undefine, Long},
    {"U", FlagKind::Undefine},
    {"U=", FlagKind::Undefine},

    // What the build writes.
    {"output_file", FlagKind::Output, Long},
    {"fe", FlagKind::Output, Short},
    {"fe=", FlagKind::Output},
    {"obj_directory", FlagKind::DropWithValue, Long},
    {"fr", FlagKind::Drop, Short},
    {"asm_directory", FlagKind::DropWithValue, Long},
    {"fs", FlagKind::Drop, Short},
    {"list_directory", FlagKind::DropWithValue, Long},
    {"ff", FlagKind::Drop, Short},
    {"temp_directory", FlagKind::DropWithValue, Long},
    {"ft", FlagKind::Drop, Short},
    {"pp_directory", FlagKind::DropWithValue, Long},
    {"abs_directory", FlagKind::DropWithValue, Long},
    {"fb", FlagKind::Drop, Short},
    {"obj_extension=", FlagKind::Drop},
    {"eo", FlagKind::Drop, Short},
    {"keep_asm", FlagKind::Drop, FlagFile::Written},
    {"k", FlagKind::Drop, FlagFile::Written},
    {"asm_listing", FlagKind::Drop, FlagFile::Written},
    {"al", FlagKind::Drop, FlagFile::Written},
    {"asm_cross_reference_listing", FlagKind::Drop, FlagFile::Written},
    {"ax", FlagKind::Drop, FlagFile::Written},
    {"asm_dependency", FlagKind::DropWithValue, Long, FlagFile::Written},
    {"apd", FlagKind::Drop, FlagFile::Written},
    {"asm_includes", FlagKind::DropWithValue, Long, FlagFile::Written},
    {"api", FlagKind::Drop, FlagFile::Written},
    {"gen_preprocessor_listing", FlagKind::Drop, FlagFile::Written},
    {"gen_cross_reference_listing", FlagKind::Drop, FlagFile::Written},
    {"write_diagnostics_file", FlagKind::Drop, FlagFile::Written},
    {"pdf", FlagKind::Drop, FlagFile::Written},
    {"emit_warnings_as_errors", FlagKind::Drop}, // a warning must not fail the unit
    {"pdew", FlagKind::Drop},

    // Precompiled headers: the unit is preprocessed from the headers that they were made from.
    {"pch", FlagKind::Drop},
    {"pch_dir", FlagKind::DropWithValue, Long},
    {"pch_verbose", FlagKind::Drop},
    {"create_pch", FlagKind::DropWithValue, Long},
    {"use_pch", FlagKind::DropWithValue, Long},

    // Everything behind them is the linker's.
    {"run_linker", FlagKind::LinkerPart},
    {"z", FlagKind::LinkerPart},

    // What has a value of its own, which is no input.
    {"silicon_version", FlagKind::KeepWithValue, Long},
    {"float_support", FlagKind::KeepWithValue, Long},
    {"code_state", FlagKind::KeepWithValue, Long},
    {"endian", FlagKind::KeepWithValue, Long},
    {"abi", FlagKind::KeepWithValue, Long},
    {"diag_error", FlagKind::KeepWithValue, Long},
    {"diag_remark", FlagKind::KeepWithValue, Long},
    {"diag_suppress", FlagKind::KeepWithValue, Long},
    {"diag_warning", FlagKind::KeepWithValue, Long},
    {"diag_wrap", FlagKind::KeepWithValue, Long},
    {"c_extension", FlagKind::KeepWithValue, Long},
    {"cpp_extension", FlagKind::KeepWithValue, Long},
    {"asm_extension", FlagKind::KeepWithValue, Long},
    {"ec", FlagKind::Keep, Short},
    {"ep", FlagKind::Keep, Short},
    {"ea", FlagKind::Keep, Short},
    {"opt_level", FlagKind::KeepWithValue, Long},
    {"symdebug:", FlagKind::Keep, Glued},
};
// clang-format on
static_assert(RowsAreSound(TiFlags), "a name stands twice, or a flag is kept that makes the compiler write a file");

} // namespace

TiArmCGT::TiArmCGT() : Compiler(CompilerType::TiArmCGT, "ti_arm_cgt", TiIntroducers, FlagTable({TiFlags})) {}

std::vector<std::string> TiArmCGT::BuildPreprocessCommand(const ParsedCommand& command,
                                                          const std::string& outputPath) const {
    std::vector<std::string> words = BeginPreprocessCommand(command, 5);
    words.insert(words.end(), {"--no_warnings", "--preproc_only", "--preproc_with_line", "--output_file=" + outputPath,
                               WithFolder(command.sourceFile)});
    return words;
}

void TiArmCGT::FinishParse(ParsedCommand& command) const {
    command.platformWord = "arm";
}

// In the preprocessing command the source stands bare, and its extension counts again.
void TiArmCGT::StateKindOfSource(InputKind kind, ParsedCommand& command) const {
    std::vector<std::string>& kept = command.keptArguments;
    const InputKind byExtension = InputKindByExtension(command.sourceFile);
    const std::string_view extension = ExtensionOf(command.sourceFile);
    // Without an extension there is none that could be given another meaning.
    if (kind == byExtension || extension.size() < 2) {
        return;
    }
    if (kind == InputKind::Cpp && byExtension == InputKind::C) {
        // Otherwise a flag that is kept says so already.
        if (!command.effects.Has(FlagEffect::NamesCpp)) {
            kept.emplace_back("--cpp_default");
        }
        return;
    }
    kept.push_back((kind == InputKind::C ? "--c_extension=" : "--cpp_extension=") + std::string(extension.substr(1)));
}

OptionFileSyntax TiArmCGT::OptionFiles() const noexcept {
    return {.flags = TiOptionFiles, .lineComments = true, .cComments = true};
}

} // namespace Orvanta
