#include "render/misra/MisraPlan.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Text.h"
#include "report/Exceptions.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <optional>
#include <utility>

namespace OrvlogConverter {

namespace {

using Orvanta::Trim;

// Reads the lines that say something; what `read` throws gets the line in front.
void ReadLines(const std::string& path, const std::function<void(std::string_view)>& read) {
    std::string text;
    try {
        text = Orvanta::ReadWholeFile(path);
    } catch (const Orvanta::ZelmException& error) {
        // Of the kind that the converter throws for every file.
        throw FilesystemException(std::string("Couldn't read file ") + error.what());
    }
    std::string_view rest = text;
    for (std::size_t number = 1; !rest.empty(); ++number) {
        std::string_view line = Orvanta::TakeLine(rest);
        // No guideline's name and no category holds a "#", so it may stand anywhere in a line.
        const std::string_view content = Trim(Orvanta::TakeUpTo(line, "#"));
        try {
            if (!content.empty()) {
                read(content);
            }
        } catch (const ConfigException& error) {
            throw ConfigException(path + ", line " + std::to_string(number) + ": " + error.what());
        }
    }
}

// Whether a plan may put the one category in the place of the other.
// Categories are sorted by how binding they are, so comparing them says which way the plan goes.
bool IsAllowed(MisraCategory standard, MisraCategory planned) {
    if (planned == MisraCategory::Disapplied) {
        // Only what nobody is bound to may be disapplied.
        return standard >= MisraCategory::Advisory;
    }
    return planned <= standard;
}

// Of those that a plan may name: "Document" belongs to the standard that has it.
MisraCategory CategoryNamed(std::string_view name) {
    for (const MisraCategory category :
         {MisraCategory::Mandatory, MisraCategory::Required, MisraCategory::Advisory, MisraCategory::Disapplied}) {
        if (Orvanta::EqualsIgnoringCase(NameOf(category), name)) {
            return category;
        }
    }
    throw ConfigException("wrong category \"" + std::string(name) +
                          "\", expected Mandatory, Required, Advisory or Disapplied");
}

// A code of the analyzer stands for a guideline that no edition lists.
void RequireKnown(std::string_view name, const MisraGuideline& guideline, const MisraEditions& editions) {
    const MisraEdition* const edition = editions.Of(guideline.standard);
    if (edition != nullptr && edition->CategoryOf(guideline) == MisraCategory::Unknown) {
        throw ConfigException(std::string(edition->name) + " has no guideline \"" + std::string(name) + "\"");
    }
}

void ReadPlanLine(std::string_view line, const MisraEditions& editions, MisraCategoryPlan& plan) {
    std::string_view rest = line;
    const std::string_view name = Trim(Orvanta::TakeUpTo(rest, "="));
    const std::optional<MisraGuideline> guideline = ParseMisraGuideline(name);
    if (line.find('=') == std::string_view::npos || !guideline) {
        throw ConfigException("\"" + std::string(line) + "\", expected a guideline, \"=\" and its category");
    }
    const MisraCategory planned = CategoryNamed(Trim(rest));
    RequireKnown(name, *guideline, editions);
    if (const MisraCategory standard = editions.CategoryOf(*guideline); !IsAllowed(standard, planned)) {
        throw ConfigException(std::string(name) + " is " + std::string(NameOf(standard)) + " and can't become " +
                              std::string(NameOf(planned)));
    }
    // Which of two lines counts must not depend on their order.
    if (!plan.emplace(*guideline, planned).second) {
        throw ConfigException(std::string(name) + " stands twice");
    }
}

// Empty when the value has no list. Its errors leave the naming of the report to the caller.
std::set<MisraGuideline> GuidelinesOfReport(std::string_view json) {
    std::set<MisraGuideline> guidelines;
    try {
        const auto value = nlohmann::json::parse(json);
        // Names that are not understood are left out: a later version may write more than this one knows.
        for (const std::string& name : value.value("guidelines", std::vector<std::string>())) {
            if (const auto guideline = ParseMisraGuideline(name)) {
                guidelines.insert(*guideline);
            }
        }
    } catch (const nlohmann::json::exception& error) {
        throw ParseException(std::string("the member \"checked\" can't be read: ") + error.what());
    }
    return guidelines;
}

} // namespace

MisraCategoryPlan ReadMisraCategoryPlan(const std::string& path, const MisraEditions& editions) {
    MisraCategoryPlan plan;
    ReadLines(path, [&](std::string_view line) { ReadPlanLine(line, editions, plan); });
    return plan;
}

void MisraChecked::ReadFile(const std::string& path) {
    guidelines_.clear();
    ReadLines(path, [this](std::string_view line) {
        while (!line.empty()) {
            const std::string_view name = Trim(Orvanta::TakeUpTo(line, ",;"));
            const std::optional<MisraGuideline> guideline = ParseMisraGuideline(name);
            if (!guideline) {
                throw ConfigException("\"" + std::string(name) + "\", expected a guideline");
            }
            guidelines_.insert(*guideline);
        }
    });
    // Only now: a file that could not be read says nothing.
    hasFile_ = true;
}

void MisraChecked::AddReport(std::string_view json) {
    // The user's list outweighs what reports say of themselves.
    if (hasFile_) {
        return;
    }
    const std::set<MisraGuideline> guidelines = json.empty() ? std::set<MisraGuideline>() : GuidelinesOfReport(json);
    if (hasReports_) {
        // Only what every report looked at was looked at in the whole.
        std::erase_if(guidelines_, [&](const MisraGuideline& known) { return !guidelines.contains(known); });
    } else {
        guidelines_ = guidelines;
    }
    hasReports_ = true;
    // One report that does not tell is enough: then nothing is known of the whole.
    isReportSilent_ = isReportSilent_ || guidelines.empty();
}

} // namespace OrvlogConverter
