#pragma once

#include <span>
#include <string_view>

namespace Orvanta {

/// How a switch comes by its value in the compiler's manual.
enum class SwitchValue {
    None,
    Glued,        ///< "-O2"
    Next,         ///< "-o FILE"
    GluedOrNext,  ///< "-IDIR" or "-I DIR"
    Equals,       ///< "--cpu=NAME"
    EqualsOrNext, ///< "--cpu=NAME" or "--cpu NAME"
};

/// What a switch does to the command.
enum class SwitchMeaning {
    Nothing, ///< that preprocessing depends on
    Include,
    IncludeList, ///< several, with commas between them
    Define,
    Undefine,
    ForcedInclude,
    Output,
    Preprocess,
    PreprocessTo,   ///< its value is the output
    Mode,           ///< a standard, and with it the language of every source
    Standard,       ///< a standard for sources of its language
    AllCpp,         ///< every source is C++
    LanguageWord,   ///< its value is the language of the source behind it
    CExtension,     ///< its value is an extension of C sources
    CppExtension,   ///< likewise of C++ sources
    HandedOn,       ///< its value is an argument of the compiler behind it
    HandedOnByList, ///< likewise several, with commas before them
    SignedChar,
    UnsignedChar,
};

/// One switch as the manual lists it, with its dashes.
struct Switch {
    std::string_view name;
    SwitchValue value = SwitchValue::None;
    SwitchMeaning meaning = SwitchMeaning::Nothing;
    std::string_view standard = {}; ///< of the meanings Mode and Standard
};

/// A compiler's command line as its manual describes it.
struct CommandLanguage {
    std::string_view name;
    std::span<const Switch> shared; ///< with other compilers
    std::span<const Switch> own;
    std::string_view defaultC;
    std::string_view defaultCpp;
    bool isPlainCharUnsigned;
};

/// All the compilers that the double can be.
[[nodiscard]] std::span<const CommandLanguage> CommandLanguages();

} // namespace Orvanta
