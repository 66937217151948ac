#pragma once

#include "compilers/Compiler.h"

#include <string>
#include <string_view>
#include <vector>

// Some embedded compilers name files with further arguments by flags, beside "@FILE" or in its place. How such a text
// is read differs in a few properties, which the model of the family has (OptionFileSyntax). They are expanded before
// the command is read, so that whatever reads it need not know of them.

namespace Orvanta {

/// Splits the text of an option file into its words. `path` is for messages only.
/// \throws ZelmException for a quote without its partner
[[nodiscard]] std::vector<std::string> SplitOptionFile(std::string_view text, const OptionFileSyntax& syntax,
                                                       const std::string& path);

/// Replaces every flag of `syntax` by the words of the file that it names, option files among them in their turn.
/// Relative paths, nested ones too, are taken from `directory`. The first argument, the compiler, stays.
/// \throws ZelmException for a file that can't be read, or that includes itself; the arguments are then as they were
void ExpandOptionFiles(std::vector<std::string>& arguments, const OptionFileSyntax& syntax,
                       const std::string& directory);

} // namespace Orvanta
