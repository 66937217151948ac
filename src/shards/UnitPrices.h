#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace Orvanta {

/// What units took in an earlier run, as the file of `--stats` tells it: so every machine that is handed the file knows
/// the same. A unit is known by its source; of several with the same source, the first here is the first there.
class UnitPrices {
public:
    /// \throws FileException, and ZelmException with the line for what is no line of such a file
    explicit UnitPrices(const std::string& path);

    /// The milliseconds that the unit took which is the `occurrence`th of its source, from 0; of one that was not there
    /// so often, those of the last one. Absent when the file doesn't tell, as of one whose result was known.
    [[nodiscard]] std::optional<std::uint64_t> Find(const std::string& source, std::size_t occurrence) const;

private:
    void TakeLine(const std::string& line);

    std::unordered_map<std::string, std::vector<std::optional<std::uint64_t>>> prices_; // by source
};

} // namespace Orvanta
