#include "app/FilterSuppressedCommand.h"

#include "app/OutputCheck.h"
#include "app/SuppressCommand.h"
#include "app/TopLevel.h"
#include "platform/StopFlag.h"
#include "suppress/FilterWorker.h"

#include <args.hxx>

#include <array>
#include <optional>
#include <string>

namespace Orvanta {

void FilterSuppressedCommand(args::Subparser& parser) {
    args::ValueFlag<std::string> output(parser, "FILE", "Path to log file", {'o', "output"});
    args::ValueFlag<std::string> base(parser, "FILE", "Path to suppress file", {'s', "suppress-file"}, DefaultBasePath);
    args::Positional<std::string> report(parser, "Orvanta log", "", args::Options::Required);
    output.HelpDefault("same as input");
    base.HelpDefault(DefaultBasePath);
    parser.Parse();
    const std::optional<std::string> outputPath = output.Matched() ? std::optional(output.Get()) : std::nullopt;
    RequireNoInput(outputPath.value_or(report.Get()), std::array{std::optional(base.Get())});
    MakeRoomFor(outputPath.value_or(report.Get()));
    FilterWorker(base.Get(), report.Get(), outputPath, ProcessStopFlag()).Run();
}

} // namespace Orvanta
