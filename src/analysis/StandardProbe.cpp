#include "analysis/StandardProbe.h"

#include "analysis/StartableCommand.h"
#include "compilers/Compiler.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/ScopedFile.h"
#include "platform/Text.h"

#include <algorithm>
#include <charconv>
#include <span>
#include <thread>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::chrono::seconds ProbeTimeout{30};

// What a C compiler without the macro is taken for: the standard of 1989.
constexpr std::string_view CTestText = "#ifdef __STDC_VERSION__\n__STDC_VERSION__\n#else\n198900L\n#endif";
constexpr std::string_view CppTestText = "__cplusplus";

// A standard's word goes for all values up to `highest`: compilers on the way to a standard have values in between.
struct VersionRow {
    long highest;
    std::string_view word;
};

// Rows are tried in this order; a version above all of them is the newest standard.
constexpr VersionRow CVersions[] = {
    {199499, "c90"},
    {199999, "c99"},
    {201199, "c11"},
    {201799, "c17"},
};
constexpr VersionRow CppVersions[] = {
    {199899, "c++98"}, {200399, "c++03"}, {201199, "c++11"}, {201499, "c++14"}, {201799, "c++17"},
};

// `takesValue` says whether the next word belongs to the flag when nothing follows its name in the same word.
struct NeutralFlag {
    std::string_view name;
    bool takesValue;
};

// Arguments that say where text comes from or what to warn about: they leave the default standard as it is, and most
// projects have many sets of them. The rows with "/" are those of cl and clang-cl, those with "--" of embedded
// compilers.
constexpr NeutralFlag NeutralFlags[] = {
    {"-include", true},    {"-isystem", true},     {"-iquote", true},
    {"-idirafter", true},  {"-I", true},           {"-D", true},
    {"-U", true},          {"-W", false},          {"/I", true},
    {"/D", true},          {"/U", true},           {"/FI", true},
    {"/W", false},         {"/w", false},          {"/external:I", true},
    {"/imsvc", true},      {"-FI", true},          {"-wd", false},
    {"-external:I", true}, {"-imsvc", true},       {"--include_path=", false},
    {"--define=", false},  {"--preinclude", true}, {"--system_include_dir", true},
};

// Variables in which shells and make keep their own books: a traced build gives another value to nearly every command.
constexpr std::string_view NeutralVariables[] = {"MAKEFLAGS", "MAKELEVEL", "MFLAGS", "OLDPWD", "PWD", "SHLVL", "_"};

// What is not known to be neutral counts: a needless question costs a moment, a wrong answer a wrong analysis.
void AppendDecisiveArguments(std::string& key, std::span<const std::string> arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const auto* const neutral =
            std::find_if(std::begin(NeutralFlags), std::end(NeutralFlags),
                         [&](const NeutralFlag& flag) { return argument.starts_with(flag.name); });
        // They hand arguments on: any flag may stand in them.
        const bool isList = argument.starts_with("-Wp,") || argument.starts_with("-Wc,");
        // A null can't stand in an argument, so no two lists of arguments have the same key.
        if (neutral == std::end(NeutralFlags) || isList) {
            key += '\0';
            key += argument;
        } else if (argument == neutral->name && neutral->takesValue) {
            ++i; // its value
        }
    }
}

// Whether a flag names a file by a path that means another file in another folder.
bool NamesRelativeFile(const ParsedCommand& command) {
    const auto isRelative = [](const std::string& path) {
        return !IsAbsolutePath(path);
    };
    return std::any_of(command.filesRead.begin(), command.filesRead.end(), isRelative) ||
           std::any_of(command.specFiles.begin(), command.specFiles.end(), isRelative) ||
           std::any_of(command.searchPrefixes.begin(), command.searchPrefixes.end(), isRelative);
}

// All that the answer may depend on. The folder counts only where a flag makes it count: it differs from unit to unit.
std::string AnswerKey(const ParsedCommand& command, Language language, const std::string& folder,
                      const Environment& ownVariables) {
    std::string key = command.compilerPath;
    key += '\0';
    key += language == Language::C ? "C" : "C++";
    AppendDecisiveArguments(key, command.keptArguments);
    if (NamesRelativeFile(command)) {
        key.append(1, '\0').append(folder);
    }
    for (const auto& [name, value] : ownVariables) {
        if (std::find(std::begin(NeutralVariables), std::end(NeutralVariables), name) == std::end(NeutralVariables)) {
            key += '\0';
            key += name;
            key += '=';
            key += value;
        }
    }
    return key;
}

