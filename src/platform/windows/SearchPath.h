#pragma once

#include <string>
#include <string_view>

namespace Orvanta {

/// The path itself when it names a file, otherwise the first of `extensions` (those of PATHEXT) with which it does;
/// empty when none does.
[[nodiscard]] std::string WithExtension(const std::string& path, std::string_view extensions);

/// The path of the first file named `program`, as given or with one of `extensions`, in the folders of `searchPath`,
/// separated by ";"; empty when there is none. A relative folder is one of `directory`, which itself is one of the
/// current directory when it is empty or relative. Unlike FindExecutable, this takes no folder for a program.
[[nodiscard]] std::string FindAlong(std::string_view program, std::string_view searchPath, std::string_view extensions,
                                    const std::string& directory);

/// PATHEXT where the environment has none.
inline constexpr std::string_view UsualExtensions = ".COM;.EXE;.BAT;.CMD";

} // namespace Orvanta
