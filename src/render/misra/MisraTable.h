#pragma once

#include <string_view>

namespace OrvlogConverter {

/// The text of guidelines.csv, which the build puts into the program.
extern const std::string_view MisraTable;

} // namespace OrvlogConverter
