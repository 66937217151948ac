#include "analysis/VisualStudioEnvironment.h"

#include "platform/EnvironmentNames.h"
#include "platform/Text.h"

#include <algorithm>
#include <utility>

namespace Orvanta {

namespace {

// What the script prints itself stands before it and may look like a variable.
constexpr std::string_view Marker = "orvanta-environment";

// The interpreter may go on behind a script that has failed: only one that has done its work names folders of headers.
bool NamesHeaders(const Environment& variables) {
    return std::any_of(variables.begin(), variables.end(),
                       [](const auto& variable) { return IsSameVariable(variable.first, "INCLUDE"); });
}

} // namespace

std::vector<std::string> SetUpScriptPlaces(std::string_view compilerPath, PathRules rules) {
    for (std::string_view folder = DirectoryOf(compilerPath, rules); !folder.empty();) {
        if (EqualsIgnoringCase(FileNameOf(folder, rules), "VC")) {
            return {JoinPath(folder, "vcvarsall.bat", rules),
                    JoinPath(JoinPath(JoinPath(folder, "Auxiliary", rules), "Build", rules), "vcvarsall.bat", rules)};
        }
        const std::string_view parent = DirectoryOf(folder, rules);
        if (parent.size() == folder.size()) {
            break; // a root
        }
        folder = parent;
    }
    return {};
}

std::string SetUpCommand(const std::string& script, std::string_view platformWord) {
    // Scripts of every age know these two words.
    const char* const platform = platformWord == "Win32" ? "x86" : "amd64";
    // "&&" stops behind a script that says it has failed: then there is no marker.
    return '"' + script + "\" " + platform + " && echo " + std::string(Marker) + " && set";
}

std::optional<Environment> PrintedVariables(std::string_view output) {
    // `echo` leaves the blank in front of "&&" at the end of its line.
    while (!output.empty() && Trim(TakeLine(output)) != Marker) {
    }
    Environment variables;
    while (!output.empty()) {
        const std::string_view line = TakeLine(output);
        const std::size_t equals = line.find('=');
        // The interpreter's own entries for current folders begin with "=".
        if (equals != std::string_view::npos && equals > 0) {
            variables.emplace(line.substr(0, equals), line.substr(equals + 1));
        }
    }
    return variables.empty() ? std::nullopt : std::optional<Environment>(std::move(variables));
}

VisualStudioEnvironment::VisualStudioEnvironment(Log& log, Host host) : log_(log), host_(std::move(host)) {}

std::shared_ptr<const Environment> VisualStudioEnvironment::VariablesFor(const CompilerInfo& compiler,
                                                                         const std::string& platformWord) {
    if (host_.rules != PathRules::Windows) {
        return nullptr; // there are no such scripts
    }
    // Starting the script costs seconds: threads that need the same environment wait for one of them.
    return environments_.Get(compiler.path + '\0' + platformWord, [&] { return Find(compiler, platformWord); });
}

std::shared_ptr<const Environment> VisualStudioEnvironment::Find(const CompilerInfo& compiler,
                                                                 const std::string& platformWord) {
    const std::vector<std::string> places = SetUpScriptPlaces(compiler.path, host_.rules);
    const auto script = std::find_if(places.begin(), places.end(), host_.exists);
    if (script == places.end()) {
        // A clang-cl of its own looks for Visual Studio itself.
        if (!places.empty() || compiler.type == CompilerType::Cl) {
            Tell(compiler, "was not found");
        }
        return nullptr;
    }
    try {
        std::optional<Environment> variables = PrintedVariables(host_.run(SetUpCommand(*script, platformWord)));
        if (variables && NamesHeaders(*variables)) {
            return std::make_shared<const Environment>(*std::move(variables));
        }
    } catch (const ProcessException&) {
        // told below
    }
    Tell(compiler, "failed: \"" + *script + '"');
    return nullptr;
}

void VisualStudioEnvironment::Tell(const CompilerInfo& compiler, const std::string& text) {
    {
        // Not held while the line is written: the log has a lock of its own.
        const std::lock_guard lock(mutex_);
        if (!told_.insert(compiler.path).second) {
            return;
        }
    }
    log_.Line("The compiler \"" + compiler.path + "\" is run in the environment that there is: its set-up script " +
              "vcvarsall.bat " + text);
}

} // namespace Orvanta
