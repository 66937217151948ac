#include "render/Escapes.h"
#include "render/Finding.h"
#include "render/FormOutput.h"
#include "render/Forms.h"

#include <cstddef>

namespace OrvlogConverter {

namespace {

/// Lines end as the form's common description says, with a carriage return and a line feed.
class CsvOutput : public FormOutput {
public:
    using FormOutput::FormOutput;

protected:
    void AppendHead(std::string& text) override {
        // Scripts and spreadsheets know the columns by these names.
        text += "level,rule,code,cwe,standard,text,file,line,false alarm,source line,further places\r\n";
    }

    void AppendFinding(std::string& text, const ReportMessage& message) override {
        const Finding finding = FindingOf(message);
        text += LevelWord(message.level);
        for (const std::string_view cell : {finding.rule, std::string_view(message.code)}) {
            text += ',';
            AppendCsvCell(text, cell);
        }
        text += ',';
        // An empty cell and not 0, which a spreadsheet would count as a number.
        text += message.cwe == 0 ? "" : std::to_string(message.cwe);
        for (const std::string_view cell : {std::string_view(message.sastId), finding.text, finding.file}) {
            text += ',';
            AppendCsvCell(text, cell);
        }
        text += ',';
        text += std::to_string(finding.line);
        text += message.falseAlarm ? ",true," : ",false,";
        AppendCsvCell(text, FirstPosition(message).currLine);
        text += ',';
        AppendCsvCell(text, FurtherPlaces(message));
        text += "\r\n";
    }

    void AppendTail(std::string& /*text*/) override {}

private:
    // All in one cell: how many there are differs by finding, and a table has as many columns in each row.
    static std::string FurtherPlaces(const ReportMessage& message) {
        std::string places;
        for (std::size_t at = 1; at < message.positions.size(); ++at) {
            const MessagePosition& position = message.positions[at];
            places += (places.empty() ? "" : "; ") + position.file + ":" + std::to_string(position.line);
        }
        return places;
    }
};

} // namespace

std::unique_ptr<IOutput> MakeCsvOutput(const std::string& path, const RenderSettings& /*settings*/) {
    return std::make_unique<CsvOutput>(path);
}

} // namespace OrvlogConverter
