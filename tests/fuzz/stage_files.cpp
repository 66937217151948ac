#include "FuzzFile.h"
#include "FuzzInput.h"
#include "bundled/MergedFindings.h"
#include "bundled/UnitInformation.h"
#include "platform/Exceptions.h"

using namespace Orvanta;

namespace {

const std::string& Held(std::string_view text) {
    static const FuzzFile file;
    return file.Hold(text);
}

void ReadAsUnit(std::string_view text) {
    static const FuzzFile copy;
    try {
        const UnitInformation unit = ReadUnitInformation(Held(text));
        const std::string& path = copy.Hold("");
        WriteUnitInformation(path, unit);
        Require(ReadUnitInformation(path) == unit);
    } catch (const ZelmException&) {
        // Damaged, or of another kind.
    }
}

void ReadAsMerged(std::string_view text) {
    static const std::vector<MarkedFile> files = {{"/a.c", false, true}, {"/usr/include/b.h", true, true}};
    try {
        (void)ReadMergedFindings(Held(text), files);
    } catch (const ZelmException&) {
        // Damaged, or of another kind.
    }
}

} // namespace

// The files that the stages of a run over several units leave for each other.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ReadAsUnit(FuzzText(data, size));
    ReadAsMerged(FuzzText(data, size));
    return 0;
}
