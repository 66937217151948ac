#include "bundled/Linking.h"

#include "bundled/CppcheckLink.h"
#include "bundled/FileAlias.h"
#include "bundled/FunctionLinks.h"
#include "bundled/MergedFindings.h"
#include "bundled/ReportWriter.h"
#include "bundled/ScopedFolder.h"
#include "bundled/SourceLines.h"
#include "bundled/UnitInformation.h"
#include "platform/Files.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Orvanta {

namespace {

std::vector<std::string> ReadList(const std::string& path) {
    const std::string text = ReadWholeFile(path);
    std::vector<std::string> paths;
    // One path in each line, as the driver wrote them.
    for (const std::string_view line : SplitLines(text)) {
        if (!line.empty()) {
            paths.emplace_back(line);
        }
    }
    return paths;
}

/// The files that facts stand in, and the units that hold facts of each.
class FactFiles {
public:
    void Add(std::uint32_t unit, const std::vector<std::string>& paths) {
        for (const std::string& path : paths) {
            std::vector<std::uint32_t>& units = unitsByFile_[FileKey(path)];
            if (units.empty()) {
                // Facts come from texts without system headers, so none of these is one.
                files_.push_back({path, false, true});
            }
            units.push_back(unit);
        }
    }

    [[nodiscard]] const std::vector<MarkedFile>& Files() const noexcept { return files_; }

    // A fault whose places one unit holds alone is found when that unit is analyzed.
    [[nodiscard]] bool IsSeenByOneUnit(const Finding& finding) const {
        // The units that hold all places of the finding: what is left in the end knows the whole fault.
        std::vector<std::uint32_t> units = UnitsWith(finding.location);
        for (const FindingPlace& location : finding.path) {
            const std::vector<std::uint32_t> others = UnitsWith(location);
            std::vector<std::uint32_t> both;
            std::set_intersection(units.begin(), units.end(), others.begin(), others.end(), std::back_inserter(both));
            units = std::move(both);
        }
        return !units.empty();
    }

private:
    [[nodiscard]] std::vector<std::uint32_t> UnitsWith(const FindingPlace& location) const {
        const auto key = KeyOfAlias(location.file);
        const auto units = key ? unitsByFile_.find(*key) : unitsByFile_.end();
        return units == unitsByFile_.end() ? std::vector<std::uint32_t>() : units->second;
    }

    std::vector<MarkedFile> files_;
    std::unordered_map<std::uint64_t, std::vector<std::uint32_t>> unitsByFile_; // in ascending order
};

} // namespace

std::string LinkUnits(const LinkSettings& settings) {
    const std::vector<std::string> unitPaths = ReadList(settings.listPath);
    const ScopedFolder folder(settings.workFolder);
    FactFiles factFiles;
    FunctionLinks functions;
    // One unit after the other, so that no more than one is in memory.
    for (std::uint32_t unit = 0; unit < unitPaths.size(); ++unit) {
        const UnitInformation information = ReadUnitInformation(unitPaths[unit]);
        factFiles.Add(unit, information.files);
        functions.Add(information.functions);
    }
    std::optional<CppcheckLink> link; // only for units that Cppcheck has looked at
    // Once more: which functions are one shows only when all are known.
    for (const std::string& path : unitPaths) {
        UnitInformation information = ReadUnitInformation(path);
        if (!information.facts.empty()) {
            if (!link) {
                link.emplace(folder.Path());
            }
            functions.Rename(information.facts);
            link->Add(information.facts);
        }
    }
    CppcheckOutput output = link ? link->Run() : CppcheckOutput();
    std::erase_if(output.findings, [&](const Finding& finding) { return factFiles.IsSeenByOneUnit(finding); });
    // Each unit chooses for itself.
    constexpr std::uint8_t AllGroups = 255;
    const ReportScope scope{factFiles.Files(), {}, {}, {AllGroups}};
    WriteMergedFindings(settings.mergedPath, MakeReportMessages(output.findings, scope).messages);
    return std::move(output.otherText);
}

} // namespace Orvanta
