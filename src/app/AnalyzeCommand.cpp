#include "app/AnalyzeCommand.h"

#include "app/AnalyzeOptions.h"
#include "app/AnalyzeRun.h"

namespace Orvanta {

void AnalyzeCommand(args::Subparser& parser) {
    const AnalyzeOptions options = ParseAnalyzeOptions(parser);
    ValidateAnalyzeOptions(options);
    AnalyzeRun(options).Run();
}

} // namespace Orvanta
