#include "FuzzInput.h"
#include "bundled/CppcheckDump.h"
#include "bundled/FunctionNames.h"
#include "bundled/MemberCalls.h"
#include "bundled/ReturnedPointers.h"
#include "platform/Exceptions.h"

using namespace Orvanta;

// What Cppcheck tells of a unit's functions and calls.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const std::string_view text = FuzzText(data, size);
        const CppcheckDump dump(text);
        std::vector<FactGroup> groups = ReturnFacts(dump);
        groups.push_back(MemberCallFacts(dump));
        for (const NamedFunction& function : NameFunctions(dump, groups)) {
            Require(!function.name.empty() && !function.place.empty());
        }
    } catch (const ZelmException&) {
        // Cut short.
    }
    return 0;
}
