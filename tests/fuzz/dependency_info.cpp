#include "FuzzInput.h"
#include "history/DependencyInfo.h"
#include "platform/Exceptions.h"

#include <sstream>
#include <string>

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream stream{std::string(FuzzText(data, size))};
    std::size_t texts = 0;
    try {
        ReadDependencyInfo(stream, [&texts](const DependencyInfoEntry& entry) {
            texts += entry.arguments.size() + entry.dependencies.size() + 1;
        });
        Require(texts <= size);
    } catch (const ZelmException& fault) {
        Require(!std::string(fault.what()).empty());
    }
    return 0;
}
