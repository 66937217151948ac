#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// Facts about a unit that one of Cppcheck's checks wants to see beside those of other units.
struct FactGroup {
    std::string check;              ///< such as "Null pointer", as it stands in the XML text
    std::string kind;               ///< the element around them, such as "array-index"; empty when there is none
    std::vector<std::string> facts; ///< elements as XML text, such as `<unsafe-usage ... />`

    bool operator==(const FactGroup&) const = default;
};

/// Reads the analyzer information that Cppcheck leaves in its build folder for a unit. What its whole-program step does
/// not use is left out.
/// \throws ZelmException when it is cut short
[[nodiscard]] std::vector<FactGroup> ReadAnalyzerInformation(std::string_view xml);

/// Appends the group in Cppcheck's form.
/// Each fact stands in a line of its own.
void AppendFactGroup(std::string& xml, const FactGroup& group);

/// The names of the files that a fact stands in; views into `fact`.
[[nodiscard]] std::vector<std::string_view> FilesOfFact(std::string_view fact);

/// The ids of the functions that a fact is about, in their order; views into `fact`.
[[nodiscard]] std::vector<std::string_view> FunctionsOfFact(std::string_view fact);

} // namespace Orvanta
