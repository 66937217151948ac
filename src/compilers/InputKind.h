#pragma once

#include "compilers/FlagTable.h"

#include <cstdint>
#include <optional>
#include <string_view>

// What a driver takes an input for is decided by its extension, by a flag for the files behind it ("-x c++"), by a flag
// for all files ("/TP"), or by one for a single file ("/TpFILE"). Kinds that are no sources are told apart all the
// same: they are the reason why a command compiles nothing, and the user is told that reason.

namespace Orvanta {

/// What a compiler driver takes an input file for.
enum class InputKind : std::uint8_t {
    C,
    Cpp,
    PreprocessedC,
    PreprocessedCpp,
    Header, ///< compiled into a precompiled header
    Assembly,
    OtherLanguage, ///< Objective-C, Fortran and others that the driver hands to other compilers
    LinkInput,     ///< objects, libraries, and all that no extension tells apart
    StandardInput,
    NullDevice,          ///< holds nothing: builds test flags on it
    MissingResponseFile, ///< "@" and the name of a file that isn't there: the driver fails on it
};

/// Whether the system analyzes such inputs.
[[nodiscard]] constexpr bool IsSource(InputKind kind) noexcept {
    return kind <= InputKind::PreprocessedCpp;
}

/// Whether the file is the text of a source that has been preprocessed.
[[nodiscard]] constexpr bool IsPreprocessed(InputKind kind) noexcept {
    return kind == InputKind::PreprocessedC || kind == InputKind::PreprocessedCpp;
}

/// The kind that a GNU driver sees in a file's extension. ".c" and ".C" differ.
[[nodiscard]] InputKind InputKindByExtension(std::string_view path) noexcept;

/// The kind that cl and clang-cl see in a file's extension: upper and lower case are the same.
[[nodiscard]] InputKind InputKindByWindowsExtension(std::string_view path);

/// Whether the extension is one that only the linker of Windows takes, such as ".obj".
[[nodiscard]] bool IsWindowsLinkerFile(std::string_view path) noexcept;

/// The kind that a GNU driver's language word ("c++", "assembler", ...) gives to the files after it; no value for words
/// that name no language, "none" among them.
[[nodiscard]] std::optional<InputKind> InputKindByLanguageWord(std::string_view word) noexcept;

/// The kind that a flag with this effect names; no value for the other effects.
[[nodiscard]] std::optional<InputKind> KindNamedBy(FlagEffect effect) noexcept;

} // namespace Orvanta
