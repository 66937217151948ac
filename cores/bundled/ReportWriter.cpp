#include "bundled/ReportWriter.h"

#include "bundled/FileAlias.h"
#include "bundled/Misra.h"
#include "bundled/SameFaults.h"
#include "bundled/SourceLines.h"
#include "bundled/SourceMarks.h"
#include "bundled/WrittenLines.h"

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace Orvanta {

namespace {

using OrvlogConverter::ReportMessage;

// Cppcheck's findings about its own work: with one of them, the unit has not been analyzed, or not whole.
constexpr std::string_view FailureIds[] = {
    "cppcheckError", "cppcheckLimit", "instantiationError",   "internalAstError",
    "internalError", "invalidCode",   "noValidConfiguration", "preprocessorErrorDirective",
    "syntaxError",   "unhandledChar", "unknownMacro",
};

// Notes on how Cppcheck works, not on the code.
constexpr std::string_view DroppedSeverities[] = {"information", "debug", "none"};

template <std::size_t Count>
bool Contains(const std::string_view (&table)[Count], std::string_view word) {
    return std::find(std::begin(table), std::end(table), word) != std::end(table);
}

constexpr std::uint32_t HighLevel = 1;
constexpr std::uint32_t MediumLevel = 2;
constexpr std::uint32_t LowLevel = 3;

constexpr std::string_view FallThroughCheck = "clang-diagnostic-implicit-fallthrough";

/// Where a finding stands for the user.
struct Place {
    const MarkedFile* file; ///< not null
    std::uint32_t line;
};

/// The places that Cppcheck names in a unit's cut text, all of which must outlive the object.
class Places {
public:
    Places(std::span<const MarkedFile> files, std::span<const SystemMacroText> systemMacros)
        : files_(files), systemMacros_(systemMacros) {
        for (const MarkedFile& file : files) {
            // By key, as aliases tell no more of a file.
            fileByKey_.emplace(FileKey(file.path), &file);
        }
    }

    // A finding without a place, or with one outside of the unit's files, is laid to the first line of the source.
    [[nodiscard]] Place Resolve(const FindingPlace& location) const {
        const auto key = KeyOfAlias(location.file);
        const auto file = key ? fileByKey_.find(*key) : fileByKey_.end();
        if (file == fileByKey_.end() || location.line == 0) {
            return {&files_.front(), 1};
        }
        return {file->second, location.line};
    }

    [[nodiscard]] bool IsInSystemMacro(const Place& place, std::uint32_t column) const {
        const std::pair where(static_cast<std::size_t>(place.file - files_.data()), place.line);
        const auto pieces = std::equal_range(systemMacros_.begin(), systemMacros_.end(), where, IsOfEarlierLine());
        return std::any_of(pieces.first, pieces.second, [column](const SystemMacroText& piece) {
            return piece.begin <= column && column < piece.end;
        });
    }

private:
    struct IsOfEarlierLine {
        using FileLine = std::pair<std::size_t, std::uint32_t>;

        bool operator()(const SystemMacroText& piece, const FileLine& place) const {
            return FileLine(piece.file, piece.line) < place;
        }

        bool operator()(const FileLine& place, const SystemMacroText& piece) const {
            return place < FileLine(piece.file, piece.line);
        }
    };

    std::span<const MarkedFile> files_;
    std::span<const SystemMacroText> systemMacros_;
    std::unordered_map<std::uint64_t, const MarkedFile*> fileByKey_;
};

std::vector<std::string> IdsOf(const Finding& finding) {
    std::vector<std::string> ids = {finding.id};
    ids.insert(ids.end(), finding.otherIds.begin(), finding.otherIds.end());
    return ids;
}

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text;
}

/// Makes report messages of a unit's findings.
class MessageMaker {
public:
    explicit MessageMaker(const ReportScope& scope)
        : choice_(scope.choice), places_(scope.files, scope.systemMacros), written_(scope.cutText, lines_) {}

    // Those of one fault are to be added in the order in which their identifiers are told.
    void Add(const Finding& finding) {
        CheckRow row = RowFor(finding);
        const Place place = places_.Resolve(finding.location);
        if (row.level == HighLevel && finding.severity == "error" && MayBeSetInStatementExpression(finding, place)) {
            row.level = MediumLevel;
        }
        choice_.rules.ApplyTo(row);
        if (!IsWanted(finding, row, place)) {
            return;
        }
        std::vector<Told>& others = toldByPlace_[{place.file, place.line}];
        for (Told& other : others) {
            if (FindSameFault(other.finding.id, finding.id)) {
                AddTo(other, finding, row);
                return;
            }
        }
        others.push_back({finding, row, place});
    }

    [[nodiscard]] ReportedFindings Take() {
        ReportedFindings reported;
        for (const auto& [place, findings] : toldByPlace_) {
            for (const Told& told : findings) {
                ReportMessage message = MakeMessage(told);
                (IsHidden(told.finding, message) ? reported.hidden : reported.messages).push_back(std::move(message));
            }
        }
        return reported;
    }

private:
    /// A finding that is told, and where.
    struct Told {
        Finding finding;
        CheckRow row;
        Place place;
    };

    // The surer of both levels, and the longer way to the fault, which explains more.
    static void AddTo(Told& told, const Finding& other, const CheckRow& row) {
        std::vector<std::string>& ids = told.finding.otherIds;
        for (const std::string& id : IdsOf(other)) {
            if (std::find(ids.begin(), ids.end(), id) == ids.end()) {
                ids.push_back(id);
            }
        }
        told.row.level = std::min(told.row.level, row.level);
        told.row.cwe = told.row.cwe != 0 ? told.row.cwe : row.cwe;
        if (other.path.size() > told.finding.path.size()) {
            told.finding.path = other.path;
        }
    }

    static bool IsHidden(const Finding& finding, const ReportMessage& message) {
        const OrvlogConverter::MessagePosition& position = message.positions.front();
        return IsHiddenByMark(position.currLine, position.prevLine, IdsOf(finding), message.code);
    }

    // Not those in system headers, and of those in the text of their macros only faults: its style is not the user's.
    bool IsWanted(const Finding& finding, const CheckRow& row, const Place& place) {
        if (Contains(DroppedSeverities, finding.severity) || place.file->isSystem || !choice_.Has(row.group) ||
            (row.level == LowLevel && places_.IsInSystemMacro(place, finding.column))) {
            return false;
        }
        // Who looks at the text alone can't see that this was said.
        if (finding.id == FallThroughCheck) {
            const OrvlogConverter::MessagePosition position = lines_.At(place.file->path, place.line);
            return !SaysFallThrough(position.prevLine) && !SaysFallThrough(position.currLine);
        }
        const bool isAskedFor = choice_.all && !choice_.rules.SwitchesOff(row.id);
        return isAskedFor || IsAsWritten(finding, row.state, place);
    }

    bool IsAsWritten(const Finding& finding, CheckState state, const Place& place) {
        switch (state) {
        case CheckState::On:
            return true;
        case CheckState::AsWritten:
            return written_.IsAsWritten(place.file->path, place.line);
        case CheckState::BlockAsWritten:
            for (std::uint32_t line = FirstLine(finding, place); line < place.line; ++line) {
                if (!written_.IsWholeAsWritten(place.file->path, line)) {
                    return false;
                }
            }
            return written_.IsWholeAsWritten(place.file->path, place.line);
        case CheckState::Off:
            return false;
        }
        return false;
    }

    // Cppcheck, which alone calls findings errors, doesn't look into one: the variable that it names behind a colon may
    // be set there when its address is taken. Where no way to the fault is told, what stands shortly before may lead to
    // it.
    bool MayBeSetInStatementExpression(const Finding& finding, const Place& place) {
        constexpr std::uint32_t LinesBefore = 50;
        const std::size_t colon = finding.message.rfind(": ");
        if (colon == std::string::npos) {
            return false;
        }
        const std::string address = "&" + finding.message.substr(colon + 2);
        const std::uint32_t first = FirstLine(finding, place);
        bool isBehind = false;
        for (std::uint32_t line = first < place.line ? first : place.line - std::min(place.line, LinesBefore);
             line < place.line; ++line) {
            isBehind = isBehind || written_.HoldsStatementExpression(place.file->path, line);
            if (isBehind && lines_.At(place.file->path, line).currLine.find(address) != std::string::npos) {
                return true;
            }
        }
        return false;
    }

    // The first of the finding's places in its own file.
    std::uint32_t FirstLine(const Finding& finding, const Place& place) {
        std::uint32_t first = place.line;
        for (const FindingPlace& location : finding.path) {
            const Place other = places_.Resolve(location);
            first = other.file == place.file ? std::min(first, other.line) : first;
        }
        return first;
    }

    ReportMessage MakeMessage(const Told& told) {
        const Finding& finding = told.finding;
        ReportMessage message;
        message.code = "External";
        message.level = told.row.level;
        message.cwe = finding.cwe != 0 ? finding.cwe : told.row.cwe;
        // All findings of other tools have one code: the name in front is what tells them apart.
        message.message = "[" + finding.id + "] " + finding.message;
        if (const std::string_view rule = MisraRuleOf(finding.id); !rule.empty()) {
            // The add-on may not tell what a rule says: its text is MISRA's.
            message.message = "[" + finding.id + "] Rule " + std::string(rule) + " of MISRA C:2012 is not kept";
            message.sastId = "MISRA-C-" + std::string(rule);
        }
        // At the end: what the text begins with is by what reports know a check.
        if (!finding.otherIds.empty()) {
            message.message += " (" + Joined(finding.otherIds) + ")";
        }
        message.positions.push_back(lines_.At(told.place.file->path, told.place.line));
        for (const FindingPlace& location : finding.path) {
            const Place place = places_.Resolve(location);
            // The steps name the finding's own place again, and some of them more than once.
            const bool isKnown =
                std::any_of(message.positions.begin(), message.positions.end(), [&](const auto& known) {
                    return known.line == place.line && known.file == place.file->path;
                });
            if (!isKnown) {
                message.positions.push_back(lines_.At(place.file->path, place.line));
            }
        }
        return message;
    }

    CheckChoice choice_;
    Places places_;
    SourceLines lines_;
    WrittenLines written_;
    std::map<std::pair<const MarkedFile*, std::uint32_t>, std::vector<Told>> toldByPlace_;
};

bool IsBefore(const ReportMessage& left, const ReportMessage& right) {
    const auto key = [](const ReportMessage& message) {
        const OrvlogConverter::MessagePosition& position = message.positions.front();
        // The message begins with the identifier, so that decides before its text.
        return std::tie(position.file, position.line, message.message);
    };
    return key(left) < key(right);
}

} // namespace

