#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

/// The program's messages: whole lines on standard output, and with a log file also there. Any thread may write.
class Log {
public:
    enum class Verbosity { Normal, Verbose };

    /// Without a log file until `OpenFile`.
    explicit Log(Verbosity verbosity = Verbosity::Normal);
    ~Log();
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    /// Keeps every line from now on for a file that is opened later.
    void KeepForFile();

    /// From now on every line, those for verbose output included, is also written to the file at `path`, behind those
    /// that were kept for it.
    /// \throws FileException when it can't be written
    void OpenFile(const std::string& path);

    /// Writes `text` and a line feed, both in one piece.
    void Line(std::string_view text);

    /// A line that only verbose output and the log file show.
    void VerboseLine(std::string_view text);

    /// Text that is whole already, such as a program's own output: no line feed is added.
    void Text(std::string_view text);

    /// Whether a verbose line would be seen anywhere: lets a caller skip the making of it.
    [[nodiscard]] bool IsVerbose() const noexcept;

private:
    struct File;
    void WriteToFile(std::string_view text);
    Verbosity verbosity_;
    std::mutex mutex_;                // one line at a time, on both targets
    std::unique_ptr<File> file_;      // guarded by mutex_ once workers run; set before they do
    std::optional<std::string> kept_; // until then
};

} // namespace Orvanta
