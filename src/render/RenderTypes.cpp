#include "render/RenderTypes.h"

#include "render/Forms.h"
#include "render/misra/MisraComplianceOutput.h"
#include "report/Exceptions.h"
#include "report/FinishedReport.h"

#include <utility>

namespace OrvlogConverter {

namespace {

// This form and the next are those of reports themselves, which can be read again.
std::unique_ptr<IOutput> MakeJson(const std::string& path, const RenderSettings& /*settings*/) {
    auto output = std::make_unique<FinishedReport>(path, ReportForm::JsonDocument);
    output->AddMember("version", "1");
    return output;
}

std::unique_ptr<IOutput> MakeRaw(const std::string& path, const RenderSettings& /*settings*/) {
    return std::make_unique<FinishedReport>(path, ReportForm::RawLines);
}

std::unique_ptr<IOutput> MakeMisra(const std::string& path, const RenderSettings& settings) {
    // The editions first: the plan is checked against the categories that they give.
    MisraSettings misra;
    for (const std::string& name : settings.misraStandards) {
        misra.editions.Choose(MisraEditionNamed(name));
    }
    if (settings.categoriesPath) {
        misra.plan = ReadMisraCategoryPlan(*settings.categoriesPath, misra.editions);
    }
    misra.marks = settings.countDeviations ? MisraMarks::Deviations : MisraMarks::FalsePositives;
    // Shared and not copied: it is filled while the reports are read.
    misra.checked = settings.misraChecked;
    return std::make_unique<MisraComplianceOutput>(path, std::move(misra));
}

// The columns: name, suffix, isMisra, marksSuppressed, make.
constexpr RenderType Types[] = {
    {"json", ".json", false, false, MakeJson},
    {"raw", ".rawlog", false, false, MakeRaw},
    {"misra", ".misra.txt", true, false, MakeMisra},
    {"text", ".txt", false, false, MakeTextOutput},
    {"csv", ".csv", false, false, MakeCsvOutput},
    {"totals", ".totals.txt", false, false, MakeTotalsOutput},
    {"sarif", ".sarif", false, true, MakeSarifOutput},
    {"html", ".html", false, false, MakeHtmlOutput},
    {"gitlab", ".gitlab.json", false, false, MakeGitlabOutput},
    {"github", ".github.txt", false, false, MakeGithubOutput},
    {"teamcity", ".teamcity.txt", false, false, MakeTeamcityOutput},
    {"junit", ".junit.xml", false, false, MakeJunitOutput},
    {"sonarqube", ".sonarqube.json", false, false, MakeSonarqubeOutput},
};

} // namespace

std::span<const RenderType> AllRenderTypes() noexcept {
    return Types;
}

const RenderType& RenderTypeNamed(std::string_view name) {
    std::string known;
    for (const RenderType& type : Types) {
        if (type.name == name) {
            return type;
        }
        // Gathered while looking, so that the message can't lack a form.
        known += (known.empty() ? "" : ", ") + std::string(type.name);
    }
    throw ConfigException("Wrong render type: \"" + std::string(name) + "\", expected one of " + known);
}

} // namespace OrvlogConverter
