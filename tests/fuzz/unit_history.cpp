#include "FuzzInput.h"
#include "history/HistoryFile.h"

#include <sstream>
#include <string>

using namespace Orvanta;

// The checksum keeps nearly all damage from what is tested here.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream stream{std::string(FuzzText(data, size))};
    const std::optional<HistoryData> history = ReadHistory(stream, HistoryChecksum::Ignore);
    if (history) {
        for (const KnownUnit& unit : history->units) {
            Require(unit.findings.begin + unit.findings.size <= history->findingsEnd);
            for (const std::uint32_t version : ListOf(unit, history->lists)) {
                const std::uint32_t path = history->versions.at(version).path;
                Require(history->paths.Reported(path).size() <= history->paths.Path(path).size());
                Require(history->paths.Path(path).size() <= size);
            }
        }
    }
    return 0;
}
