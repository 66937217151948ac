#pragma once

#include <string>
#include <string_view>

namespace Orvanta {

/// Puts into `text`, which keeps its memory, what `raw` says with the escapes of C: as tracers and version control
/// write what stands between double quotes.
void DecodeEscapes(std::string_view raw, std::string& text);

} // namespace Orvanta
