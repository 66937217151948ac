#pragma once

#include <string>

namespace Orvanta {

/// ExchangeFiles for file systems that can't swap two names: `second` is missing for a moment, `first` never.
/// \throws FileException
void SwapByRenaming(const std::string& first, const std::string& second);

} // namespace Orvanta
