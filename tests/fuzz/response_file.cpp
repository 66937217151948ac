#include "FuzzInput.h"
#include "buildinput/ResponseFile.h"
#include "platform/Exceptions.h"

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        std::size_t bytes = 0;
        for (const std::string& token : SplitResponseFile(FuzzText(data, size), "input.rsp")) {
            bytes += token.size();
        }
        Require(bytes <= size);
    } catch (const ZelmException&) {
        // A quote that is not closed.
    }
    return 0;
}
