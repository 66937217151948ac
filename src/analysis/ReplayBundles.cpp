#include "analysis/ReplayBundles.h"

#include "analysis/PathScrubber.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Fingerprint.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"
#include "platform/TemporaryPlace.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace Orvanta {

namespace {

constexpr const char* LockKey = "replay bundles";
constexpr const char* PartSuffix = ".part"; // of a bundle that is being written
constexpr const char* OldSuffix = ".old";   // of one that is being replaced

std::string Hexadecimal(std::uint64_t number) {
    constexpr std::string_view Digits = "0123456789abcdef";
    constexpr int Size = 16;
    std::string text(Size, '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, number >>= 4U) {
        *digit = Digits[number & 15U];
    }
    return text;
}

// The same in every run of one build. The source stands in front for whoever looks for it.
std::string FolderName(const UnitPlan& plan, bool isScrubbed) {
    FingerprintBuilder builder;
    builder.Add(plan.sourcePath).Add(plan.Directory());
    for (const std::string& word : plan.command->arguments.ToVector()) {
        builder.Add(word);
    }
    constexpr std::size_t LongestSourcePart = 100;
    const std::string source =
        isScrubbed ? "unit" : std::string(FileNameOf(plan.sourcePath).substr(0, LongestSourcePart));
    return source + '-' + Hexadecimal(builder.Value().low);
}

bool IsBundle(const std::string& folder) {
    const std::string record = JoinPath(folder, BundleRecordName);
    return LookAt(record).kind == PathKind::File && ReadWholeFile(record).starts_with(BundleMark);
}

void Rename(const std::string& from, const std::string& to) {
    std::error_code error;
    std::filesystem::rename(NativePath(from), NativePath(to), error);
    if (error) {
        throw FileException("Can't rename", from, error.message());
    }
}

} // namespace

ReplayBundles::ReplayBundles(BundleWishes wishes, BundleMakers makers, Log& log)
    : wishes_(std::move(wishes)), makers_(std::move(makers)), log_(log) {}

ReplayBundles::~ReplayBundles() {
    lock_.ReleaseAndRemove();
}

bool ReplayBundles::IsWanted(const BundledUnit& unit) const {
    const AnalyzerStatus status = unit.result.status;
    if (IsFailure(status)) {
        return true;
    }
    // Of any other unit nothing was done.
    if (status != AnalyzerStatus::Analyzed) {
        return false;
    }
    if (wishes_.slow && unit.elapsed >= *wishes_.slow) {
        return true;
    }
    const auto isSource = [path = ComparablePath(unit.plan.sourcePath)](const std::string& source) {
        return ComparablePath(source) == path;
    };
    return std::any_of(wishes_.sources.begin(), wishes_.sources.end(), isSource) ||
           HasUnreadableFinding(unit.result.fragmentPath); // which will make it a failed one
}

void ReplayBundles::Offer(const BundledUnit& unit) noexcept {
    try {
        if (!IsWanted(unit)) {
            return;
        }
        const std::lock_guard lock(mutex_);
        Open(lock);
        Write(lock, unit);
        ++count_;
    } catch (const std::exception& error) {
        try {
            log_.Line("The replay bundle of " + unit.plan.sourcePath + " can't be written: " + error.what());
        } catch (...) {
            return; // an output that takes nothing more is told by whoever writes there next
        }
    }
}

void ReplayBundles::Open(Locked) {
    if (lock_.CurrentState() != LockFile::State::None) {
        return;
    }
    MakeFolders(wishes_.folder);
    if (lock_.Take(wishes_.folder, LockKey) == LockFile::State::HeldByOther) {
        lock_ = LockFile(); // it may be gone when the next one fails
        throw ZelmException("another run is writing to " + wishes_.folder);
    }
}

void ReplayBundles::Write(Locked, const BundledUnit& unit) {
    const std::string name = FolderName(unit.plan, wishes_.scrub);
    const std::string folder = JoinPath(wishes_.folder, name);
    const bool replaces = LookAt(folder).kind != PathKind::Nothing;
    if (replaces && !IsBundle(folder)) {
        throw ZelmException(folder + " is no replay bundle");
    }
    // What a killed run has left under these names is ours: one run at a time is here.
    const std::string part = JoinPath(wishes_.folder, "." + name + PartSuffix);
    const std::string old = JoinPath(wishes_.folder, "." + name + OldSuffix);
    RemoveTree(part);
    RemoveTree(old);
    try {
        MakeFolders(part);
        PathScrubber scrubber;
        WriteBundleFiles(part, unit, makers_, wishes_.scrub ? &scrubber : nullptr);
        std::error_code ignored; // without the right, it is started by its shell
        using std::filesystem::perms;
        std::filesystem::permissions(NativePath(JoinPath(part, "replay.sh")),
                                     perms::owner_exec | perms::group_exec | perms::others_exec,
                                     std::filesystem::perm_options::add, ignored);
        if (replaces) {
            Rename(folder, old);
        }
        Rename(part, folder);
    } catch (...) {
        RemoveTree(part);
        throw;
    }
    RemoveTree(old);
    log_.VerboseLine("Replay bundle of " + unit.plan.sourcePath + ": " + folder);
}

} // namespace Orvanta
