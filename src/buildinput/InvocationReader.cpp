#include "buildinput/InvocationReader.h"

#include "buildinput/CompilerVariables.h"
#include "buildinput/OptionFile.h"
#include "compilers/CommandLineReader.h"
#include "compilers/Compiler.h"
#include "compilers/CompilerInfo.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

namespace Orvanta {

/// The words behind unknown flags that are no files: they are kept with the flags. A source that is missing, but would
/// be the command's only one, is a source.
std::vector<std::size_t> InvocationReader::ValuesOfUnknown(const InvocationOutline& outline,
                                                           const std::vector<std::string>& arguments,
                                                           const std::string& directory) const {
    std::vector<std::size_t> values;
    std::size_t sources = outline.sources.size();
    for (const std::size_t word : outline.openWords) {
        const bool isSource = std::any_of(outline.sources.begin(), outline.sources.end(),
                                          [word](const SourceArgument& source) { return source.index == word; });
        if (PathExists(JoinPath(directory, arguments[word])) || (isSource && sources == 1)) {
            continue;
        }
        sources -= isSource ? 1 : 0;
        log_.VerboseLine("  The flag " + InQuotes(arguments[word - 1]) + " is not known: " + InQuotes(arguments[word]) +
                         " behind it is no file, and is taken for its value");
        values.push_back(word);
    }
    return values;
}

void InvocationReader::Complete(std::vector<std::string>& arguments, const Compiler& model,
                                const CompilerInfo& compiler, const std::string& directory,
                                const std::vector<const Environment*>& layers) {
    if (IsMsvcFamily(compiler.type)) {
        AddArgumentsOfVariables(arguments, layers);
    }
    if (std::any_of(arguments.begin(), arguments.end(), [](std::string_view word) { return word.starts_with('@'); })) {
        ExpandResponseFiles(arguments, directory, ReadingFor(compiler));
    }
    // Behind the response files, which may hold the flags that name option files.
    ExpandOptionFiles(arguments, model.OptionFiles(), directory);
}

InvocationOutline InvocationReader::Outline(const Compiler& model, const std::vector<std::string>& arguments,
                                            const std::string& directory) const {
    InvocationOutline outline = OutlineInvocation(model, arguments);
    if (!outline.sources.empty() && !outline.openWords.empty()) {
        if (std::vector<std::size_t> values = ValuesOfUnknown(outline, arguments, directory); !values.empty()) {
            // A second time: with a word fewer among the inputs, the command may be another thing.
            outline = OutlineInvocation(model, arguments, values);
            const auto shared = std::make_shared<const std::vector<std::size_t>>(std::move(values));
            for (SourceArgument& source : outline.sources) {
                source.openValues = shared;
            }
        }
    }
    return outline;
}

/// How the response files of this compiler's commands are read.
ResponseFileReading InvocationReader::ReadingFor(const CompilerInfo& compiler) {
    ResponseFileReading reading;
    if (IsMsvcFamily(compiler.type)) {
        reading.compilers = NativeQuoting::Windows;
    } else if (SpeaksGcc(compiler.type)) {
        reading.compilers = NativeQuoting::Gnu;
    }
    reading.isNative = settings_.nativeResponseFiles;
    reading.tellFile = tellFile_;
    reading.tellDifference = [this](const std::string& path, const std::string& word, const std::string& native) {
        // Once for each file: a build hands the same one to many commands.
        if (toldResponseFiles_.insert(path).second) {
            log_.Line("The response file " + InQuotes(path) + " holds the word " + InQuotes(word) +
                      ", which the compiler reads as " + InQuotes(native) +
                      ": response-file-quoting=native in a settings file has it read so.");
        }
    };
    return reading;
}

} // namespace Orvanta
