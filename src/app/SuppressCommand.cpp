#include "app/SuppressCommand.h"

#include "app/OutputCheck.h"
#include "app/TopLevel.h"
#include "platform/Files.h"
#include "platform/StopFlag.h"
#include "report/Exceptions.h"
#include "suppress/SuppressWorker.h"

#include <args.hxx>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace Orvanta {

namespace {

/// The options as given.
struct SuppressOptions {
    std::string analyzers;
    std::vector<std::string> files;
    std::vector<std::string> codes;
    std::string basePath;
    std::string reportPath;
};

SuppressOptions ParseOptions(args::Subparser& parser) {
    args::ValueFlag<std::string> analyzer(
        parser, "TYPES",
        "Specifies analyzer(s) and level(s) to be used for filtering, i.e. 'GA:1,2;64:1;OP:1,2,3;CS:1;MISRA:1,2'",
        {'a', "analyzer"}, "all");
    args::ValueFlagList<std::string> file(
        parser, "FILE",
        "Suppress messages in the specified file, and, optionally, on the specified line, i.e. 'test.c:22'. Can be "
        "specified multiple times for different files.",
        {'f', "file"});
    args::ValueFlagList<std::string> warning(
        parser, "NUMBER",
        "Suppress messages of the specified code. Can be specified multiple time for different error codes.",
        {'v', "warning"});
    args::ValueFlag<std::string> output(parser, "FILE", "Path to suppress file", {'o', "output"}, DefaultBasePath);
    args::Positional<std::string> report(parser, "Orvanta log", "", args::Options::Required);
    analyzer.HelpDefault("all");
    output.HelpDefault(DefaultBasePath);
    parser.Parse();
    return {analyzer.Get(), file.Get(), warning.Get(), output.Get(), report.Get()};
}

} // namespace

void SuppressCommand(args::Subparser& parser) {
    const SuppressOptions options = ParseOptions(parser);
    MakeRoomFor(options.basePath);
    OrvlogConverter::SuppressFilterSettings filter;
    // All values are checked before the base is locked or the report read.
    filter.files = OrvlogConverter::ParseSuppressedFiles(options.files);
    if (IsDirectory(options.basePath)) {
        throw OrvlogConverter::FilesystemException(options.basePath + " is a directory");
    }
    RequireNoInput(options.basePath, std::array{std::optional(options.reportPath)});
    filter.analyzers = OrvlogConverter::ParseAnalyzerSpecification(options.analyzers);
    for (const std::string& code : options.codes) {
        filter.codeNumbers.insert(OrvlogConverter::ParseCodeNumber(code));
    }
    SuppressWorker(options.basePath, options.reportPath, std::move(filter), ProcessStopFlag()).Run();
}

} // namespace Orvanta
