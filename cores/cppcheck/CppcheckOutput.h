#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// A place that Cppcheck names.
struct CppcheckLocation {
    std::string file;
    std::uint32_t line = 0;

    bool operator==(const CppcheckLocation&) const = default;
};

/// One finding as Cppcheck writes it.
struct CppcheckFinding {
    CppcheckLocation location;
    std::uint32_t column = 0; ///< of the location, counted in bytes from 1; 0 for the line as a whole
    std::string severity;     ///< such as "error"
    std::string id;           ///< such as "nullPointer"
    std::uint32_t cwe = 0;
    std::string message;
    std::vector<CppcheckLocation> path; ///< the steps that lead to the fault, the finding's own location among them

    bool operator==(const CppcheckFinding&) const = default;
};

/// All that Cppcheck writes.
struct CppcheckOutput {
    std::vector<CppcheckFinding> findings;
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
