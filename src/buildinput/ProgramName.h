#pragma once

#include <string_view>

namespace Orvanta {

/// Whether a program's path ends in this file name, or is this path. Neither the case of letters in names nor a final
/// ".exe" matters.
[[nodiscard]] bool IsProgramNamed(std::string_view path, std::string_view name) noexcept;

/// Whether the file name is one that compilers have: "gcc", "c++", "clang" and their like, also behind a target and in
/// front of a version ("riscv64-linux-gnu-g++-12"), or the name of an embedded compiler.
[[nodiscard]] bool LooksLikeCompiler(std::string_view path) noexcept;

} // namespace Orvanta
