#include "report/LogParserWorker.h"

#include "platform/Console.h"
#include "report/DocumentationLink.h"
#include "report/Exceptions.h"
#include "report/ReportReader.h"

#include <algorithm>
#include <utility>

namespace OrvlogConverter {

namespace {

/// A filter that owns what stands behind it.
class OwningFilter : public MessageFilter {
public:
    OwningFilter(std::unique_ptr<IOutput> output, MessageFilterSettings settings)
        : MessageFilter(output.get(), std::move(settings)), output_(std::move(output)) {}

private:
    std::unique_ptr<IOutput> output_;
};

} // namespace

LogParserWorker::LogParserWorker(LogParserSettings settings, const Orvanta::StopFlag& stop)
    : settings_(std::move(settings)), stop_(stop) {}

void LogParserWorker::Run() {
    IOutput& chain = BuildChain();
    Counts counts;
    chain.Begin();
    if (settings_.documentationLink == LogParserSettings::DocumentationLink::Write) {
        chain.Write(DocumentationLinkMessage());
    }
    for (const std::string& report : settings_.reports) {
        Parse(report, chain, counts);
    }
    chain.End();
    Finish(counts);
}

IOutput& LogParserWorker::BuildChain() {
    if (settings_.targets.empty()) {
        throw ConfigException("Render type is required");
    }
    PrintIgnoredFlags();
    for (const RenderTarget& target : settings_.targets) {
        MessageFilterSettings filter = settings_.filter;
        if (target.type->wantsDeviations && settings_.render.countDeviations) {
            filter.falseAlarms = MessageFilterSettings::FalseAlarms::Keep;
        }
        outputs_.Add(
            std::make_unique<OwningFilter>(target.type->make(target.path, settings_.render), std::move(filter)));
    }
    return root_.emplace(&outputs_, settings_.sourceRoot);
}

void LogParserWorker::PrintIgnoredFlags() const {
    const bool isMisra = std::any_of(settings_.targets.begin(), settings_.targets.end(),
                                     [](const RenderTarget& target) { return target.type->wantsDeviations; });
    const std::pair<bool, const char*> flags[] = {
        {settings_.render.categoriesPath.has_value(), "grp"             },
        {settings_.render.countDeviations,            "misra_deviations"},
    };
    for (const auto& [isGiven, name] : flags) {
        if (isGiven && !isMisra) {
            PrintLine(std::string("The use of the '") + name +
                      "' flag is valid only for the 'misra' format. Otherwise, it will be ignored.");
        }
    }
}

void LogParserWorker::Parse(const std::string& report, IOutput& chain, Counts& counts) {
    const auto takeMessage = [&](const ReportMessage& message, std::string_view text) {
        if (stop_.IsSet()) {
            throw StoppedException();
        }
        origin_ = {&message, text};
        ++counts.total;
        counts.taken += chain.Write(message) ? 1U : 0U;
        origin_ = {};
    };
    const auto takeMember = [this](const std::string& key, const std::string& value) {
        TakeMember(key, value);
    };
    ReportReader(report).Read({takeMessage, takeMember});
}

void LogParserWorker::Finish(const Counts& counts) {
    PrintLine("Total messages: " + std::to_string(counts.total));
    PrintLine("Filtered messages: " + std::to_string(counts.taken));
}

void LogParserWorker::TakeMember(const std::string& /*key*/, const std::string& /*value*/) {}

void LogParserWorker::PrintLine(std::string text) {
    Orvanta::WriteToStandardOutput(text += '\n');
}

} // namespace OrvlogConverter
