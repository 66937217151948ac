#include "FuzzFile.h"
#include "FuzzInput.h"
#include "render/misra/MisraPlan.h"
#include "report/Exceptions.h"

using namespace OrvlogConverter;

namespace {

const std::string& Held(std::string_view text) {
    static const Orvanta::FuzzFile file;
    return file.Hold(text);
}

void ReadAsPlan(std::string_view text, const MisraEditions& editions) {
    try {
        for (const auto& [guideline, category] : ReadMisraCategoryPlan(Held(text), editions)) {
            Orvanta::Require(category != MisraCategory::Unknown && category != MisraCategory::Document);
            Orvanta::Require(category <= editions.CategoryOf(guideline) || category == MisraCategory::Disapplied);
        }
    } catch (const ConfigException& error) {
        Orvanta::Require(std::string_view(error.what()).find(", line ") != std::string_view::npos);
    }
}

} // namespace

// A plan, a list of what was checked, and what a report says of that.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const MisraEditions editions;
    const std::string_view text = Orvanta::FuzzText(data, size);
    ReadAsPlan(text, editions);
    MisraChecked checked;
    try {
        checked.AddReport(text);
        Orvanta::Require(checked.IsKnown() == !checked.Guidelines().empty());
    } catch (const ParseException&) {
        // No JSON, or not of that form.
    }
    try {
        checked.ReadFile(Held(text));
        Orvanta::Require(checked.IsKnown());
    } catch (const ConfigException&) {
        // A word that is no guideline.
    }
    return 0;
}
