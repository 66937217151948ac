#include "render/LogParserWorker.h"

#include "platform/Console.h"
#include "report/DocumentationLink.h"
#include "report/Exceptions.h"
#include "report/ReportPass.h"
#include "report/SourceRootTransformer.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
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
    OpenTargets();
    SourceRootTransformer chain(&outputs_, settings_.sourceRoot);
    chain.Begin();
    if (settings_.documentationLink == LogParserSettings::DocumentationLink::Write) {
        chain.Write(DocumentationLinkMessage());
    }
    std::size_t total = 0;
    std::size_t taken = 0;
    for (const std::string& report : settings_.reports) {
        std::string checked;
        const ReportReceiver receiver = {
            [&](const ReportMessage& message, std::string_view /*text*/) { taken += chain.Write(message) ? 1U : 0U; },
            [&](const std::string& key, const std::string& value) {
                if (key == "checked") {
                    checked = value;
                }
            }};
        total += PassReport(report, receiver, stop_);
        AddChecked(report, checked);
    }
    chain.End();
    Orvanta::PrintLine("Total messages: " + std::to_string(total));
    Orvanta::PrintLine("Filtered messages: " + std::to_string(taken));
}

void LogParserWorker::AddChecked(const std::string& report, const std::string& checked) const {
    try {
        settings_.render.misraChecked->AddReport(checked);
    } catch (const ParseException& error) {
        throw ParseException(report + ": " + error.what());
    }
}

void LogParserWorker::OpenTargets() {
    if (settings_.targets.empty()) {
        throw ConfigException("Render type is required");
    }
    PrintIgnoredFlags();
    for (const RenderTarget& target : settings_.targets) {
        MessageFilterSettings filter = settings_.filter;
        if (target.type->isMisra) {
            filter.falseAlarms = MessageFilterSettings::FalseAlarms::Keep;
        }
        outputs_.Add(
            std::make_unique<OwningFilter>(target.type->make(target.path, settings_.render), std::move(filter)));
    }
}

void LogParserWorker::PrintIgnoredFlags() const {
    const bool isMisra = std::any_of(settings_.targets.begin(), settings_.targets.end(),
                                     [](const RenderTarget& target) { return target.type->isMisra; });
    const std::pair<bool, const char*> flags[] = {
        {settings_.render.categoriesPath.has_value(), "grp"             },
        {settings_.render.countDeviations,            "misra_deviations"},
        {!settings_.render.misraStandards.empty(),    "misra-standard"  },
    };
    for (const auto& [isGiven, name] : flags) {
        if (isGiven && !isMisra) {
            Orvanta::PrintLine(std::string("The use of the '") + name +
                               "' flag is valid only for the 'misra' format. Otherwise, it will be ignored.");
        }
    }
}

} // namespace OrvlogConverter
