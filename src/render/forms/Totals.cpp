#include "platform/Text.h"
#include "render/Escapes.h"
#include "render/Finding.h"
#include "render/FormOutput.h"
#include "render/Forms.h"
#include "report/AnalyzerType.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>
#include <vector>

namespace OrvlogConverter {

namespace {

/// By rank of the level.
using Counts = std::array<std::size_t, LevelRanks>;

std::size_t Sum(const Counts& counts) {
    std::size_t sum = 0;
    for (const std::size_t count : counts) {
        sum += count;
    }
    return sum;
}

// To the right within the width; what is wider stands as it is.
std::string Padded(std::string_view text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ') + std::string(text);
}

/// Two tables, by group and by rule. Counts only, so it takes no more memory for more findings.
class TotalsOutput : public FormOutput {
public:
    using FormOutput::FormOutput;

protected:
    void AppendHead(std::string& /*text*/) override {}

    void AppendFinding(std::string& /*text*/, const ReportMessage& message) override {
        const std::size_t rank = LevelRank(message.level);
        ++groups_[std::string(GroupName(ClassifyCode(message.code)))][rank];
        ++rules_[std::string(FindingOf(message).rule)][rank];
        ++all_[rank];
    }

    void AppendTail(std::string& text) override {
        AppendTable(text, "Group", {groups_.begin(), groups_.end()});
        text += '\n';
        // The most frequent rules first, those with equal sums by name: the maps are sorted and the sort is stable.
        Rows rules(rules_.begin(), rules_.end());
        std::stable_sort(rules.begin(), rules.end(),
                         [](const Row& left, const Row& right) { return Sum(left.second) > Sum(right.second); });
        AppendTable(text, "Rule", rules);
    }

private:
    using Row = std::pair<std::string, Counts>;
    using Rows = std::vector<Row>;

    void AppendTable(std::string& text, std::string_view title, Rows rows) const {
        // In both tables: a reader may cut out either.
        rows.emplace_back("Total", all_);
        std::size_t width = title.size();
        for (Row& row : rows) {
            // Escaped before it is measured, since escapes make it longer.
            std::string name;
            AppendEscaped(name, row.first, TextForm::Line);
            row.first = std::move(name);
            width = std::max(width, row.first.size());
        }
        text += std::string(title) + std::string(width - title.size(), ' ');
        for (const char* const head : {"High", "Medium", "Low", "None", "Total"}) {
            text += Padded(head, ColumnWidth);
        }
        text += '\n';
        for (const auto& [name, counts] : rows) {
            text += name + std::string(width - name.size(), ' ');
            for (const std::size_t count : counts) {
                text += Padded(std::to_string(count), ColumnWidth);
            }
            text += Padded(std::to_string(Sum(counts)), ColumnWidth) + '\n';
        }
    }

    static constexpr std::size_t ColumnWidth = 9;

    std::map<std::string, Counts> groups_;
    std::map<std::string, Counts> rules_;
    Counts all_ = {};
};

} // namespace

std::unique_ptr<IOutput> MakeTotalsOutput(const std::string& path, const RenderSettings& /*settings*/) {
    return std::make_unique<TotalsOutput>(path);
}

} // namespace OrvlogConverter
