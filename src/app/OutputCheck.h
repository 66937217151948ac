#pragma once

#include "buildinput/CompileCommand.h"

#include <optional>
#include <span>
#include <string>

namespace Orvanta {

/// Sees to it that an output takes the place of none of the files that the same command reads, whatever their paths
/// look like: a link to one, and another of its names, is that file. \throws ZelmException that names both
void RequireNoInput(const std::string& output, std::span<const std::optional<std::string>> inputs);

/// The same for the sources of the units, of which there may be a hundred thousand: mostly none of them is asked for.
void RequireNoSource(const std::string& output, std::span<const CompileCommand> units);

} // namespace Orvanta
