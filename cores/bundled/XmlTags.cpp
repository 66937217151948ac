#include "bundled/XmlTags.h"

#include "platform/Exceptions.h"

namespace Orvanta {

void FailCutShort() {
    throw ZelmException("the analyzer information that Cppcheck wrote is cut short");
}

std::string XmlAttribute(std::string_view name, std::string_view value) {
    return " " + std::string(name) + "=\"" + std::string(value) + "\"";
}

XmlTag NextTag(std::string_view xml, std::size_t position) {
    XmlTag tag;
    tag.begin = xml.find('<', position);
    if (tag.begin == std::string_view::npos) {
        FailCutShort();
    }
    bool isQuoted = false;
    for (tag.end = tag.begin + 1; tag.end < xml.size(); ++tag.end) {
        if (xml[tag.end] == '"') {
            isQuoted = !isQuoted;
        } else if (xml[tag.end] == '>' && !isQuoted) {
            tag.text = xml.substr(tag.begin + 1, tag.end - tag.begin - 1);
            ++tag.end;
            return tag;
        }
    }
    FailCutShort();
}

} // namespace Orvanta
