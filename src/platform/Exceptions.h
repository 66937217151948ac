#pragma once

#include <exception>
#include <string>
#include <utility>

namespace Orvanta {

/// Base of the program's own errors. The entry prints the text after "Error: "; a unit's runner turns it into that
/// unit's failure.
class ZelmException : public std::exception {
public:
    /// Both texts without "Error: " in front and a full stop behind.
    explicit ZelmException(std::string message, std::string hint = "")
        : message_(std::move(message)), hint_(std::move(hint)) {}

    /// The message, without the hint.
    [[nodiscard]] const char* what() const noexcept override { return message_.c_str(); }

    /// A line on what to do about it; empty when the message says all.
    [[nodiscard]] const std::string& Hint() const noexcept { return hint_; }

private:
    std::string message_;
    std::string hint_;
};

/// A file or a folder can't be used. Whoever knows it by another name than the one that failed (a file beside it, the
/// end of a link) catches this and throws its own, made from the reason.
class FileException : public ZelmException {
public:
    /// The text is "PATH: REASON".
    FileException(std::string path, std::string reason)
        : ZelmException(path + ": " + reason), path_(std::move(path)), reason_(std::move(reason)) {}

    /// The text is "WHAT PATH: REASON".
    FileException(const std::string& what, std::string path, std::string reason)
        : ZelmException(what + " " + path + ": " + reason), path_(std::move(path)), reason_(std::move(reason)) {}

    /// What failed, as it was handed to the function that threw this.
    [[nodiscard]] const std::string& Path() const noexcept { return path_; }

    /// Why, mostly in the system's words, without a full stop.
    [[nodiscard]] const std::string& Reason() const noexcept { return reason_; }

private:
    std::string path_;
    std::string reason_;
};

/// Ends the process with a code of its own, in silence: whoever throws it has already said why. Only the entry catches
/// it.
class ZelmRcException : public ZelmException {
public:
    /// `returnCode` becomes the exit code of the process.
    explicit ZelmRcException(int returnCode) : ZelmException(""), returnCode_(returnCode) {}

    /// The exit code.
    [[nodiscard]] int ReturnCode() const noexcept { return returnCode_; }

private:
    int returnCode_;
};

} // namespace Orvanta
