#include "e2e/support/OddNames.h"

namespace Orvanta {

std::vector<std::string> OddNamesOfThisSystem() {
    return {"say \"hi\"/b", "back\\slash/c\\d", "*/?", "<in>/|out"};
}

} // namespace Orvanta
