#pragma once

#include <exception>
#include <string>

namespace Orvanta {

/// Base of the program's own errors. The entry prints the text after "Error: "; a unit's runner turns it into that
/// unit's failure.
class ZelmException : public std::exception {
public:
    explicit ZelmException(std::string message) : message_(std::move(message)) {}

    [[nodiscard]] const char* what() const noexcept override { return message_.c_str(); }

private:
    std::string message_;
};

/// Ends the process with a code of its own, in silence: whoever throws it has already said why. Only the entry catches
/// it.
class ZelmRcException : public ZelmException {
public:
    explicit ZelmRcException(int returnCode) : ZelmException(""), returnCode_(returnCode) {}

    [[nodiscard]] int ReturnCode() const noexcept { return returnCode_; }

private:
    int returnCode_;
};

} // namespace Orvanta
