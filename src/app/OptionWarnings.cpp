#include "app/OptionWarnings.h"

#include "platform/Files.h"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string_view>

namespace Orvanta {

std::vector<std::string> WarningsAbout(const AnalyzeOptions& options) {
    struct WordRow {
        const char* option;
        const std::optional<std::string>& value;
        std::initializer_list<std::string_view> known;
        const char* expected;
    };

    const WordRow rows[] = {
        {"--preprocessor", options.preprocessor, {"gcc", "clang"}, "gcc or clang"},
        {"--platform",
         options.platform,
         {"linux64", "linux32", "x64", "Win32", "arm", "arm64", "msp430", "avr8", "pic8"},
         "linux64, linux32, x64, Win32, arm, arm64, msp430, avr8 or pic8"},
    };
    std::vector<std::string> warnings;
    for (const WordRow& row : rows) {
        if (row.value && std::find(row.known.begin(), row.known.end(), *row.value) == row.known.end()) {
            warnings.push_back(std::string("Warning: unknown value of ") + row.option + ": \"" + *row.value +
                               "\", expected " + row.expected);
        }
    }
    if (options.rulesConfig && !LookAt(*options.rulesConfig).IsThere()) {
        warnings.push_back("Warning: the file of --rules-config doesn't exist: " + *options.rulesConfig);
    }
    return warnings;
}

} // namespace Orvanta
