#include "app/AnalyzeCommand.h"

#include "app/AnalyzeOptions.h"
#include "app/AnalyzeRun.h"
#include "app/OptionChecks.h"
#include "app/OptionWarnings.h"
#include "app/TopLevel.h"
#include "platform/Console.h"

#include <string>

namespace Orvanta {

void AnalyzeCommand(args::Subparser& parser) {
    const AnalyzeOptions options = ParseAnalyzeOptions(parser);
    ValidateAnalyzeOptions(options);
    MakeRoomFor(options.outputFile.value_or(""));
    for (const std::string& warning : WarningsAbout(options)) {
        PrintLine(warning);
    }
    AnalyzeRun(options).Run();
}

} // namespace Orvanta
