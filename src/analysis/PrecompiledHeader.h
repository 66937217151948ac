#pragma once

#include "platform/Log.h"

#include <optional>
#include <string>

namespace Orvanta {

/// The precompiled form that stands beside a header, for C++ before that for C; absent when there is none. Each place
/// looked at is a verbose line of `log`.
[[nodiscard]] std::optional<std::string> FindPrecompiledForm(const std::string& header, Log& log);

} // namespace Orvanta
