#include "compilers/Cl.h"

#include <algorithm>

namespace Orvanta {

namespace {

constexpr std::string_view ClName = "visualcpp";
constexpr std::string_view ClIntroducers[] = {"/", "-", "--"};
constexpr FlagValue Glued = FlagValue::Glued;
constexpr FlagEffect NoEffect = FlagEffect::None;

// Of the rows that fit, the one with the longest name wins; their order is for the reader. A flag without a row is
// kept.
// clang-format off
constexpr FlagRow ClFlags[] = {
    {"std:c++14", FlagKind::StandardCpp14},
    {"std:c++17", FlagKind::StandardCpp17},
    {"std:c++20", FlagKind::StandardCpp20},
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
    {"link", FlagKind::LinkerPart},

    // Said again beside the source.
    {"TC", FlagKind::Drop},
    {"TP", FlagKind::Drop},

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
    {"Yc", FlagKind::Drop, NoEffect, Glued},
    {"Yu", FlagKind::Drop, NoEffect, Glued},
    {"Yl", FlagKind::Drop, NoEffect, Glued},
    {"Yd", FlagKind::Drop},
    {"YX", FlagKind::Drop, NoEffect, Glued},
    {"Y-", FlagKind::Drop},
    {"Fp", FlagKind::Drop, NoEffect, Glued},
    {"Fp:", FlagKind::DropWithValue},

    // What the build writes. Only the form with a colon may have its name in an argument of its own.
    {"Fo", FlagKind::Output, NoEffect, Glued},
    {"Fo:", FlagKind::Output},
    {"o", FlagKind::Output},
    {"Fa", FlagKind::Drop, NoEffect, Glued},
    {"Fa:", FlagKind::DropWithValue},
    {"FA", FlagKind::Drop},
    {"FAc", FlagKind::Drop},
    {"FAcs", FlagKind::Drop},
    {"FAcsu", FlagKind::Drop},
    {"FAs", FlagKind::Drop},
    {"FAsu", FlagKind::Drop},
    {"FAu", FlagKind::Drop},
    {"Fd", FlagKind::Drop, NoEffect, Glued},
    {"Fd:", FlagKind::DropWithValue},
    {"Fe", FlagKind::Drop, NoEffect, Glued},
    {"Fe:", FlagKind::DropWithValue},
    {"Fi", FlagKind::Drop, NoEffect, Glued},
    {"Fi:", FlagKind::DropWithValue},
    {"Fm", FlagKind::Drop, NoEffect, Glued},
    {"Fm:", FlagKind::DropWithValue},
    {"FR", FlagKind::Drop, NoEffect, Glued},
    {"FR:", FlagKind::DropWithValue},
    {"Fr", FlagKind::Drop, NoEffect, Glued},
    {"Fr:", FlagKind::DropWithValue},
    {"Fx", FlagKind::Drop},
    {"doc", FlagKind::Drop},
    {"doc:", FlagKind::Drop, NoEffect, Glued},
    {"ifcOutput", FlagKind::DropWithValue},
    {"sourceDependencies", FlagKind::DropWithValue},
    {"analyze:log", FlagKind::DropWithValue},
    {"analyze:plugin", FlagKind::DropWithValue},
    {"analyze:ruleset", FlagKind::DropWithValue},
    {"experimental:log", FlagKind::DropWithValue},

    // Code generation, and the tools that belong to it.
    {"O", FlagKind::Drop, NoEffect, Glued},
    {"Zi", FlagKind::Drop},
    {"ZI", FlagKind::Drop},
    {"Z7", FlagKind::Drop},
    {"Zs", FlagKind::Drop},
    {"FS", FlagKind::Drop},
    {"Gm", FlagKind::Drop},
    {"Gm-", FlagKind::Drop},
    {"MP", FlagKind::Drop, NoEffect, Glued},
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
    {"we", FlagKind::Drop, NoEffect, Glued},

    // Begin like a flag with a value, and have another meaning.
    {"FC", FlagKind::Keep},
    {"FT", FlagKind::Keep},
    {"openmp", FlagKind::Keep, NoEffect, Glued},
    {"options:strict", FlagKind::Keep},
};
// clang-format on
static_assert(NamesAreUnique(ClFlags), "a name stands twice: its second row would never be read");

// The arguments that the compiler itself reads, without the compiler: up to the linker's part and the bare file names.
std::span<const std::string> CompilersPart(std::span<const std::string> arguments) {
    arguments = arguments.subspan(std::min<std::size_t>(1, arguments.size()));
    const auto end = std::find_if(arguments.begin(), arguments.end(), [](std::string_view argument) {
        return argument == "/link" || argument == "-link" || argument == "--";
    });
    return arguments.first(static_cast<std::size_t>(end - arguments.begin()));
}

// Whether the argument is the flag `name`, by either introducer.
bool IsFlag(std::string_view argument, std::string_view name) {
    return argument.size() == name.size() + 1 && (argument.front() == '/' || argument.front() == '-') &&
           argument.ends_with(name);
}

} // namespace

Cl::Cl() : Cl(CompilerType::Cl, {}) {}

Cl::Cl(CompilerType type, std::span<const FlagRow> extension)
    : Compiler(type, ClName, ClIntroducers, FlagTable(ClFlags, extension)) {}

std::vector<std::string> Cl::BuildPreprocessCommand(const ParsedCommand& command, const std::string& outputPath) const {
    std::vector<std::string> words = BeginPreprocessCommand(command, 4);
    words.emplace_back("/P");
    words.push_back("/Fi" + outputPath);
    AddSource(command.sourceFile, words);
    return words;
}

void Cl::AddSource(const std::string& source, std::vector<std::string>& words) const {
    words.push_back(WithFolder(source));
}

void Cl::FinishParse(std::span<const std::string> arguments, ParsedCommand& command) const {
    for (const std::string& argument : CompilersPart(arguments)) {
        command.unsignedChar = command.unsignedChar || IsFlag(argument, "J");
        command.msvcAwait = command.msvcAwait || IsFlag(argument, "await") || IsFlag(argument, "await:strict");
    }
    command.platformWord = TargetOf(command) == TargetBits::Bits64 ? "x64" : "Win32";
}

std::optional<InputKind> Cl::KindOfAllInputs(std::span<const std::string> arguments) const {
    std::optional<InputKind> kind;
    for (const std::string& argument : CompilersPart(arguments)) {
        if (IsFlag(argument, "TC")) {
            kind = InputKind::C;
        } else if (IsFlag(argument, "TP")) {
            kind = InputKind::Cpp;
        }
    }
    return kind;
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
