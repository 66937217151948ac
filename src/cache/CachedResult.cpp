#include "cache/CachedResult.h"

#include "cache/Digest.h"
#include "platform/Exceptions.h"
#include "platform/Text.h"
#include "report/MessageLine.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <exception>
#include <utility>

#include <zlib.h>

namespace Orvanta {

namespace {

// Head: the words, the size of the text and the digest of all behind; a line. Then the compressed text: a line with the
// dependencies, one with what the core printed, and one for each finding.
constexpr std::string_view Magic = "orvanta-result-1 ";
// No text is packed more tightly; what says so is damaged, or wants our memory.
constexpr std::size_t LargestRatio = 1032;

std::string Compressed(const std::string& text) {
    uLongf size = compressBound(static_cast<uLong>(text.size()));
    std::string bytes(size, '\0');
    // The fastest level: most of the texts are small.
    if (compress2(reinterpret_cast<Bytef*>(bytes.data()), &size, reinterpret_cast<const Bytef*>(text.data()),
                  static_cast<uLong>(text.size()), Z_BEST_SPEED) != Z_OK) {
        throw ZelmException("A result can't be compressed");
    }
    bytes.resize(size);
    return bytes;
}

// Absent when the bytes are not what `Compressed` made of a text of that size.
std::optional<std::string> Uncompressed(std::string_view bytes, std::size_t size) {
    std::string text(size, '\0');
    auto written = static_cast<uLongf>(size);
    const int answer = uncompress(reinterpret_cast<Bytef*>(text.data()), &written,
                                  reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uLong>(bytes.size()));
    return answer == Z_OK && written == size ? std::optional(std::move(text)) : std::nullopt;
}

// The text that was packed.
std::optional<std::string> Unpack(std::string_view bytes) {
    std::string_view rest = bytes;
    const std::string_view head = TakeLine(rest);
    if (!head.starts_with(Magic)) {
        return std::nullopt;
    }
    std::size_t size = 0;
    const std::string_view numbers = head.substr(Magic.size());
    const auto [end, error] = std::from_chars(numbers.data(), numbers.data() + numbers.size(), size);
    const std::string_view digest = numbers.substr(static_cast<std::size_t>(end - numbers.data()));
    if (error != std::errc() || size / LargestRatio > rest.size() || digest != " " + DigestOf(rest).Text()) {
        return std::nullopt;
    }
    return Uncompressed(rest, size);
}

} // namespace

std::optional<std::string> PackResult(const CachedResult& result, const RootMark& root) {
    nlohmann::json dependencies;
    if (result.dependencies) {
        dependencies = nlohmann::json::array();
        for (std::string path : *result.dependencies) {
            root.MarkPath(path);
            dependencies.push_back(std::move(path));
        }
    }
    std::string output = result.output;
    if (!root.MarkText(output)) {
        return std::nullopt;
    }
    std::string text;
    for (const nlohmann::json& part : {dependencies, nlohmann::json(output)}) {
        // Without the lenient handler: a path that is no UTF-8 would come back as another one.
        text += part.dump() + '\n';
    }
    for (OrvlogConverter::ReportMessage message : result.findings) {
        if (!root.Mark(message)) {
            return std::nullopt;
        }
        OrvlogConverter::AppendMessageLine(text, message, OrvlogConverter::LineFormat::Json);
        text += '\n';
    }
    const std::string packed = Compressed(text);
    return std::string(Magic) + std::to_string(text.size()) + " " + DigestOf(packed).Text() + "\n" + packed;
}

std::optional<CachedResult> UnpackResult(std::string_view bytes, const RootMark& root) {
    const std::optional<std::string> text = Unpack(bytes);
    if (!text) {
        return std::nullopt;
    }
    try {
        CachedResult result;
        std::string_view lines = *text;
        const nlohmann::json dependencies = nlohmann::json::parse(TakeLine(lines));
        if (!dependencies.is_null()) {
            result.dependencies.emplace();
            for (std::string path : dependencies.get<std::vector<std::string>>()) {
                root.Unmark(path);
                result.dependencies->push_back(std::move(path));
            }
        }
        result.output = nlohmann::json::parse(TakeLine(lines)).get<std::string>();
        root.Unmark(result.output);
        while (!lines.empty()) {
            root.Unmark(result.findings.emplace_back(OrvlogConverter::ReadMessageLine(TakeLine(lines))));
        }
        return result;
    } catch (const std::exception&) { // its checksum is right, so somebody made it who is not us
        return std::nullopt;
    }
}

bool IsPackedResult(std::string_view bytes) {
    return Unpack(bytes).has_value();
}

} // namespace Orvanta
