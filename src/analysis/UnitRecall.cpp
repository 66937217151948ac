#include "analysis/UnitRecall.h"

#include "analysis/UnitPlan.h"
#include "cache/ResultCache.h"
#include "platform/Files.h"
#include "platform/Text.h"
#include "report/MessageLine.h"

#include <exception>
#include <utility>

namespace Orvanta {

const CachedResult* UnitRecall::Find() {
    if (cache_ == nullptr) {
        return nullptr;
    }
    if (!looked_) {
        const std::string text = ReadWholeFile(plan_.files.preprocessedPath);
        const Digest key =
            cache_->KeyOf({text, plan_.sourcePath, plan_.Directory(), plan_.settings, plan_.files.basePath});
        looked_ = Look{key, cache_->Find(key)};
        if (!std::exchange(isCounted_, true)) {
            cache_->Count(looked_->result.has_value());
        }
    }
    return looked_->result ? &*looked_->result : nullptr;
}

void UnitRecall::Keep(const std::string& fragmentPath, std::string_view output,
                      const std::vector<std::string>* dependencies) {
    if (!looked_) {
        return;
    }
    CachedResult result;
    result.output = output;
    if (dependencies != nullptr) {
        result.dependencies = *dependencies;
    }
    try {
        const std::string text = PathExists(fragmentPath) ? ReadWholeFile(fragmentPath) : std::string();
        for (std::string_view lines = text; !lines.empty();) {
            if (const std::string_view line = TakeLine(lines); !line.empty()) {
                result.findings.push_back(OrvlogConverter::ReadMessageLine(line));
            }
        }
    } catch (const std::exception&) { // who puts them into the report tells what is wrong with them
        return;
    }
    cache_->Store(looked_->key, result);
}

void UnitRecall::KeepDependencies(const std::vector<std::string>& dependencies) {
    if (looked_ && looked_->result && !looked_->result->dependencies) {
        looked_->result->dependencies = dependencies;
        cache_->Replace(looked_->key, *looked_->result);
    }
}

std::string FindingLines(const CachedResult& result) {
    std::string lines;
    for (const OrvlogConverter::ReportMessage& message : result.findings) {
        OrvlogConverter::AppendMessageLine(lines, message, OrvlogConverter::LineFormat::Json);
        lines += '\n';
    }
    return lines;
}

} // namespace Orvanta
