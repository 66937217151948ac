#pragma once

#include <string_view>

namespace OrvlogConverter {

// The parts of the page of findings, which stand beside this file as a browser takes them.
extern const std::string_view HtmlStyle;
extern const std::string_view HtmlBody;
extern const std::string_view HtmlScript;

} // namespace OrvlogConverter
