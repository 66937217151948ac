#pragma once

#include <cstdint>
#include <string_view>

namespace Orvanta {

/// What a flag means to the command-line reader. The numbers are fixed: the language standards share the same byte.
enum class FlagKind : std::uint8_t {
    Keep = 0,              ///< kept for preprocessing, no value
    KeepWithValue = 1,     ///< kept for preprocessing; its value is no source file
    Output = 2,            ///< names the output file; dropped
    UserInclude = 3,       ///< include directory
    SystemInclude = 4,     ///< system include directory or system root
    Define = 5,            ///< macro definition
    Undefine = 6,          ///< macro undefinition
    DropWithValue = 8,     ///< dropped for preprocessing together with its separate value
    Drop = 9,              ///< dropped for preprocessing, no value
    SourceOfLanguage = 10, ///< names a source file of a given language (cl's Tc and Tp)
    NoCompilation = 11,    ///< makes the invocation no compilation (version, preprocessing only, dependencies only)
    Preprocessor = 13,     ///< its value is a list of arguments for the preprocessor
    Language = 15,         ///< source language of the files that follow
    ForcedInclude = 16,    ///< file included before the source's first line
    Target32 = 17,
    Target64 = 18,
    LinkerPart = 19, ///< opens the linker's part of the command
    MainFileName = 20,
    StandardAnsi = 21,
    StandardC90 = 22,
    StandardC99 = 23,
    StandardC11 = 24,
    StandardC17 = 25,
    StandardC2x = 26,
    StandardCpp98 = 28,
    StandardCpp03 = 29,
    StandardCpp11 = 30,
    StandardCpp14 = 31,
    StandardCpp17 = 32,
    StandardCpp20 = 33,
};

enum class Language : std::uint8_t { C, Cpp };

/// Whether the kind is one of the language standards.
[[nodiscard]] constexpr bool IsStandard(FlagKind kind) noexcept {
    return kind >= FlagKind::StandardAnsi && kind <= FlagKind::StandardCpp20;
}

/// The core's word for a standard ("c90" ... "c++20"); empty for kinds that are none.
[[nodiscard]] std::string_view StandardWord(FlagKind standard, Language language) noexcept;

} // namespace Orvanta
