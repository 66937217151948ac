#pragma once

#include "render/misra/MisraPlan.h"
#include "report/IOutput.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace OrvlogConverter {

class SuppressBase;

/// What outputs are to know beside their path.
struct RenderSettings {
    std::optional<std::string> categoriesPath; ///< the file that re-categorises MISRA guidelines
    std::vector<std::string> misraStandards;   ///< names of editions
    bool countDeviations = false;              ///< messages marked as false alarms are deviations, for MISRA
    std::shared_ptr<MisraChecked> misraChecked = std::make_shared<MisraChecked>(); ///< filled while reports are read
    std::string sourceRoot = {};  ///< paths are told from here where a form wants that; empty: from here
    bool namesSourceRoot = false; ///< the user gave the root, so it may stand in a report
    std::string programVersion = {};
    std::string comparedWith = {};            ///< the earlier report whose findings were left out; empty: none
    const SuppressBase* suppressed = nullptr; ///< forms that can tell suppressed findings apart get and mark them
    /// The findings that the earlier report has and these reports don't. Asked for in `IOutput::End`; may be empty.
    std::function<std::size_t()> countGone = {};
    /// Takes what the user is to know about an output, in `IOutput::End`. May be empty.
    std::function<void(std::string_view line)> tell = {};
};

/// A form that reports can be rendered in. A new one is a class behind `IOutput` and a row in the table of these.
struct RenderType {
    std::string_view name;   ///< as the user gives it
    std::string_view suffix; ///< of a file whose name is made up
    bool isMisra;            ///< the settings above are for it, and it wants marked messages too
    bool marksSuppressed;    ///< it can tell suppressed and marked findings from others
    std::unique_ptr<IOutput> (*make)(const std::string& path, const RenderSettings& settings);
};

/// One file to be made.
struct RenderTarget {
    const RenderType* type; ///< of the table
    std::string path;       ///< "-" is standard output
};

/// The table, in the order in which the help names them.
[[nodiscard]] std::span<const RenderType> AllRenderTypes() noexcept;

/// The row of the table with this name, in exactly this spelling; the message of the error lists all names.
/// \throws ConfigException for a name that no type has
[[nodiscard]] const RenderType& RenderTypeNamed(std::string_view name);

} // namespace OrvlogConverter
