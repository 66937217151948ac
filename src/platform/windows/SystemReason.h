#pragma once

#include <string>

namespace Orvanta {

/// A call of the system has failed. Never leaves the platform room: it becomes an exception that names what it was for.
struct SystemFault {
    unsigned long error; ///< the system's number of the error
};

/// The fault that the last call on this thread ended with.
[[nodiscard]] SystemFault LastFault() noexcept;

/// What the system says about an error. The common ones are told in the words that every system has for them.
[[nodiscard]] std::string SystemReason(unsigned long error);

} // namespace Orvanta
