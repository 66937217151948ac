#include "shards/PartBlocks.h"

#include "platform/Exceptions.h"
#include "platform/Fingerprint.h"
#include "platform/NativePath.h"
#include "shards/PartCoding.h"

#include <cerrno>
#include <limits>
#include <system_error>
#include <utility>

#include <zlib.h>

namespace Orvanta {

namespace {

// The digit is raised with every change of the form.
constexpr std::string_view Mark = "orvanta part 1\n";
constexpr std::string_view MarkOfAnyForm = "orvanta part ";
// No text is packed more tightly; what says so is damaged, or wants our memory.
constexpr std::uint64_t LargestRatio = 1032;
// In front of each block: kind, sizes of the text and of the packed one, checksum.
constexpr std::size_t HeadSize = 4 * sizeof(std::uint64_t) + sizeof(Fingerprint);

/// What stands in front of a block.
struct BlockHead {
    std::uint64_t kind = 0;
    std::uint64_t number = 0; // from 0
    std::uint64_t textSize = 0;
    std::uint64_t packedSize = 0;
};

// Of all that a block is, with its place among the others.
Fingerprint ChecksumOf(const BlockHead& head, std::string_view packed) {
    FingerprintBuilder builder;
    builder.Add(head.kind).Add(head.number).Add(head.textSize).Add(packed);
    return builder.Value();
}

// Numbers of 64 bits, the lowest byte first: as the halves of a fingerprint are written.
std::string BytesOf(const BlockHead& head, const Fingerprint& checksum) {
    PartEncoder encoder;
    encoder.Add(Fingerprint{head.kind, head.number}).Add(Fingerprint{head.textSize, head.packedSize}).Add(checksum);
    return encoder.Bytes();
}

} // namespace

PartBlockWriter::PartBlockWriter(const std::string& path, AtomicFile::Durability durability) : file_(path, durability) {
    file_.Append(Mark);
}

void PartBlockWriter::Append(PartBlockKind kind, std::string_view text) {
    uLongf size = compressBound(static_cast<uLong>(text.size()));
    std::string packed(size, '\0');
    if (compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(text.data()),
                  static_cast<uLong>(text.size()), Z_BEST_SPEED) != Z_OK) {
        throw ZelmException("A block of a part can't be compressed");
    }
    packed.resize(size);
    const BlockHead head = {static_cast<std::uint64_t>(kind), blocks_++, text.size(), packed.size()};
    file_.Append(BytesOf(head, ChecksumOf(head, packed)));
    file_.Append(packed);
}

PartBlockReader::PartBlockReader(std::string path) : path_(std::move(path)) {
    Open();
    std::string mark(Mark.size(), '\0');
    input_.read(mark.data(), static_cast<std::streamsize>(mark.size()));
    mark.resize(static_cast<std::size_t>(input_.gcount()));
    if (mark != Mark) {
        throw ZelmException(path_ + (mark.starts_with(MarkOfAnyForm) ? " was written by another version of this program"
                                                                     : " is no part that analyze --shard has written"));
    }
    place_.offset = Mark.size();
}

void PartBlockReader::Open() {
    input_.open(NativePath(path_), std::ios::binary);
    if (!input_.is_open()) {
        throw FileException(path_, std::generic_category().message(errno));
    }
}

void PartBlockReader::GoTo(const Place& place) {
    place_ = place;
    kind_ = PartBlockKind::Head;
    Release();
}

void PartBlockReader::Take(std::string& bytes) {
    if (!input_.read(bytes.data(), static_cast<std::streamsize>(bytes.size()))) {
        throw DamagedPart();
    }
    place_.offset += bytes.size();
}

void PartBlockReader::Next() {
    try {
        if (!input_.is_open()) {
            Open();
            input_.seekg(static_cast<std::streamoff>(place_.offset));
        }
        std::string head(HeadSize, '\0');
        Take(head);
        PartDecoder decoder(head);
        const Fingerprint front = decoder.Mark();
        const Fingerprint sizes = decoder.Mark();
        const Fingerprint checksum = decoder.Mark();
        const BlockHead block = {front.low, front.high, sizes.low, sizes.high};
        // Read in steps: a size that is wrong must not cost its memory.
        constexpr std::uint64_t Step = std::uint64_t{1} << 20U;
        packed_.clear();
        while (packed_.size() < block.packedSize) {
            std::string piece(static_cast<std::size_t>(std::min(Step, block.packedSize - packed_.size())), '\0');
            Take(piece);
            packed_ += piece;
        }
        if (checksum != ChecksumOf(block, packed_) || block.number != place_.block ||
            block.kind < static_cast<std::uint64_t>(PartBlockKind::Head) ||
            block.kind > static_cast<std::uint64_t>(PartBlockKind::End) ||
            block.textSize / LargestRatio > packed_.size()) {
            throw DamagedPart();
        }
        ++place_.block;
        kind_ = static_cast<PartBlockKind>(block.kind);
        textSize_ = block.textSize;
        if (kind_ == PartBlockKind::End && input_.peek() != std::ifstream::traits_type::eof()) {
            throw DamagedPart();
        }
    } catch (const DamagedPart& error) {
        throw ZelmException(path_ + ": " + error.what());
    }
}

std::string PartBlockReader::Text() const {
    std::string text(static_cast<std::size_t>(textSize_), '\0');
    auto written = static_cast<uLongf>(textSize_);
    const int answer = uncompress(reinterpret_cast<Bytef*>(text.data()), &written,
                                  reinterpret_cast<const Bytef*>(packed_.data()), static_cast<uLong>(packed_.size()));
    if (answer != Z_OK || written != textSize_) {
        throw ZelmException(path_ + ": " + DamagedPart().what());
    }
    return text;
}

} // namespace Orvanta
