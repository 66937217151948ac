#pragma once

#include "analysis/BundleFiles.h"
#include "platform/LockFile.h"
#include "platform/Log.h"

#include <chrono>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Orvanta {

/// Which units get a bundle, and what may stand in it.
struct BundleWishes {
    std::string folder;                       ///< absolute; made with the first bundle
    std::optional<std::chrono::seconds> slow; ///< units that take longer, beside those that fail
    std::vector<std::string> sources;         ///< absolute and normalised: their units get one whatever becomes of them
    bool scrub = false;                       ///< paths and comments are replaced
};

/// Writes the bundles of a run, each of which lets somebody else see what went wrong with a unit.
///
/// A unit has one folder name in all runs, made from its source, its folder and its command. A bundle is written beside
/// that name and renamed, over a bundle of an earlier run and over nothing else. What can't be written is told, and
/// costs the unit nothing. One run at a time writes into a folder of bundles. Any thread may offer units.
class ReplayBundles {
public:
    /// `log` outlives the object.
    ReplayBundles(BundleWishes wishes, BundleMakers makers, Log& log);
    ~ReplayBundles();
    ReplayBundles(const ReplayBundles&) = delete;
    ReplayBundles& operator=(const ReplayBundles&) = delete;

    /// Writes the unit's bundle when it is wanted.
    void Offer(const BundledUnit& unit) noexcept;

    /// How many were written. For when no unit runs any more.
    [[nodiscard]] std::size_t Count() const noexcept { return count_; }

private:
    [[nodiscard]] bool IsWanted(const BundledUnit& unit) const;
    // Both need mutex_ held, which the first argument proves: the files are moved into place under it.
    using Locked = const std::lock_guard<std::mutex>&;
    void Open(Locked);
    void Write(Locked, const BundledUnit& unit);

    const BundleWishes wishes_;
    const BundleMakers makers_;
    Log& log_;
    std::mutex mutex_;
    LockFile lock_;         // guarded by mutex_; taken with the first bundle
    std::size_t count_ = 0; // guarded by mutex_ while units run
};

} // namespace Orvanta
