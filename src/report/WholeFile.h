#pragma once

#include "platform/Files.h"

#include <optional>
#include <string>
#include <string_view>

namespace OrvlogConverter {

/// Stands for standard output where a report is written, and for standard input where one is read.
inline constexpr std::string_view StandardStreamPath = "-";

/// A file that takes its place only when it is whole: until `Commit` whatever stood at the path stays as it was. Writes
/// in large blocks. Standard output takes the blocks as they come.
class WholeFile {
public:
    /// \throws FilesystemException "Empty filepath", or "Can't write to file: ", the path and the system's reason
    explicit WholeFile(std::string path);

    /// \throws FilesystemException
    void Append(std::string_view text);

    /// The last call.
    /// \throws FilesystemException
    void Commit();

    /// For a file that another is about to replace: it must be a regular file, or none, and one that may be written to.
    /// \throws FilesystemException
    static void RequireReplaceable(const std::string& path);

private:
    // Hands what is gathered on to the file, or to standard output.
    void WriteBuffer();

    std::string path_;
    std::optional<Orvanta::AtomicFile> file_; // absent: standard output
    std::string buffer_;
};

} // namespace OrvlogConverter