ReportedFindings MakeReportMessages(std::span<const Finding> findings, const ReportScope& scope) {
    // A unit without findings needs no table of its files.
    if (findings.empty()) {
        return {};
    }
    MessageMaker maker(scope);
    for (const Finding& finding : findings) {
        maker.Add(finding);
    }
    ReportedFindings reported = maker.Take();
    // Sorted, so that a report does not depend on the order in which an engine runs its checks.
    std::vector<ReportMessage>& messages = reported.messages;
    std::stable_sort(messages.begin(), messages.end(), IsBefore);
    messages.erase(std::unique(messages.begin(), messages.end()), messages.end());
    return reported;
}

void AddFindings(std::vector<ReportMessage>& messages, std::vector<ReportMessage> others) {
    for (ReportMessage& other : others) {
        // Both were made in this order, which inserting one by one keeps.
        const auto place = std::lower_bound(messages.begin(), messages.end(), other, IsBefore);
        if (place == messages.end() || IsBefore(other, *place)) {
            messages.insert(place, std::move(other));
        }
    }
}

// Cppcheck ends with code 0 even then: an exit code of its own for this would also come for any finding.
std::string ReasonNotRead(std::span<const Finding> findings, std::span<const MarkedFile> files) {
    for (const Finding& finding : findings) {
        if (Contains(FailureIds, finding.id)) {
            const Place place = Places(files, {}).Resolve(finding.location);
            // The rest of the text shows the definitions that this core hands to Cppcheck.
            const std::string_view text = finding.message;
            return place.file->path + ", line " + std::to_string(place.line) + ": [" + finding.id + "] " +
                   std::string(text.substr(0, text.find(" Configuration: '")));
        }
    }
    return "";
}

} // namespace Orvanta
