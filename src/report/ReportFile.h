#pragma once

// The report of a run, complete on disk after every unit.
//
// A run of hours must not lose what it has found: not to a kill, not to a full disk. So each commit has to leave a
// whole document, with its closing bracket, under the report's name. Two ways were rejected. Appending and moving the
// bracket leaves a broken document for a moment at each commit. Writing it all anew and renaming costs the whole report
// for every unit: a long run would spend its time on that.
//
// So there are two copies that take turns: the one beside the report lags by one commit; it gets what it lacks, the new
// messages and the tail, and the two names are swapped. A commit costs twice what it adds, whatever the report's size.

#include <memory>
#include <string>
#include <string_view>

namespace OrvlogConverter {

/// The text that stands around a report's messages and between them.
struct ReportFrame {
    std::string head;
    std::string separator; ///< between two messages
    std::string tail;
};

/// A report on disk that is complete at every moment: whoever opens it, and a run killed at any point, sees the state
/// of the last `Commit`, never less and never a part of one. It keeps a second copy beside the report that is one
/// commit behind, brings that one up to date and swaps the two names, so a commit costs what it adds. A reader that
/// keeps the file open for longer than one further commit can see the one after that being written. Pipes and terminals
/// are written to as they are; a file in whose place no other can be put is overwritten, which is said. One thread at a
/// time.
class ReportFile {
public:
    /// Replaces what is at `path` by a report without messages.
    /// \throws FilesystemException "Empty filepath", or "Can't write to file: ", the path and the system's reason
    ReportFile(const std::string& path, ReportFrame frame);
    /// Removes the second copy.
    ~ReportFile();
    ReportFile(const ReportFile&) = delete;
    ReportFile& operator=(const ReportFile&) = delete;

    /// Adds the text of one message to what the next commit writes.
    void Append(std::string_view messageText);

    /// Makes all that was appended part of the report.
    /// \throws FilesystemException; the report then stands as it was, and what was appended since is dropped
    void Commit();

    /// Drops what was appended since the last commit.
    void Discard() noexcept;

    /// The report as it stands is final, and on the disk; a pipe or terminal gets its tail.
    /// \throws FilesystemException
    void Close();

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace OrvlogConverter
