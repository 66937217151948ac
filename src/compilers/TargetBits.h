#pragma once

namespace Orvanta {

/// The size of the words for which a compiler makes programs.
enum class TargetBits { Bits32, Bits64 };

} // namespace Orvanta
