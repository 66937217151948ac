#include "analysis/JournalWriter.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"

#include <optional>
#include <string>
#include <utility>

namespace Orvanta {

namespace {

// Absent when they can't be read: the next receiver reads the same file and says why.
std::optional<std::string> FindingsOf(const UnitResult& result) {
    try {
        const bool hasAny = !result.fragmentPath.empty() && PathExists(result.fragmentPath);
        return hasAny ? ReadWholeFile(result.fragmentPath) : std::string();
    } catch (const FileException&) {
        return std::nullopt;
    }
}

} // namespace

void JournalWriter::Commit(std::size_t unit, UnitResult result) {
    // One that failed runs again: it may have failed for want of something.
    const bool isFinished = result.status == AnalyzerStatus::Analyzed || result.status == AnalyzerStatus::FromCache;
    if (isFinished && result.text) {
        if (const std::optional<std::string> findings = FindingsOf(result)) {
            journal_.Append(unit, {*result.text, result.importsModules}, *findings);
        }
    }
    next_.Commit(unit, std::move(result));
}

} // namespace Orvanta
