#pragma once

#include <stdexcept>

namespace OrvlogConverter {

/// A setting of the report side is wrong. Caught at the entry.
class ConfigException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A report or base can't be read or written. Caught at the entry, which prints it as the program's own error.
class FilesystemException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A report holds text that is no message. Caught by whoever knows the file and the line, or at the entry.
class ParseException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace OrvlogConverter
