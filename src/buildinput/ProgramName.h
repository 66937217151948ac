#pragma once

#include <span>
#include <string>
#include <string_view>

namespace Orvanta {

/// The file name of a program's path, without a final ".exe" of any case: a trace or a database may come from another
/// system. A part of `path`.
[[nodiscard]] std::string_view ProgramNameOf(std::string_view path) noexcept;

/// Whether a program's path ends in this file name, or is this path. Neither the case of letters in names nor a final
/// ".exe" matters.
[[nodiscard]] bool IsProgramNamed(std::string_view path, std::string_view name) noexcept;

/// Whether it is named by at least one of the names, in the sense of IsProgramNamed.
[[nodiscard]] bool IsProgramAmong(std::string_view path, std::span<const std::string> names) noexcept;

/// Whether the file name is one that compilers have: "gcc", "c++", "clang" and their like, also behind a target and in
/// front of a version ("riscv64-linux-gnu-g++-12"), or the name of an embedded compiler.
[[nodiscard]] bool LooksLikeCompiler(std::string_view path) noexcept;

} // namespace Orvanta
