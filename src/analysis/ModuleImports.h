#pragma once

#include <string_view>

namespace Orvanta {

/// Whether a preprocessed text in C++ imports modules: what those export is not in it. A unit that implements a module
/// imports that module's interface without a line for it. Looks at the beginnings of lines, where compilers want such
/// declarations, so that one in a raw string counts, too.
[[nodiscard]] bool ImportsModules(std::string_view text) noexcept;

} // namespace Orvanta
