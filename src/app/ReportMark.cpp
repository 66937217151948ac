#include "app/ReportMark.h"

#include "platform/Exceptions.h"
#include "platform/FileSystemClock.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <chrono>
#include <sstream>
#include <utility>

namespace Orvanta {

namespace {

/// What the file holds, as a line of numbers. A report just written has a stamp that proves nothing yet: a change
/// within the same tick of the clock would not show. The first run that finds it unchanged reads it once and marks it
/// as proven.
struct Mark {
    Fingerprint contents;
    ContentFingerprint report;
    FileStamp stamp;
    bool isProven = false; // whether another content has another stamp
};

std::optional<Mark> ReadMark(const std::string& path) {
    try {
        if (!IsRegularFile(path)) { // a pipe would hold us
            return std::nullopt;
        }
        std::istringstream text(ReadWholeFile(path));
        Mark mark;
        text >> mark.contents.high >> mark.contents.low >> mark.report.size >> mark.report.bytes.high >>
            mark.report.bytes.low >> mark.stamp.size >> mark.stamp.modified >> mark.stamp.changed >>
            mark.stamp.volume >> mark.stamp.index >> mark.isProven;
        return text ? std::optional(mark) : std::nullopt;
    } catch (const ZelmException&) {
        return std::nullopt;
    }
}

std::string TextOf(const Mark& mark) {
    std::ostringstream text;
    for (const std::uint64_t number : {mark.contents.high, mark.contents.low, mark.report.size, mark.report.bytes.high,
                                       mark.report.bytes.low, mark.stamp.size}) {
        text << number << ' ';
    }
    text << mark.stamp.modified << ' ' << mark.stamp.changed << ' ' << mark.stamp.volume << ' ' << mark.stamp.index
         << ' ' << mark.isProven << '\n';
    return text.str();
}

bool IsProven(const FileStamp& stamp, const std::string& folder, std::chrono::steady_clock::time_point looked) {
    try {
        return FileSystemClock(folder).IsOlder(stamp, looked);
    } catch (const ZelmException&) {
        return false;
    }
}

} // namespace

ReportMark::ReportMark(const std::string& orvantaFolder, TellUser tell)
    : folder_(orvantaFolder), path_(JoinPath(orvantaFolder, "report.mark")), tell_(std::move(tell)) {}

bool ReportMark::Matches(const std::string& reportPath, const Fingerprint& contents) const {
    const std::optional<Mark> mark = ReadMark(path_);
    const std::optional<FileStamp> stamp = StampOf(reportPath);
    if (!mark || !stamp || mark->contents != contents || mark->report.size != stamp->size) {
        return false;
    }
    if (mark->isProven && mark->stamp == *stamp) {
        return true;
    }
    if (FingerprintOfFile(reportPath) != mark->report) {
        return false;
    }
    Write(reportPath, contents);
    return true;
}

void ReportMark::Write(const std::string& reportPath, const Fingerprint& contents) const {
    const auto looked = std::chrono::steady_clock::now();
    const std::optional<FileStamp> stamp = StampOf(reportPath);
    const std::optional<ContentFingerprint> report = stamp ? FingerprintOfFile(reportPath) : std::nullopt;
    if (!report || StampOf(reportPath) != stamp) {
        RemoveFile(path_);
        return;
    }
    try {
        if (const PathKind kind = KindOf(path_); kind != PathKind::Nothing && kind != PathKind::File) {
            throw FileException(path_, "it is no file");
        }
        AtomicFile file(path_);
        file.Append(TextOf({contents, *report, *stamp, IsProven(*stamp, folder_, looked)}));
        file.Commit();
    } catch (const ZelmException& fault) {
        tell_(std::string("Warning: ") + fault.what() + "; the next run will write the report again");
    }
}

} // namespace Orvanta
