#include "report/JsonText.h"

#include <nlohmann/json.hpp>

#include <cstddef>

namespace OrvlogConverter {

namespace {

bool IsPlain(char character) {
    return character >= ' ' && character <= '~' && character != '"' && character != '\\';
}

} // namespace

void AppendJsonString(std::string& json, std::string_view text) {
    // Most texts are printable ASCII; what is not is left to the JSON library.
    const std::size_t start = json.size();
    json += '"';
    for (std::size_t at = 0; at < text.size(); ++at) {
        std::size_t end = at;
        while (end < text.size() && IsPlain(text[end])) {
            ++end;
        }
        json += text.substr(at, end - at);
        at = end;
        if (at == text.size()) {
            break;
        }
        if (text[at] == '\t') {
            json += "\\t";
        } else if (text[at] == '"' || text[at] == '\\') {
            json += '\\';
            json += text[at];
        } else {
            // From the beginning: it is rare, and the library takes whole texts only.
            json.resize(start);
            json += nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
            return;
        }
    }
    json += '"';
}

} // namespace OrvlogConverter
