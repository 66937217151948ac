#pragma once

#include "buildinput/BuildInput.h"

#include <span>
#include <string>

namespace Orvanta {

/// Keeps the units whose own source is one of the `listed` files, which are absolute and normalised. An invocation none
/// of whose units is kept joins the skipped ones.
void KeepListedSources(CollectedCommands& commands, std::span<const std::string> listed);

} // namespace Orvanta
