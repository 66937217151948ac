#include "FuzzInput.h"
#include "cache/CachedResult.h"
#include "cache/Digest.h"

#include <string>

#include <zlib.h>

using namespace Orvanta;

// Input is the text behind the compression, which its checksum keeps from damage but not from what others have made.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = FuzzText(data, size);
    uLongf packedSize = compressBound(static_cast<uLong>(size));
    std::string packed(packedSize, '\0');
    Require(compress2(reinterpret_cast<Bytef*>(packed.data()), &packedSize, reinterpret_cast<const Bytef*>(text.data()),
                      static_cast<uLong>(size), 1) == Z_OK);
    packed.resize(packedSize);
    const std::string bytes =
        "orvanta-result-1 " + std::to_string(size) + " " + DigestOf(packed).Text() + "\n" + packed;
    Require(IsPackedResult(bytes));
    const RootMark root("/root of sources", PathRules::Posix);
    if (const std::optional<CachedResult> result = UnpackResult(bytes, root)) {
        const std::optional<std::string> again = PackResult(*result, root);
        Require(!again || UnpackResult(*again, root)->findings == result->findings);
    }
    return 0;
}
