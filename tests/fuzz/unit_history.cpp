#include "FuzzInput.h"
#include "history/HistoryFile.h"
#include "platform/Exceptions.h"

#include <sstream>
#include <string>

using namespace Orvanta;

// The checksum keeps nearly all damage from what is tested here.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream stream{std::string(FuzzText(data, size))};
    try {
        const HistoryData history = ReadHistory(stream, HistoryChecksum::Ignore);
        for (const KnownUnit& unit : history.units) {
            Require(unit.findings.begin + unit.findings.size <= history.findingsEnd);
            Require(unit.hasList == 0 || unit.sourcePlace < unit.ListSize());
            for (std::uint64_t at = 0; at < unit.ListSize(); ++at) {
                const VersionNumber version = history.lists.at(unit.listBegin + at);
                const FileNumber file = history.versions.at(PlaceOf(version)).file;
                Require(history.paths.Reported(file).size() <= history.paths.Path(file).size());
                Require(history.paths.Path(file).size() <= size);
            }
        }
    } catch (const ZelmException&) {
        return 0; // what is not ours is refused
    }
    return 0;
}
