#include "render/Escapes.h"
#include "render/Finding.h"
#include "render/FormOutput.h"
#include "render/Forms.h"
#include "render/SourcePaths.h"

#include <utility>

namespace OrvlogConverter {

namespace {

// A suite says in front how many tests it has, so it is held until it is whole.
constexpr std::size_t LargestSuite = 1000;

/// A suite for each file; a file whose findings are many, or not together, has several.
class JunitOutput : public FormOutput {
public:
    JunitOutput(const std::string& path, const RenderSettings& settings)
        : FormOutput(path), paths_(settings.sourceRoot) {}

protected:
    void AppendHead(std::string& text) override {
        text += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"orvanta-analyzer\">\n";
    }

    void AppendFinding(std::string& text, const ReportMessage& message) override {
        const Finding finding = FindingOf(message);
        // The view lasts until the next path is asked for, so the suite keeps a copy.
        const std::string_view file = HasFile(message) ? std::string_view(paths_.Shown(finding.file)) : finding.file;
        // A suite is closed by the first finding that does not belong to it.
        if (file != suite_ || failures_ == LargestSuite) {
            AppendSuite(text);
            suite_ = file;
            // Escaped once for the suite, as each of its tests names the file three times.
            suiteText_.clear();
            AppendEscaped(suiteText_, suite_, TextForm::Markup);
        }
        ++failures_;
        ++all_;
        const std::string line = std::to_string(finding.line);
        // Servers group tests by class and list them by name, so the class is the file and the name tells rule and
        // line.
        tests_.append("<testcase classname=\"").append(suiteText_).append("\" name=\"");
        AppendEscaped(tests_, finding.rule, TextForm::Markup);
        tests_.append(" at line ").append(line).append("\" file=\"").append(suiteText_);
        tests_.append("\" line=\"").append(line).append("\"><failure type=\"");
        tests_ += LevelWord(message.level);
        tests_ += "\" message=\"";
        AppendEscaped(tests_, finding.text, TextForm::Markup);
        tests_.append("\">").append(suiteText_).append(":").append(line).append(": ");
        AppendEscaped(tests_, FirstPosition(message).currLine, TextForm::Markup);
        tests_ += "</failure></testcase>\n";
    }

    void AppendTail(std::string& text) override {
        // The last one, which no other finding has closed.
        AppendSuite(text);
        if (all_ == 0) { // servers take a report without tests for a failure of the step that wrote it
            text += "<testsuite name=\"orvanta-analyzer\" tests=\"1\" failures=\"0\" errors=\"0\">\n"
                    "<testcase classname=\"orvanta-analyzer\" name=\"no findings\"/>\n</testsuite>\n";
        }
        text += "</testsuites>\n";
    }

private:
    // Writes the open suite, if there is one, and leaves none open.
    void AppendSuite(std::string& text) {
        if (failures_ == 0) {
            return;
        }
        const std::string count = std::to_string(std::exchange(failures_, 0));
        text += "<testsuite name=\"" + suiteText_ + "\" tests=\"" + count + "\" failures=\"" + count + "\"";
        text += " errors=\"0\">\n" + tests_ + "</testsuite>\n";
        tests_.clear();
    }

    SourcePaths paths_;
    std::string suite_;     // the file that the open suite is about
    std::string suiteText_; // the same, escaped
    std::string tests_;     // of the open suite
    std::size_t failures_ = 0;
    std::size_t all_ = 0;
};

} // namespace

std::unique_ptr<IOutput> MakeJunitOutput(const std::string& path, const RenderSettings& settings) {
    return std::make_unique<JunitOutput>(path, settings);
}

} // namespace OrvlogConverter
