#pragma once

#include "report/ReportMessage.h"

#include <array>
#include <string>
#include <string_view>

namespace OrvlogConverter {

/// Reads what nearly every line of a JSON report looks like, several times faster than the JSON library: an object with
/// the known keys, each once and in any order, valid UTF-8, and no escapes by number. Keeps its memory from line to
/// line.
class JsonMessageScanner {
public:
    /// False for every text of another look, good or bad: the library is to be asked. `message` then holds no message.
    [[nodiscard]] bool Scan(std::string_view text, ReportMessage& message);

private:
    std::array<std::string, 3> lines_; // around the first position, which may stand behind them
};

} // namespace OrvlogConverter
