#include "e2e/support/OddNames.h"

namespace Orvanta {

std::vector<std::string> OddNamesOfThisSystem() {
    return {"%PATH%/100%", "caret^/a&b", "(x86)/[1]"};
}

} // namespace Orvanta
