#include "shards/UnitPrices.h"

#include "platform/Exceptions.h"
#include "platform/InputFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <istream>

namespace Orvanta {

namespace {

using Json = nlohmann::json;

// Longer than any unit takes, in milliseconds, and so short that a sum of many fits.
constexpr std::uint64_t LongestWall = std::uint64_t{1} << 40U;

// Of one of the two steps; nothing when it was not run.
std::uint64_t WallOf(const Json& line, const char* step) {
    const auto found = line.find(step);
    return found == line.end() ? 0
                               : std::min(found->at("wallMs").get_ref<const Json::number_unsigned_t&>(), LongestWall);
}

// Absent when what the unit took this time is not what it takes: its result was known, it was broken off, or its
// compiler has refused it.
std::optional<std::uint64_t> PriceOf(const Json& line) {
    const auto& fate = line.at("fate").get_ref<const std::string&>();
    const bool isCoreRun = line.contains("core") && (fate == "analyzed" || fate == "failed");
    if (!isCoreRun && fate != "excluded") {
        return std::nullopt;
    }
    return WallOf(line, "compiler") + WallOf(line, "core");
}

} // namespace

UnitPrices::UnitPrices(const std::string& path) {
    InputStream input(path);
    std::string line;
    std::size_t number = 0;
    while (std::getline(input, line)) {
        ++number;
        try {
            TakeLine(line);
        } catch (const Json::exception&) {
            throw ZelmException(path + ", line " + std::to_string(number) +
                                ": expected an object as --stats writes it, with \"unit\" and \"fate\"");
        }
    }
    EndWhenStopped();
    if (input.bad()) {
        throw FileException(path, "it can't be read to its end");
    }
    if (number == 0) {
        throw ZelmException(path + " is empty, expected what --stats has written");
    }
}

void UnitPrices::TakeLine(const std::string& line) {
    const Json object = Json::parse(line);
    const std::optional<std::uint64_t> price = PriceOf(object);
    prices_[object.at("unit").get<std::string>()].push_back(price);
}

std::optional<std::uint64_t> UnitPrices::Find(const std::string& source, std::size_t occurrence) const {
    const auto found = prices_.find(source);
    return found == prices_.end() ? std::nullopt : found->second[std::min(occurrence, found->second.size() - 1)];
}

} // namespace Orvanta
