#include "FuzzFile.h"
#include "FuzzInput.h"
#include "platform/Exceptions.h"
#include "shards/UnitPrices.h"

#include <string>

using namespace Orvanta;

// A file of costs, which users carry from machine to machine. Prices may be added up over a million units.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FuzzFile file;
    try {
        const UnitPrices prices(file.Hold(FuzzText(data, size)));
        for (const std::size_t occurrence : {std::size_t{0}, std::size_t{1}, SIZE_MAX}) {
            Require(prices.Find("/a.c", occurrence).value_or(0) < UINT64_MAX / 1'000'000);
        }
    } catch (const ZelmException&) { // it is refused
    }
    return 0;
}
