#pragma once

#include "bundled/Finding.h"

#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// All that Cppcheck writes.
struct CppcheckOutput {
    std::vector<Finding> findings;
    std::string otherText; ///< lines that belong to no finding, such as Cppcheck's own errors
};

/// The values of Cppcheck's `--template` and `--template-location` that ReadCppcheckOutput understands. Their fields
/// are set apart by control characters, which no source text holds; Cppcheck's XML would need a parser, and costs more.
[[nodiscard]] std::string CppcheckTemplate();
/// The one for the places of a finding, which follow it.
[[nodiscard]] std::string CppcheckLocationTemplate();

/// Reads what Cppcheck wrote by these templates.
/// \throws ZelmException for a finding whose fields are not those of the template
[[nodiscard]] CppcheckOutput ReadCppcheckOutput(std::string_view text);

} // namespace Orvanta
