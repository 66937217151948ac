#include "FuzzFile.h"
#include "FuzzInput.h"
#include "platform/Exceptions.h"
#include "shards/PartSet.h"

#include <algorithm>
#include <string>

using namespace Orvanta;

namespace {

// A result that was read is written again as it was.
void ReadUnit(PartSet& parts) {
    const UnitResult result = parts.Next().result;
    PartEncoder bytes;
    AddOutcome(bytes, result);
    for (const OrvlogConverter::ReportMessage& message : result.ownFindings) {
        AddMessage(bytes, message);
    }
    PartDecoder decoder(bytes.Bytes());
    Require(TakeOutcome(decoder).reason == result.reason);
    for (const OrvlogConverter::ReportMessage& message : result.ownFindings) {
        Require(TakeMessage(decoder) == message);
    }
    Require(decoder.IsAtEnd());
}

} // namespace

// Blocks as they are before compression: a byte with the kind of each, two with its size, and its text. Checksums keep
// a part from damage, but not from what others have made. Other kinds: the bytes of the whole file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FuzzFile file;
    std::string_view rest = FuzzText(data, size);
    std::string path = file.Hold(rest);
    if (!rest.starts_with("orvanta")) {
        PartBlockWriter writer(path, AtomicFile::Durability::Renamed);
        while (rest.size() > 3) {
            const auto kind = static_cast<PartBlockKind>(rest[0] - '0');
            const std::size_t wanted = std::size_t{data[size - rest.size() + 1]} << 8U | data[size - rest.size() + 2];
            rest.remove_prefix(3);
            const std::size_t taken = std::min(wanted, rest.size());
            writer.Append(kind, rest.substr(0, taken));
            rest.remove_prefix(taken);
        }
        writer.Commit();
    }
    try {
        PartSet parts(std::span(&path, 1));
        static_cast<void>(parts.Gaps());
        for (std::size_t unit = 0; unit < parts.UnitCount(); ++unit) {
            ReadUnit(parts);
        }
    } catch (const ZelmException&) { // it is refused
    }
    return 0;
}
