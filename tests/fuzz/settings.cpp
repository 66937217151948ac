#include "FuzzInput.h"
#include "platform/Exceptions.h"
#include "settings/SettingsFile.h"

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        (void)ParseSettings(FuzzText(data, size), "/project");
    } catch (const ZelmException&) {
        // An invalid value.
    }
    return 0;
}
