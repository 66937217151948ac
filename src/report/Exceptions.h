#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace OrvlogConverter {

/// Base of the report side's errors. Caught at the entry, which prints the text after "Error: ", then the hint.
class ReportException : public std::runtime_error {
public:
    explicit ReportException(const std::string& text, std::string hint = "")
        : std::runtime_error(text), hint_(std::move(hint)) {}

    /// A line on what to do about it, or where exactly it is; empty when the text says all.
    [[nodiscard]] const std::string& Hint() const noexcept { return hint_; }

private:
    std::string hint_;
};

/// A setting of the report side is wrong. Caught at the entry.
class ConfigException : public ReportException {
public:
    using ReportException::ReportException;
};

/// A report or base can't be read or written. Caught at the entry, which prints it as the program's own error.
class FilesystemException : public ReportException {
public:
    using ReportException::ReportException;
};

/// A report holds text that is no message. Caught by whoever knows the file and the line, or at the entry.
class ParseException : public ReportException {
public:
    using ReportException::ReportException;
};

/// The user has asked the program to stop in the middle of a report. Caught at the entry, which prints nothing.
class StoppedException : public ReportException {
public:
    StoppedException() : ReportException("stopped") {}
};

} // namespace OrvlogConverter
