#include "bundled/AnalyzerInformation.h"

#include "bundled/XmlTags.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::string_view CheckElement = "FileInfo";

// It needs the whole program, which a build's units need not be.
constexpr std::string_view LeftOutCheck = "CheckUnusedFunctions";

// Where the element that `tag` opens ends.
std::size_t EndOfElement(std::string_view xml, const XmlTag& tag) {
    if (tag.IsWhole()) {
        return tag.end;
    }
    // The first closing tag of the name: an element never holds another one of its own name.
    const std::string closing = "</" + std::string(tag.Name()) + ">";
    const std::size_t begin = xml.find(closing, tag.end);
    if (begin == std::string_view::npos) {
        FailCutShort();
    }
    return begin + closing.size();
}

// The values of all attributes of a name.
template <typename Receiver>
void ForEachValue(std::string_view text, std::string_view name, const Receiver& receive) {
    // With the blank in front, so that "file" is not found in "outfile".
    const std::string opening = " " + std::string(name) + "=\"";
    for (std::size_t begin = text.find(opening); begin != std::string_view::npos; begin = text.find(opening, begin)) {
        begin += opening.size();
        receive(text.substr(begin, text.find('"', begin) - begin));
    }
}

void AddFact(std::vector<FactGroup>& groups, const FactGroup& place, std::string_view fact) {
    // Facts of one place stand together, so only the last group can be theirs.
    if (groups.empty() || groups.back().check != place.check || groups.back().kind != place.kind) {
        groups.push_back(place);
    }
    groups.back().facts.emplace_back(fact);
}

// `begin` is behind the tag that opens the check's element; returns where the element ends.
std::size_t ReadCheck(std::string_view xml, std::size_t begin, FactGroup place, std::vector<FactGroup>& groups) {
    for (;;) {
        const XmlTag tag = NextTag(xml, begin);
        begin = tag.end;
        if (tag.Closes()) {
            // The check's own end; otherwise that of the element around some facts.
            if (place.kind.empty()) {
                return begin;
            }
            place.kind.clear();
        } else if (tag.HasAttributes()) {
            begin = EndOfElement(xml, tag);
            AddFact(groups, place, xml.substr(tag.begin, begin - tag.begin));
        } else if (!tag.IsWhole()) {
            place.kind = tag.Name();
        }
    }
}

} // namespace

std::vector<FactGroup> ReadAnalyzerInformation(std::string_view xml) {
    std::vector<FactGroup> groups;
    for (std::size_t position = 0;;) {
        const XmlTag tag = NextTag(xml, position);
        position = tag.end;
        // The end of the file; what stands behind it is nothing of ours.
        if (tag.text == "/analyzerinfo") {
            return groups;
        }
        if (tag.Name() != CheckElement) {
            continue;
        }
        FactGroup place;
        ForEachValue(tag.text, "check", [&](std::string_view value) { place.check = value; });
        // Passed over as a whole, since what is in it looks like facts.
        if (place.check == LeftOutCheck) {
            position = EndOfElement(xml, tag);
        } else if (!tag.IsWhole()) {
            position = ReadCheck(xml, position, std::move(place), groups);
        }
    }
}

void AppendFactGroup(std::string& xml, const FactGroup& group) {
    xml.append("<").append(CheckElement).append(" check=\"").append(group.check).append("\">\n");
    // The element around the facts is there for some checks only.
    if (!group.kind.empty()) {
        xml.append("<").append(group.kind).append(">\n");
    }
    for (const std::string& fact : group.facts) {
        xml.append(fact) += '\n';
    }
    if (!group.kind.empty()) {
        xml.append("</").append(group.kind).append(">\n");
    }
    xml.append("</").append(CheckElement).append(">\n");
}

std::vector<std::string_view> FilesOfFact(std::string_view fact) {
    std::vector<std::string_view> files;
    ForEachValue(fact, "file", [&](std::string_view value) { files.push_back(value); });
    return files;
}

std::vector<std::string_view> FunctionsOfFact(std::string_view fact) {
    std::vector<std::string_view> ids;
    for (const std::string_view name : {"call-id", "my-id"}) {
        ForEachValue(fact, name, [&](std::string_view value) { ids.push_back(value); });
    }
    std::sort(ids.begin(), ids.end(),
              [](std::string_view left, std::string_view right) { return std::less<>()(left.data(), right.data()); });
    return ids;
}

} // namespace Orvanta
