#include "history/HistoryFolder.h"

#include "platform/FileSystemClock.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"

#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::string_view InfoName = "depend_info.json";
constexpr std::string_view BinaryName = "unit_history.bin";

// Fails for all but a file and nothing at all. A pipe would hold who opens it until somebody comes to its other end.
void RequireFileOrNothing(const std::string& path) {
    switch (KindOf(path)) {
    case PathKind::Nothing:
    case PathKind::File:
        return;
    case PathKind::Folder:
        throw FileException(path, "a folder stands where a file belongs");
    case PathKind::Other:
        throw FileException(path, "it is no file");
    }
}

std::ifstream OpenFile(const std::string& path) {
    RequireFileOrNothing(path);
    std::ifstream input(NativePath(path), std::ios::binary);
    if (!input.is_open()) {
        throw FileException(path, std::generic_category().message(errno));
    }
    return input;
}

} // namespace

HistoryFolder::HistoryFolder(std::string path, TellUser tell) : path_(std::move(path)), tell_(std::move(tell)) {}

void HistoryFolder::Tell(const FileException& fault, Loss loss) {
    const std::lock_guard lock(telling_);
    // Once for each file: a disk that is full would else be told for every unit.
    if (!told_.insert(fault.Path()).second || !tell_) {
        return;
    }
    tell_(std::string("Warning: ") + fault.what() +
          (loss == Loss::Known ? "; what was known from there is found anew"
                               : "; the next run will analyze more than it had to"));
}

std::optional<ContentFingerprint> HistoryFolder::ReadInfoFingerprint(const HistoryData* binary) {
    const std::string path = JoinPath(path_, InfoName);
    RequireFileOrNothing(path);
    const auto looked = std::chrono::steady_clock::now();
    const std::optional<FileStamp> stamp = StampOf(path);
    // Nearly every run ends here, and is spared hundreds of megabytes. A stamp that is not known is all zero, and no
    // file's.
    if (stamp && binary != nullptr && *stamp == binary->infoStamp) {
        infoStamp_ = *stamp;
        infoOnDisk_ = binary->info;
        return infoOnDisk_;
    }
    infoOnDisk_ = FingerprintOfFile(path);
    if (!infoOnDisk_ && PathExists(path)) {
        throw FileException(path, std::generic_category().message(errno));
    }
    // The same stamp before and behind the reading: then it belongs to what was read.
    if (stamp && binary != nullptr && infoOnDisk_ == binary->info && StampOf(path) == stamp &&
        IsProven(*stamp, looked)) {
        infoStamp_ = *stamp;
        hasLearned_ = true;
    }
    return infoOnDisk_;
}

// Whether a change of the file would have given it another stamp by now.
bool HistoryFolder::IsProven(const FileStamp& stamp, std::chrono::steady_clock::time_point looked) const {
    try {
        return FileSystemClock(path_).IsOlder(stamp, looked);
    } catch (const ZelmException&) {
        return false;
    }
}

void HistoryFolder::ReadInfo(const std::function<void(const DependencyInfoEntry&)>& take) const {
    const std::string path = JoinPath(path_, InfoName);
    std::ifstream input = OpenFile(path);
    try {
        ReadDependencyInfo(input, take);
    } catch (const FileException&) {
        throw;
    } catch (const ZelmException& fault) {
        throw FileException(path, fault.what());
    }
}

std::optional<HistoryData> HistoryFolder::ReadBinary() {
    const std::string path = JoinPath(path_, BinaryName);
    try {
        if (!PathExists(path)) {
            return std::nullopt;
        }
        std::ifstream input = OpenFile(path);
        return ReadHistory(input);
    } catch (const FileException& fault) {
        Tell(fault, Loss::Known);
    } catch (const ZelmException& fault) {
        Tell(FileException(path, fault.what()), Loss::Known);
    }
    return std::nullopt;
}

void HistoryFolder::Write(Contents contents, InfoWriting writing) {
    const std::string infoPath = JoinPath(path_, InfoName);
    // All that can be found out beforehand is, before anything is replaced.
    MakeFolders(path_);
    RequireFileOrNothing(infoPath);
    RequireFileOrNothing(JoinPath(path_, BinaryName));
    HistoryHead& head = contents.head;
    const ContentFingerprint onDisk = infoOnDisk_.value_or(ContentFingerprint());
    if (writing != InfoWriting::Replace) {
        (writing == InfoWriting::StandsBehind ? head.earlierInfo : head.info) = onDisk;
        head.infoStamp = writing == InfoWriting::Stands ? infoStamp_ : FileStamp();
        WriteBinary(contents);
        hasLearned_ = false;
        return;
    }
    // The new file is whole on disk before the binary file names it, and takes its place after that.
    DependencyInfoWriter writer(infoPath);
    contents.writeInfo(writer);
    head.earlierInfo = onDisk;
    head.info = writer.Finish();
    // A kill behind this finds an old file, which the binary file knows as the one before.
    WriteBinary(contents);
    writer.Commit();
    infoOnDisk_ = head.info;
    // Too young to prove anything; the next run learns it.
    infoStamp_ = {};
    hasLearned_ = false;
}

void HistoryFolder::WriteBinary(const Contents& contents) const {
    HistoryFileWriter writer(JoinPath(path_, BinaryName), contents.head, contents.counts);
    contents.writeTables(writer);
    writer.Commit();
}

} // namespace Orvanta
