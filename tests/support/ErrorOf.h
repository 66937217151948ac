#pragma once

#include <exception>
#include <string>

namespace Orvanta {

/// The text of the error that an action ends with, which is an `Error`; "no error" when there is none. Errors of other
/// kinds pass through, and fail the test.
template <typename Error = std::exception, typename Action>
std::string ErrorOf(const Action& action) {
    try {
        action();
    } catch (const Error& error) {
        return error.what();
    }
    return "no error";
}

} // namespace Orvanta