ProbedStandard FallbackStandard(Language language) {
    return {language == Language::C ? "c99" : "c++14"};
}

} // namespace

std::string_view StandardWordOfVersion(long version, Language language) noexcept {
    const std::span<const VersionRow> rows =
        language == Language::C ? std::span<const VersionRow>(CVersions) : std::span<const VersionRow>(CppVersions);
    for (const VersionRow& row : rows) {
        if (version <= row.highest) {
            return row.word;
        }
    }
    return language == Language::C ? "c20" : "c++20";
}

std::optional<long> LastNumber(std::string_view text) noexcept {
    std::size_t end = text.size();
    // The suffix behind the number ("201703L") is passed over; what stands before it are line marks of the compiler.
    while (end > 0 && !IsDigit(text[end - 1])) {
        --end;
    }
    std::size_t begin = end;
    while (begin > 0 && IsDigit(text[begin - 1])) {
        --begin;
    }
    long number = 0;
    const auto [last, error] = std::from_chars(text.data() + begin, text.data() + end, number);
    return begin < end && error == std::errc{} ? std::optional<long>(number) : std::nullopt;
}

StandardProbe::StandardProbe(std::string folder, const StopFlag& stop) : folder_(std::move(folder)), stop_(stop) {}

ProbedStandard StandardProbe::ProbeLanguageStandard(const Compiler& model, const ParsedCommand& command,
                                                    Language language, ProcessPlace place,
                                                    const Environment& ownVariables) {
    try {
        return answers_.Get(AnswerKey(command, language, place.workingDirectory, ownVariables),
                            [&] { return Ask(model, command, language, place); });
    } catch (const ZelmException&) {
        return FallbackStandard(language); // not an error: a compiler need not answer
    }
}

ProbedStandard StandardProbe::Ask(const Compiler& model, const ParsedCommand& command, Language language,
                                  ProcessPlace place) const {
    // Threads may ask different compilers at once: each has files of its own. One thread asks one thing at a time.
    const std::string number = std::to_string(std::hash<std::thread::id>{}(std::this_thread::get_id()));
    const char* const extension = language == Language::C ? ".Orvanta.c" : ".Orvanta.cpp";
    const ScopedFile source(JoinPath(folder_, number + "__std_test__" + extension));
    const ScopedFile result(JoinPath(folder_, number + "__std_test_output__.Orvanta.i"));
    OutputFile(source.Path(), OutputFile::Mode::Replace).Append(language == Language::C ? CTestText : CppTestText);

    // The unit's own command with another source: what its flags decide decides here, too.
    ParsedCommand probe = command;
    if (!probe.precompiled.path.empty()) {
        DropPrecompiled(probe); // it does not fit another source
    }
    probe.sourceFile = source.Path();
    if (IsMsvcFamily(model.Type())) {
        // Without them the macro has a fixed old value, and a banner stands in the output.
        probe.keptArguments.insert(probe.keptArguments.end(), {"/Zc:__cplusplus", "/nologo"});
    }
    const StartableCommand startable(model.BuildPreprocessCommand(probe, result.Path()), probe,
                                     JoinPath(folder_, number + "__std_test__.rsp"));
    const Arguments& words = startable.Words();
    CapturedOutput output;
    Process process(words, {place.workingDirectory, place.environment, ProcessGroup::Own, place.launcher},
                    MakeRedirectToStringProcessor(output.standardOutput),
                    MakeRedirectToStringProcessor(output.standardError));
    // A compiler that reads standard input, or asks for a licence, must not hold up the run for good.
    const WaitResult end = WaitWithTimeout(process, AnswerTimeout(ProbeTimeout, place.launcher), PollInterval, stop_);
    try {
        if (JudgeEnd(words, end, process, output) == ProcessOutcome::Stopped) {
            return FallbackStandard(language);
        }
    } catch (const ProcessInterruptedException&) {
        return FallbackStandard(language); // it would hang again
    }
    const std::optional<long> version = LastNumber(ReadWholeFile(result.Path()));
    if (!version) {
        return FallbackStandard(language);
    }
    return {std::string(StandardWordOfVersion(*version, language)), true};
}

} // namespace Orvanta
