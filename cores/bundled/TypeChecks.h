#pragma once

#include <string>

namespace Orvanta {

/// Blanks the blocks in which macros of headers check the types of their arguments for GCC alone:
/// `if (__builtin_constant_p(x)) { ... __builtin_types_compatible_p ... }`. They do nothing when the program runs, and
/// a library with many options makes hundreds of conditions of each, which a value analysis follows for hours. A `;`
/// stands for the block; all that is left keeps its line and column.
void BlankTypeChecks(std::string& text);

} // namespace Orvanta
