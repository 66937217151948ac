#include "buildinput/trace/TraceCommand.h"

#include "buildinput/Launchers.h"
#include "buildinput/ProgramName.h"
#include "platform/Paths.h"

#include <algorithm>
#include <iterator>

namespace Orvanta {

namespace {

// Bounds what is remembered in a trace of any length.
constexpr std::size_t MostAnswers = 10000;
constexpr std::string_view Ccache = "ccache";
// With it Clang's driver starts itself for a single step.
constexpr std::string_view InnerPass = "-cc1";
constexpr std::string_view Distcc = "distcc";

/// An option that stands between the loader and the program.
struct LoaderOption {
    std::string_view name;
    bool takesValue;
};

constexpr LoaderOption LoaderOptions[] = {
    {"--list", false},          {"--verify", false}, {"--inhibit-cache", false}, {"--library-path", true},
    {"--inhibit-rpath", true},  {"--audit", true},   {"--preload", true},        {"--rpath-prefix", true},
    {"--nodefaultdirs", false}, {"--argv0", true},
};

/// Whether a program is the dynamic loader: "ld-linux-x86-64.so.2", "ld-2.31.so", "ld.so", "ld64.so.1".
bool IsLoader(std::string_view path) {
    const std::string_view name = FileNameOf(path, PathRules::Posix);
    return name.starts_with("ld.so") || name.starts_with("ld64.so") ||
           (name.starts_with("ld-") && name.find(".so") != std::string_view::npos);
}

/// The number of words that an option of the loader takes; 0 when the word is none.
std::size_t LoaderOptionLength(std::string_view word) {
    for (const LoaderOption& option : LoaderOptions) {
        if (word == option.name) {
            return option.takesValue ? 2 : 1;
        }
        if (option.takesValue && word.starts_with(option.name) && word.substr(option.name.size()).starts_with('=')) {
            return 1;
        }
    }
    return 0;
}

/// Removes the loader and its options, so that the program which it runs comes first.
void RemoveLoader(std::vector<std::string>& words) {
    std::size_t program = 1;
    while (program < words.size()) {
        const std::size_t length = LoaderOptionLength(words[program]);
        if (length == 0) {
            break;
        }
        program += length;
    }
    words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(std::min(program, words.size())));
}

/// The path stands in the place of the program's own name, which may be anything and leads nowhere.
std::vector<std::string> WordsOf(const ExecutedProgram& program) {
    std::vector<std::string> words = {program.path};
    words.reserve(program.arguments.items.size() + 1);
    for (std::size_t i = 1; i < program.arguments.items.size(); ++i) {
        words.push_back(program.arguments.items[i].Decode());
    }
    return words;
}

bool IsCut(const TraceArray& arguments) {
    // The program's own name may be cut: its path stands in its place.
    const auto begin = arguments.items.begin() + (arguments.items.empty() ? 0 : 1);
    return !arguments.isWhole ||
           std::any_of(begin, arguments.items.end(), [](const TraceLiteral& literal) { return literal.isCut; });
}

} // namespace

bool TracedCommandFinder::IsLauncher(std::string_view path) const {
    return MayHideCompilation(path, settings_.launcherNames);
}

bool TracedCommandFinder::IsCompiler(std::string_view path) const {
    return IsProgramAmong(path, settings_.compilerNames);
}

bool TracedCommandFinder::MayCompile(const std::string& path) {
    const auto known = answers_.find(path);
    if (known != answers_.end()) {
        return known->second;
    }
    if (answers_.size() == MostAnswers) {
        answers_.clear(); // programs that the build makes itself, each under its own name
    }
    const bool answer = IsCompiler(path) || IsLauncher(path) || IsLoader(path);
    answers_.emplace(path, answer);
    return answer;
}

std::optional<TracedCommand> TracedCommandFinder::Find(const ExecutedProgram& program) const {
    std::vector<std::string> words = WordsOf(program);
    // The system starts the loader by itself and shows nothing of it; here a build has named it in front of a program.
    if (IsLoader(words.front())) {
        RemoveLoader(words);
    }
    if (words.empty()) {
        return std::nullopt;
    }
    std::optional<TracedCommand> command = Unwrap(std::move(words));
    if (command) {
        // Asked of all words that were executed, those of the loader and of launchers among them.
        command->isCut = IsCut(program.arguments);
    }
    return command;
}

std::optional<TracedCommand> TracedCommandFinder::Unwrap(std::vector<std::string> words) const {
    std::size_t compiler = 0;
    std::optional<std::string> ccache;
    // One launcher may start another one: "ccache distcc g++".
    for (; compiler + 1 < words.size() && IsLauncher(words[compiler]); ++compiler) {
        if (IsProgramNamed(words[compiler], Ccache)) {
            ccache = ccache ? ccache : words[compiler];
            // Settings of ccache, as it takes them before the compiler.
            while (compiler + 2 < words.size() && IsAssignment(words[compiler + 1])) {
                ++compiler;
            }
        }
    }
    const bool isLaunched = compiler > 0;
    const bool isOption = words[compiler].starts_with('-');
    if (isLaunched && isOption && IsProgramNamed(words[compiler - 1], Distcc)) {
        words[--compiler] = "cc"; // what distcc compiles with when it is not told
    } else if (isOption || IsLauncher(words[compiler]) || (!ccache && !IsCompiler(words[compiler]))) {
        return std::nullopt;
    }
    if (compiler + 1 < words.size() && words[compiler + 1].starts_with(InnerPass)) {
        return std::nullopt; // part of the command of a driver, which counts when its name is listed
    }
    TracedCommand command;
    if (ccache) {
        command.arguments.push_back(*std::move(ccache));
        command.isTransparent = !settings_.ignoreCcache;
    }
    command.arguments.insert(command.arguments.end(),
                             std::make_move_iterator(words.begin() + static_cast<std::ptrdiff_t>(compiler)),
                             std::make_move_iterator(words.end()));
    return command;
}

} // namespace Orvanta
