#include "compilers/Cl.h"

namespace Orvanta {

namespace {

// The core knows clang-cl by this name, too.
constexpr std::string_view ClName = "visualcpp";
constexpr std::string_view ClIntroducers[] = {"/", "-", "--"};
constexpr FlagValue Glued = FlagValue::Glued;

// Of the rows that fit, the one with the longest name wins; their order is for the reader. A flag without a row is
// kept.
// clang-format off
constexpr FlagRow ClFlags[] = {
    {"std:c++14", FlagKind::StandardCpp14},
    {"std:c++17", FlagKind::StandardCpp17},
    {"std:c++20", FlagKind::StandardCpp20},
    // The newest standards, as far as the core has words for them.
    {"std:c++latest", FlagKind::StandardCpp20},
    {"std:c11", FlagKind::StandardC11},
    {"std:c17", FlagKind::StandardC17},
    {"std:clatest", FlagKind::StandardC2x},
    // Every standard that has no row of its own.
    {"std:", FlagKind::Keep, FlagEffect::UnknownStandard, Glued},
    {"FD", FlagKind::Drop},
    {"WX", FlagKind::Drop},
    {"Tc", FlagKind::SourceOfLanguage, FlagEffect::NamesC},
    {"Tp", FlagKind::SourceOfLanguage, FlagEffect::NamesCpp},
    // Behind it nothing is the compiler's, whatever it looks like.
    {"link", FlagKind::LinkerPart},

    // They hold for every source, wherever they stand, and are said again beside it.
    {"TC", FlagKind::Drop, FlagEffect::NamesC},
    {"TP", FlagKind::Drop, FlagEffect::NamesCpp},

    // cl has no flag that takes it back.
    {"J", FlagKind::Keep, FlagEffect::UnsignedChar},
    {"await", FlagKind::Keep, FlagEffect::Coroutines},
    {"await:strict", FlagKind::Keep, FlagEffect::Coroutines},

    // These suppress compilation, also beside "c".
    {"E", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"EP", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"P", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"scanDependencies", FlagKind::DropWithValue, FlagEffect::ListsDependencies},
    {"sourceDependencies:directives", FlagKind::DropWithValue, FlagEffect::ListsDependencies},
    {"exportHeader", FlagKind::Drop, FlagEffect::MakesPrecompiledHeader},

    // Information instead of work.
    {"?", FlagKind::NoCompilation},
    {"help", FlagKind::NoCompilation},
    {"HELP", FlagKind::NoCompilation},

    // Folders, files and macros.
    {"I", FlagKind::UserInclude},
    {"external:I", FlagKind::SystemInclude},
    {"D", FlagKind::Define},
    {"U", FlagKind::Undefine},
    {"FI", FlagKind::ForcedInclude},
    {"AI", FlagKind::KeepWithValue}, // metadata, not headers
    {"FU", FlagKind::KeepWithValue},
    {"reference", FlagKind::KeepWithValue},
    {"ifcSearchDir", FlagKind::KeepWithValue},
    {"stdIfcDir", FlagKind::KeepWithValue},
    {"headerUnit", FlagKind::KeepWithValue},
    {"headerUnit:quote", FlagKind::KeepWithValue},
    {"headerUnit:angle", FlagKind::KeepWithValue},
    {"headerName:quote", FlagKind::KeepWithValue},
    {"headerName:angle", FlagKind::KeepWithValue},

    // Precompiled headers: the unit is preprocessed from the headers that they were made from.
    {"Yc", FlagKind::Drop, Glued},
    {"Yu", FlagKind::Drop, Glued},
    {"Yl", FlagKind::Drop, Glued},
    {"Yd", FlagKind::Drop},
    {"YX", FlagKind::Drop, Glued},
    {"Y-", FlagKind::Drop},
    {"Fp", FlagKind::Drop, Glued},
    {"Fp:", FlagKind::DropWithValue},

    // What the build writes. Only the form with a colon may have its name in an argument of its own.
    {"Fo", FlagKind::Output, Glued},
    {"Fo:", FlagKind::Output},
    {"o", FlagKind::Output},
    {"Fa", FlagKind::Drop, Glued, FlagFile::Written},
    {"Fa:", FlagKind::DropWithValue, FlagFile::Written},
    {"FA", FlagKind::Drop, FlagFile::Written},
    {"FAc", FlagKind::Drop, FlagFile::Written},
    {"FAcs", FlagKind::Drop, FlagFile::Written},
    {"FAcsu", FlagKind::Drop, FlagFile::Written},
    {"FAs", FlagKind::Drop, FlagFile::Written},
    {"FAsu", FlagKind::Drop, FlagFile::Written},
    {"FAu", FlagKind::Drop, FlagFile::Written},
    {"Fd", FlagKind::Drop, Glued, FlagFile::Written},
    {"Fd:", FlagKind::DropWithValue, FlagFile::Written},
    {"Fe", FlagKind::Drop, Glued, FlagFile::Written},
    {"Fe:", FlagKind::DropWithValue, FlagFile::Written},
    {"Fi", FlagKind::Drop, Glued, FlagFile::Written},
    {"Fi:", FlagKind::DropWithValue, FlagFile::Written},
    {"Fm", FlagKind::Drop, Glued, FlagFile::Written},
    {"Fm:", FlagKind::DropWithValue, FlagFile::Written},
    {"FR", FlagKind::Drop, Glued, FlagFile::Written},
    {"FR:", FlagKind::DropWithValue, FlagFile::Written},
    {"Fr", FlagKind::Drop, Glued, FlagFile::Written},
    {"Fr:", FlagKind::DropWithValue, FlagFile::Written},
    {"Fx", FlagKind::Drop, FlagFile::Written},
    {"doc", FlagKind::Drop, FlagFile::Written},
    {"doc:", FlagKind::Drop, Glued, FlagFile::Written},
    {"ifcOutput", FlagKind::DropWithValue, FlagFile::Written},
    {"sourceDependencies", FlagKind::DropWithValue, FlagFile::Written},
    {"analyze:log", FlagKind::DropWithValue, FlagFile::Written},
    {"analyze:plugin", FlagKind::DropWithValue},
    {"analyze:ruleset", FlagKind::DropWithValue},
    {"experimental:log", FlagKind::DropWithValue, FlagFile::Written},

    // Code generation, and the tools that belong to it.
    {"O", FlagKind::Drop, Glued},
    {"Zi", FlagKind::Drop},
    {"ZI", FlagKind::Drop},
    {"Z7", FlagKind::Drop},
    {"Zs", FlagKind::Drop},
    {"FS", FlagKind::Drop},
    {"Gm", FlagKind::Drop},
    {"Gm-", FlagKind::Drop},
    // Compiles several sources at a time: a unit has one.
    {"MP", FlagKind::Drop, Glued},
    {"F", FlagKind::DropWithValue}, // the size of the stack

    // What would change the preprocessed text, or leave out its line markers.
    {"C", FlagKind::Drop},
    {"PD", FlagKind::Drop},
    {"PH", FlagKind::Drop},
    {"d1PP", FlagKind::Drop},

    // What would fill the outputs, or make a warning fail the unit.
    {"showIncludes", FlagKind::Drop},
    {"showIncludes:user", FlagKind::Drop},
    {"WX-", FlagKind::Drop},
    {"we", FlagKind::Drop, Glued},

    // Begin like a flag with a value, and have another meaning.
    {"FC", FlagKind::Keep},
    {"FT", FlagKind::Keep},
    {"openmp", FlagKind::Keep, Glued},
    {"options:strict", FlagKind::Keep},
};
// clang-format on
static_assert(RowsAreSound(ClFlags), "a name stands twice, or a flag is kept that makes the compiler write a file");

} // namespace

Cl::Cl(LauncherWords launcher) : Cl(CompilerType::Cl, {}, launcher) {}

Cl::Cl(CompilerType type, std::span<const FlagRow> extension, LauncherWords launcher)
    : Compiler(type, ClName, ClIntroducers, FlagTable({extension, ClFlags})), targets_(launcher) {}

std::vector<std::string> Cl::BuildPreprocessCommand(const ParsedCommand& command, const std::string& outputPath) const {
    std::vector<std::string> words = BeginPreprocessCommand(command, 4);
    words.emplace_back("/P");
    // Glued: what stands in an argument of its own would be a source.
    words.push_back("/Fi" + outputPath);
    AddSource(command.sourceFile, words);
    return words;
}

void Cl::AddSource(const std::string& source, std::vector<std::string>& words) const {
    words.push_back(WithFolder(source));
}

void Cl::FinishParse(ParsedCommand& command) const {
    // The words of Visual Studio's platforms.
    command.platformWord = TargetOf(command) == TargetBits::Bits64 ? "x64" : "Win32";
}

InputKind Cl::KindOfInput(std::string_view path, std::optional<InputKind> ofAll) const {
    return ofAll && !IsWindowsLinkerFile(path) ? *ofAll : InputKindByWindowsExtension(path);
}

// The source stands bare in the preprocessing command, whatever flag named it.
void Cl::StateKindOfSource(InputKind /*kind*/, ParsedCommand& command) const {
    if (command.language) {
        command.keptArguments.emplace_back(command.language == Language::C ? "/TC" : "/TP");
    }
}

TargetBits Cl::TargetOf(const ParsedCommand& command) const {
    return targets_.TargetOf(command.compilerPath, CompilerTargets::PathMeaning::Target);
}

} // namespace Orvanta
