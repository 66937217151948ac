#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace Orvanta {

/// What becomes of the parts of a preprocessed text; each is handed as it stands between its quotes. An empty function
/// leaves them as they are.
struct TextRewriting {
    std::function<std::string(std::string_view quotedName)> fileName; ///< of a line marker
    std::function<std::string(std::string_view literal)> literal;     ///< of a string, raw strings included
    bool blanksComments = false; ///< a comment keeps its lines and its length, and says nothing
};

/// The text with these parts rewritten, and byte for byte the same otherwise. It is read in one pass, as C and C++ have
/// it: what looks like a marker inside a raw string is none. Text that ends inside a comment or a string is taken as it
/// is.
[[nodiscard]] std::string RewritePreprocessedText(std::string_view text, const TextRewriting& rewriting);

} // namespace Orvanta
