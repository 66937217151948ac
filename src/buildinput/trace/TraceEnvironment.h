#pragma once

#include "buildinput/trace/TraceText.h"
#include "platform/Environment.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace Orvanta {

/// Makes environments of the texts in a trace. Neighbours mostly have the same one: it is made once.
class TraceEnvironments {
public:
    /// Null when the trace does not show the whole environment. Names that no shell could set are left out; of two
    /// values of one name the first counts.
    [[nodiscard]] std::shared_ptr<const Environment> Get(const TraceArray& texts);

private:
    // A build has several chains of processes under way at a time, whose lines are mixed.
    static constexpr std::size_t Remembered = 8;

    struct Entry {
        std::string text; // as the trace writes it
        std::shared_ptr<const Environment> environment;
    };

    std::array<Entry, Remembered> recent_;
    std::size_t next_ = 0; // of `recent_`, the one to be replaced
};

/// What an environment, as the trace writes it, says about the directory ("PWD"); empty when it names no absolute path.
[[nodiscard]] std::string DirectoryVariable(std::string_view text);

} // namespace Orvanta
