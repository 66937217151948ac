#include "render/RenderTypes.h"

#include "render/misra/MisraComplianceOutput.h"
#include "report/Exceptions.h"
#include "report/FinishedReport.h"

#include <utility>

namespace OrvlogConverter {

namespace {

std::unique_ptr<IOutput> MakeJson(const std::string& path, const RenderSettings& /*settings*/) {
    auto output = std::make_unique<FinishedReport>(path, ReportForm::JsonDocument);
    output->AddMember("version", "1");
    return output;
}

std::unique_ptr<IOutput> MakeRaw(const std::string& path, const RenderSettings& /*settings*/) {
    return std::make_unique<FinishedReport>(path, ReportForm::RawLines);
}

std::unique_ptr<IOutput> MakeMisra(const std::string& path, const RenderSettings& settings) {
    MisraSettings misra;
    for (const std::string& name : settings.misraStandards) {
        misra.editions.Choose(MisraEditionNamed(name));
    }
    if (settings.categoriesPath) {
        misra.plan = ReadMisraCategoryPlan(*settings.categoriesPath, misra.editions);
    }
    misra.marks = settings.countDeviations ? MisraMarks::Deviations : MisraMarks::FalsePositives;
    misra.checked = settings.misraChecked;
    return std::make_unique<MisraComplianceOutput>(path, std::move(misra));
}

constexpr RenderType Types[] = {
    {"json",  ".json",      false, MakeJson },
    {"raw",   ".rawlog",    false, MakeRaw  },
    {"misra", ".misra.txt", true,  MakeMisra},
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
        known += (known.empty() ? "" : ", ") + std::string(type.name);
    }
    throw ConfigException("Wrong render type: \"" + std::string(name) + "\", expected one of " + known);
}

} // namespace OrvlogConverter
