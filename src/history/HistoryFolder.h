#pragma once

#include "history/DependencyInfo.h"
#include "history/HistoryFile.h"
#include "platform/Exceptions.h"
#include "platform/Fingerprint.h"

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <string>

namespace Orvanta {

/// Takes a line that is to be shown to the user. Any thread may call it.
using TellUser = std::function<void(const std::string& line)>;

/// The files of a history in its folder, but for the findings. Each may be damaged, missing or out of reach, or
/// something else may stand in its place: that costs time and is told in one line for each file, but ends no run.
class HistoryFolder {
public:
    /// What a fault costs.
    enum class Loss {
        Known, ///< what earlier runs have learned
        New,   ///< what this run has learned
    };

    /// Touches nothing: the folder need not exist. Without `tell`, nothing is told.
    HistoryFolder(std::string path, TellUser tell);

    /// As it was given.
    [[nodiscard]] const std::string& Path() const noexcept { return path_; }

    /// Tells a fault of a file, unless one of it has been told. Any thread may call it.
    void Tell(const FileException& fault, Loss loss);

    /// What `depend_info.json` holds: absent when there is none. It is read to its end, unless the binary file (null
    /// when there is none) tells by its stamp that it is the one that belongs there. \throws FileException when it
    /// can't be read
    [[nodiscard]] std::optional<ContentFingerprint> ReadInfoFingerprint(const HistoryData* binary);

    /// Whether the stamp of `depend_info.json` has been learned, which spares the next run to read it: worth saving.
    [[nodiscard]] bool HasLearned() const noexcept { return hasLearned_; }

    /// Reads `depend_info.json`. \throws FileException
    void ReadInfo(const std::function<void(const DependencyInfoEntry&)>& take) const;

    /// Reads the binary file; absent when there is none, or none of use.
    [[nodiscard]] std::optional<HistoryData> ReadBinary();

    /// What becomes of `depend_info.json`.
    enum class InfoWriting {
        Stands,       ///< it names the same files as the binary file that is written
        StandsBehind, ///< it stays, though it does not
        Replace,
    };

    /// What is written. The head lacks what the folder itself knows: all of `depend_info.json`.
    struct Contents {
        HistoryHead head;
        HistoryCounts counts;
        std::function<void(HistoryFileWriter&)> writeTables;
        std::function<void(DependencyInfoWriter&)> writeInfo;
    };

    /// Replaces the binary file, and then `depend_info.json` if need be. The binary file tells of both, the old one and
    /// the new one: at no moment is there one that does not belong to it.
    /// \throws FileException; what was there before is there still
    void Write(Contents contents, InfoWriting writing);

    /// The `depend_info.json` that was read turned out to be of no use.
    void ForgetInfo() noexcept { infoOnDisk_.reset(); }

    /// Whether there is a `depend_info.json` of use.
    [[nodiscard]] bool HasInfo() const noexcept { return infoOnDisk_.has_value(); }

private:
    void WriteBinary(const Contents& contents) const;
    /// False too when the folder's clock can't be read.
    [[nodiscard]] bool IsProven(const FileStamp& stamp, std::chrono::steady_clock::time_point looked) const;

    std::string path_;
    TellUser tell_;
    std::mutex telling_;
    std::set<std::string> told_;                   // the files of which a fault was told; guarded by telling_
    std::optional<ContentFingerprint> infoOnDisk_; // of `depend_info.json`; absent: nothing of use
    FileStamp infoStamp_;                          // of that file, when it tells its content; else all zero
    bool hasLearned_ = false;
};

} // namespace Orvanta
