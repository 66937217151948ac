#include "bundled/Misra.h"

#include <algorithm>
#include <iterator>

namespace Orvanta {

namespace {

constexpr std::string_view CheckPrefix = "misra-c2012-";

// Those that Cppcheck 2.10's add-on knows, without those about directives, macros, comments and the headers that are
// included (2.5, 3.1, 3.2, 5.4, 5.5, 11.9, 20.1 to 20.14, 21.1, 21.2, 21.4 to 21.6, 21.10 to 21.12, 22.8 to 22.10),
// which are gone from the text, about what the whole program uses (2.3, 2.4, 8.7), and about declarations that stand in
// system headers (17.3).
constexpr std::string_view Judged[] = {
    "1.4",  "2.2",  "2.7",  "4.1",  "4.2",   "5.1",   "5.2",   "5.6",   "5.7",   "5.8",   "5.9",  "6.1",
    "6.2",  "7.1",  "7.2",  "7.3",  "7.4",   "8.1",   "8.2",   "8.4",   "8.5",   "8.6",   "8.8",  "8.9",
    "8.10", "8.11", "8.12", "8.14", "9.2",   "9.3",   "9.4",   "9.5",   "10.1",  "10.2",  "10.3", "10.4",
    "10.5", "10.6", "10.7", "10.8", "11.1",  "11.2",  "11.3",  "11.4",  "11.5",  "11.6",  "11.7", "11.8",
    "12.1", "12.2", "12.3", "12.4", "13.1",  "13.3",  "13.4",  "13.5",  "13.6",  "14.1",  "14.2", "14.4",
    "15.1", "15.2", "15.3", "15.4", "15.5",  "15.6",  "15.7",  "16.1",  "16.2",  "16.3",  "16.4", "16.5",
    "16.6", "16.7", "17.1", "17.2", "17.6",  "17.7",  "17.8",  "18.4",  "18.5",  "18.7",  "18.8", "19.2",
    "21.3", "21.7", "21.8", "21.9", "21.14", "21.15", "21.16", "21.19", "21.20", "21.21", "22.5", "22.7",
};

} // namespace

std::string_view MisraRuleOf(std::string_view checkId) {
    return checkId.starts_with(CheckPrefix) ? checkId.substr(CheckPrefix.size()) : std::string_view();
}

bool IsJudged(std::string_view misraRule) {
    return std::find(std::begin(Judged), std::end(Judged), misraRule) != std::end(Judged);
}

std::string JudgedMisraRules() {
    std::string rules;
    for (const std::string_view rule : Judged) {
        rules.append(rules.empty() ? "" : ", ").append(rule);
    }
    return rules;
}

} // namespace Orvanta
