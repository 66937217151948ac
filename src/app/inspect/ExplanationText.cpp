// The lines for people are made from the document for programs, so that neither says what the other doesn't.

#include "app/inspect/Explanation.h"
#include "platform/Process.h"

#include <algorithm>
#include <string_view>

namespace Orvanta {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t LabelWidth = 14;

std::string Labelled(std::string_view label, const std::string& value) {
    std::string line = "  " + std::string(label);
    line.append(LabelWidth - std::min(label.size(), LabelWidth - 1), ' ');
    return line + value + "\n";
}

std::string Words(const Json& words) {
    return CommandLineText(words.get<Arguments>());
}

std::string Place(const Json& entry, const std::string& input) {
    std::string place = "entry " + std::to_string(entry["entry"].get<std::size_t>()) + " of " + input;
    return entry.contains("line") ? place + ", line " + std::to_string(entry["line"].get<std::size_t>()) : place;
}

// What stands in the input, and what was taken off or put in.
std::string TrailLines(const Json& entry) {
    if (!entry.contains("words")) {
        return "";
    }
    std::string text = Labelled("directory", entry["directory"].get<std::string>());
    text += Labelled("command", Words(entry["words"]));
    if (!entry["launcher"].empty()) {
        text += Labelled("launcher", Words(entry["launcher"]) + "  (taken off)");
    }
    for (const Json& file : entry["responseFiles"]) {
        text += Labelled("response file", file["path"].get<std::string>() + ": " + Words(file["words"]));
    }
    return text;
}

std::string FateText(const Json& flag) {
    const std::string fate = flag["fate"].get<std::string>();
    const std::string meaning = flag["meaning"].get<std::string>();
    return fate == meaning ? fate : fate + " (" + meaning + ")";
}

std::string FlagLines(const Json& flags) {
    std::string text;
    std::size_t width = 0;
    std::vector<std::string> shown;
    for (const Json& flag : flags) {
        std::string words = flag.contains("handedOnBy") ? flag["handedOnBy"].get<std::string>() + " " : "";
        shown.push_back(words + Words(flag["words"]));
        constexpr std::size_t Widest = 40;
        width = std::max(width, std::min(shown.back().size(), Widest));
    }
    for (std::size_t place = 0; place < shown.size(); ++place) {
        const std::size_t blanks = width > shown[place].size() ? width - shown[place].size() : 0;
        text +=
            Labelled(place == 0 ? "flags" : "", shown[place] + std::string(blanks + 2, ' ') + FateText(flags[place]));
    }
    return text;
}

std::string WordFrom(const Json& value) {
    return value["word"].get<std::string>() + "  (" + value["from"].get<std::string>() + ")";
}

std::string SettingLines(const Json& settings) {
    std::string text;
    for (const auto& [key, value] : settings.items()) {
        for (const Json& one : value.is_array() ? value : Json::array({value})) {
            text += Labelled(text.empty() ? "settings" : "", key + "=" + one.get<std::string>());
        }
    }
    return text;
}

std::string UnitText(const Json& unit, const std::string& input) {
    std::string text = unit["source"].get<std::string>() + ": " + Place(unit, input) + "\n" + TrailLines(unit);
    if (unit.contains("fault")) {
        return text + Labelled("fault", unit["fault"].get<std::string>());
    }
    const Json& compiler = unit["compiler"];
    text += Labelled("compiler", compiler["path"].get<std::string>());
    text += Labelled("family", compiler["family"].get<std::string>() + ": " + compiler["because"].get<std::string>());
    if (const std::string version = compiler["version"].get<std::string>(); !version.empty()) {
        text += Labelled("version", version);
    }
    text += FlagLines(unit["flags"]);
    if (!unit["addedFolders"].empty()) {
        text += Labelled("-I, by option", Words(unit["addedFolders"]));
    }
    text += Labelled("language", unit["language"].get<std::string>());
    text += Labelled("standard", WordFrom(unit["standard"]));
    text += Labelled("platform", WordFrom(unit["platform"]));
    for (const auto& [name, value] : unit["environment"]["variables"].items()) {
        text += Labelled("variable", name + "=" + value.get<std::string>());
    }
    text += Labelled("preprocessing", unit["preprocessing"]["line"].get<std::string>());
    text += SettingLines(unit["settings"]);
    text += Labelled("verdict", unit["analyzed"].get<bool>() ? "it is analyzed"
                                                             : "left out by " + unit["leftOutBy"].get<std::string>());
    if (unit.contains("history")) {
        const Json& history = unit["history"];
        text += Labelled("history", history["standing"].get<std::string>() +
                                        (history.contains("file") ? ": " + history["file"].get<std::string>() : ""));
    }
    return text;
}

} // namespace

std::string ExplanationText(const Json& document) {
    const std::string input = document["input"].get<std::string>();
    std::string text;
    for (const Json& unit : document["units"]) {
        text += text.empty() ? "" : "\n";
        text += UnitText(unit, input);
    }
    for (const Json& skipped : document["skipped"]) {
        text += text.empty() ? "" : "\n";
        text += document["file"].get<std::string>() + ": " + Place(skipped, input) + ", gives no unit\n" +
                TrailLines(skipped) +
                Labelled(skipped["fate"].get<std::string>(), skipped["reason"].get<std::string>());
    }
    if (!document["includedBy"].empty()) {
        text += document["file"].get<std::string>() + ": included by " + std::to_string(document["includedBy"].size()) +
                " source files, as the last runs have seen them\n";
        for (const Json& source : document["includedBy"]) {
            text += "  " + source.get<std::string>() + "\n";
        }
    }
    return text;
}

} // namespace Orvanta
