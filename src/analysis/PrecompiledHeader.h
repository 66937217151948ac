#pragma once

#include "compilers/ParsedCommand.h"
#include "platform/Log.h"

#include <optional>
#include <string>

namespace Orvanta {

/// The precompiled form that stands beside a header, for C++ before that for C; absent when there is none. Each place
/// looked at is a verbose line of `log`.
[[nodiscard]] std::optional<std::string> FindPrecompiledForm(const std::string& header, Log& log);

/// Puts the header that the precompiled one was made from in its place: the file of the same name without its last
/// extension. For a command that names a precompiled header which the compiler can't take.
void IncludePlainHeader(ParsedCommand& command, const std::string& directory);

} // namespace Orvanta
