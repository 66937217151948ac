#pragma once

#include <string>
#include <string_view>

namespace Orvanta {

/// The rule of MISRA C:2012, such as "8.4", that a check of Cppcheck's add-on is about; empty for any other check.
[[nodiscard]] std::string_view MisraRuleOf(std::string_view checkId);

/// Whether the add-on can judge a rule by preprocessed text of one unit without its system headers.
[[nodiscard]] bool IsJudged(std::string_view misraRule);

/// The rules that are judged, for users, in their order.
[[nodiscard]] std::string JudgedMisraRules();

} // namespace Orvanta
