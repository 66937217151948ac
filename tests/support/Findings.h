#pragma once

#include "report/ReportMessage.h"

#include <cstdint>
#include <string>

namespace OrvlogConverter {

/// A finding that is told from others by its code.
inline ReportMessage Finding(const std::string& code, std::uint32_t level = 1, const std::string& file = "/p/src/a.c",
                             const std::string& line = "if (a_1 == b2) f();") {
    return {code, "m", "", {{file, 3, "", line, "", 0, 0, 0}}, 0, level, false};
}

/// A finding that is told from others by its text, with the lines around it.
inline ReportMessage FindingSaying(const std::string& text, std::uint32_t level = 1, const std::string& file = "/p/a.c",
                                   const std::string& line = "x = 1;") {
    return {"V501", text, "", {{file, 3, "before", line, "after", 0, 0, 0}}, 0, level, false};
}

} // namespace OrvlogConverter
