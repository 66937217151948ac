#pragma once

#include "render/misra/MisraPlan.h"
#include "report/IOutput.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace OrvlogConverter {

/// What outputs are to know beside their path.
struct RenderSettings {
    std::optional<std::string> categoriesPath; ///< the file that re-categorises MISRA guidelines
    std::vector<std::string> misraStandards;   ///< names of editions
    bool countDeviations = false;              ///< messages marked as false alarms are deviations, for MISRA
    std::shared_ptr<MisraChecked> misraChecked = std::make_shared<MisraChecked>(); ///< filled while reports are read
};

/// A form that reports can be rendered in. A new one is a class behind `IOutput` and a row in the table of these.
struct RenderType {
    std::string_view name;   ///< as the user gives it
    std::string_view suffix; ///< of a file whose name is made up
    bool isMisra;            ///< the settings above are for it, and it wants marked messages too
    std::unique_ptr<IOutput> (*make)(const std::string& path, const RenderSettings& settings);
};

/// One file to be made.
struct RenderTarget {
    const RenderType* type; ///< of the table
    std::string path;
};

/// The table, in the order in which the help names them.
[[nodiscard]] std::span<const RenderType> AllRenderTypes() noexcept;

/// \throws ConfigException for a name that no type has
[[nodiscard]] const RenderType& RenderTypeNamed(std::string_view name);

} // namespace OrvlogConverter
