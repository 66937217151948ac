#pragma once

#include "cache/CachedResult.h"
#include "cache/Digest.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Orvanta {

class ResultCache;
struct UnitPlan;

/// What a cache knows of one unit's text. One thread uses an object.
class UnitRecall {
public:
    /// `cache` may be null: nothing is known then, and nothing costs time. Both outlive the object.
    UnitRecall(const UnitPlan& plan, ResultCache* cache) : plan_(plan), cache_(cache) {}

    /// The text is about to be made anew.
    void Forget() noexcept { looked_.reset(); }

    /// What is known of the text as it stands; null when nothing is. Reads the text, once until it is forgotten.
    [[nodiscard]] const CachedResult* Find();

    /// The cache keeps what the core has found in the text as it stands, what it printed, and the files that the text
    /// is made of where they were asked for. Findings that can't be read are not kept.
    void Keep(const std::string& fragmentPath, std::string_view output, const std::vector<std::string>* dependencies);

    /// The cache keeps the files that the text is made of, beside what it knows already.
    void KeepDependencies(const std::vector<std::string>& dependencies);

private:
    struct Look {
        Digest key;
        std::optional<CachedResult> result;
    };

    const UnitPlan& plan_;
    ResultCache* cache_;
    std::optional<Look> looked_;
    bool isCounted_ = false;
};

/// The findings as the core would have written them.
[[nodiscard]] std::string FindingLines(const CachedResult& result);

} // namespace Orvanta
