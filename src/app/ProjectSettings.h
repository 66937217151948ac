#pragma once

#include "app/AnalyzeOptions.h"
#include "settings/SettingsMap.h"

#include <optional>
#include <string>

namespace Orvanta {

/// The settings file that the options name, absolute. `auto` takes ".orvanta.cfg" of the current folder or of the
/// nearest one above it, up to the root of the checkout, and says which.
[[nodiscard]] std::optional<std::string> SettingsFileOf(const AnalyzeOptions& options);

/// The folder of the checkout that the current folder belongs to; absent outside of one.
[[nodiscard]] std::optional<std::string> CheckoutRoot();

/// A file that was found, not named, came with the sources and may be anybody's: keys that don't say plainly how to
/// analyze, such as those that name programs, are dropped, and one line says which.
void DropUntrusted(SettingsMap& settings, const std::string& path);

} // namespace Orvanta
