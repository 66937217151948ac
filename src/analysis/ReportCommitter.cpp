#include "analysis/ReportCommitter.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/ScopedFile.h"
#include "platform/Text.h"
#include "report/MessageLine.h"

#include <cerrno>
#include <exception>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

namespace Orvanta {

namespace {

// What an earlier run found can't be lost any more: it need not be on disk at once. So what has not changed costs a few
// writes of the report in all, and little memory.
// Whichever is reached first: the bytes bound the memory where few units found much.
constexpr std::size_t UnitsTogether = 256;
constexpr std::size_t BytesTogether = std::size_t{1} << 20U;

// Whether the unit took no time: its findings, if any, were known.
bool IsSettled(AnalyzerStatus status) {
    return status == AnalyzerStatus::CarriedOver || status == AnalyzerStatus::Excluded ||
           status == AnalyzerStatus::NotListed || status == AnalyzerStatus::Stopped;
}

// Keeps what else is known of the unit: findings that could be read are reported all the same.
void MarkFailed(UnitResult& result, std::string reason) {
    if (!IsFailure(result.status)) { // the first reason stays
        result.status = AnalyzerStatus::Failed;
        result.reason = std::move(reason);
    }
}

} // namespace

ReportCommitter::ReportCommitter(std::size_t units, OrvlogConverter::ReportOutput& output,
                                 OrvlogConverter::IOutput& chain, KeptFindings keptFindings)
    : output_(output), chain_(&chain), keptFindings_(std::move(keptFindings)) {
    // What a unit is whose result never comes in: it was not reached.
    outcome_.statuses.assign(units, AnalyzerStatus::Stopped);
}

void ReportCommitter::Commit(std::size_t unit, UnitResult result) {
    const std::lock_guard lock(mutex_);
    const bool isSettled = IsSettled(result.status);
    waiting_.emplace(unit, std::move(result));
    // One result may be what many behind it have waited for.
    for (auto ready = waiting_.find(next_); ready != waiting_.end(); ready = waiting_.find(next_)) {
        CommitUnit(lock, next_, ready->second);
        waiting_.erase(ready);
    }
    if (!isSettled) { // the next one that runs will take its time, too
        Publish(lock);
    }
}

void ReportCommitter::Flush() {
    const std::lock_guard lock(mutex_);
    Publish(lock);
}

void ReportCommitter::CommitUnit(Locked lock, std::size_t unit, UnitResult& result) {
    try {
        // The core's findings come before the driver's own, and both are passed on before the status is written down:
        // what can't be read changes it.
        PassOnFragment(lock, result);
        if (result.status == AnalyzerStatus::CarriedOver) {
            PassOnLines(lock, keptFindings_(unit), result);
        }
    } catch (const std::exception& error) {
        MarkFailed(result, std::string("The core's findings can't be read: ") + error.what());
    }
    for (const OrvlogConverter::ReportMessage& message : result.ownFindings) {
        PassOn(lock, message);
    }
    if (listener_ != nullptr) {
        listener_->UnitCommitted(unit, result);
    }
    outcome_.Settle(unit, result);
    ++next_;
    // A unit that was analyzed cost time, so its findings are put on disk at once; they can be lost by a kill.
    if (!IsSettled(result.status) || next_ - published_ >= UnitsTogether || bytesWaiting_ >= BytesTogether) {
        Publish(lock);
    }
}

// Puts on disk what was passed on since the last time. When that fails, the units whose findings it were have failed.
void ReportCommitter::Publish(Locked) {
    try {
        output_.Commit();
        for (std::size_t level = 0; level < findingsWaiting_.size(); ++level) {
            outcome_.findingsByLevel[level] += findingsWaiting_[level];
        }
    } catch (const std::exception& error) {
        for (; published_ < next_; ++published_) {
            const AnalyzerStatus status = outcome_.statuses[published_];
            // Those that were excluded or not reached had no findings to lose.
            if (status == AnalyzerStatus::CarriedOver || !IsSettled(status)) {
                outcome_.Fail(published_, error.what());
            }
        }
    }
    published_ = next_;
    // Either counted above, or lost with the units that have failed; never counted twice.
    findingsWaiting_ = {};
    bytesWaiting_ = 0;
}

// A core that found nothing may have made no file. One that failed may have left half a line; every whole finding is
// kept all the same.
void ReportCommitter::PassOnFragment(Locked lock, UnitResult& result) {
    if (result.fragmentPath.empty()) {
        return;
    }
    // Removed on every way out, also when it can't be read: the folder may be one that the user keeps.
    const ScopedFile file(result.fragmentPath);
    if (result.status == AnalyzerStatus::Stopped || !PathExists(result.fragmentPath)) {
        return;
    }
    std::ifstream fragment(NativePath(result.fragmentPath), std::ios::binary);
    if (!fragment.is_open()) {
        throw FileException(result.fragmentPath, std::generic_category().message(errno));
    }
    std::string line;
    for (std::size_t number = 1; std::getline(fragment, line); ++number) {
        PassOnLine(lock, line, number, result);
    }
    if (fragment.bad()) {
        throw FileException(result.fragmentPath, std::generic_category().message(errno));
    }
}

void ReportCommitter::PassOnLines(Locked lock, std::string_view lines, UnitResult& result) {
    bytesWaiting_ += lines.size();
    for (std::size_t number = 1; !lines.empty(); ++number) {
        PassOnLine(lock, TakeLine(lines), number, result);
    }
}

void ReportCommitter::PassOnLine(Locked lock, std::string_view line, std::size_t number, UnitResult& result) {
    // A core of the other system ends its lines in its own way.
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    if (line.empty()) {
        return;
    }
    try {
        PassOn(lock, OrvlogConverter::ReadMessageLine(line));
    } catch (const std::exception& error) {
        // One bad line costs the unit its good name, and the report nothing but that line.
        MarkFailed(result, "Line " + std::to_string(number) + " of the core's findings can't be read: " + error.what());
    }
}

void ReportCommitter::PassOn(Locked, const OrvlogConverter::ReportMessage& message) {
    if (chain_.Write(message)) {
        // A level that the core made up counts as none.
        ++findingsWaiting_[message.level < findingsWaiting_.size() ? message.level : 0];
    }
}

} // namespace Orvanta
