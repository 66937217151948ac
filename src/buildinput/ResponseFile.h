#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// Splits the text of a response file into its tokens. `path` is for messages only.
/// \throws ZelmException "Unmatched quote in response file ..."
[[nodiscard]] std::vector<std::string> SplitResponseFile(std::string_view text, const std::string& path);

/// The arguments that a response file stands for, with the response files that it names expanded in their turn.
/// Relative paths, nested ones too, are taken from `directory`. Threads don't disturb each other.
/// \throws ZelmException
[[nodiscard]] std::vector<std::string> ExpandResponseFile(const std::string& path, const std::string& directory);

/// Replaces every argument that is "@" and the name of a file by what the file stands for; others, such as "a@b" or "@"
/// and the name of a folder or of nothing, stay.
/// \throws ZelmException; the arguments are then as they were
void ExpandResponseFiles(std::vector<std::string>& arguments, const std::string& directory);

} // namespace Orvanta
