#include "FuzzInput.h"
#include "buildinput/CommandStringSplitter.h"

#include <algorithm>

using namespace Orvanta;

namespace {

/// Quotes for both rules: a word without quotes and backslashes reads back from double quotes under either.
bool IsPlain(const std::string& word) {
    return word.find_first_of("\"\\$`") == std::string::npos;
}

void SplitAndReadBack(std::string_view command, CommandStringRules rules) {
    const std::vector<std::string> arguments = SplitCommandString(command, rules);
    std::string quoted;
    std::size_t bytes = 0;
    for (const std::string& argument : arguments) {
        bytes += argument.size();
        quoted += '"' + argument + "\" ";
    }
    Require(bytes <= command.size());
    if (std::all_of(arguments.begin(), arguments.end(), IsPlain)) {
        Require(SplitCommandString(quoted, rules) == arguments);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    SplitAndReadBack(FuzzText(data, size), CommandStringRules::Posix);
    SplitAndReadBack(FuzzText(data, size), CommandStringRules::Windows);
    return 0;
}
