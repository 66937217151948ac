#include "buildinput/trace/TraceEnvironment.h"

#include "buildinput/VariableName.h"
#include "platform/Paths.h"

#include <algorithm>

namespace Orvanta {

namespace {

/// The text of the whole array, which is one piece of the trace's line.
std::string_view TextOf(const TraceArray& texts) {
    if (texts.items.empty()) {
        return {};
    }
    const char* const begin = texts.items.front().raw.data();
    const std::string_view last = texts.items.back().raw;
    return {begin, static_cast<std::size_t>(last.data() + last.size() - begin)};
}

/// Emplacing leaves the first of two values in its place, which is the one that programs find.
Environment MakeEnvironment(const TraceArray& texts) {
    Environment environment;
    for (const TraceLiteral& literal : texts.items) {
        const std::string text = literal.Decode();
        const std::size_t equalsSign = std::min(text.find('='), text.size());
        const std::string_view name = std::string_view(text).substr(0, equalsSign);
        if (equalsSign < text.size() && IsVariableName(name)) {
            environment.emplace(name, text.substr(equalsSign + 1));
        }
    }
    return environment;
}

} // namespace

std::shared_ptr<const Environment> TraceEnvironments::Get(const TraceArray& texts) {
    const auto isCut = [](const TraceLiteral& literal) {
        return literal.isCut;
    };
    if (!texts.isWhole || std::any_of(texts.items.begin(), texts.items.end(), isCut)) {
        return nullptr;
    }
    const std::string_view text = TextOf(texts);
    for (const Entry& entry : recent_) {
        // Compared as the trace writes it: nothing is decoded of an environment that is known.
        if (entry.environment != nullptr && entry.text == text) {
            return entry.environment;
        }
    }
    Entry& entry = recent_[next_];
    next_ = (next_ + 1) % Remembered;
    entry.text = text;
    entry.environment = std::make_shared<const Environment>(MakeEnvironment(texts));
    return entry.environment;
}

std::string DirectoryVariable(std::string_view text) {
    // The second form is that of strace -xx.
    for (const std::string_view name : {"\"PWD=", R"("\x50\x57\x44\x3d)"}) {
        const std::size_t begin = text.find(name);
        TraceLiteral literal;
        if (begin == std::string_view::npos || !TraceTextReader(text.substr(begin)).TakeLiteral(literal)) {
            continue;
        }
        std::string value = literal.Decode().substr(std::string_view("PWD=").size());
        if (!literal.isCut && IsAbsolutePath(value, PathRules::Posix)) {
            return value;
        }
    }
    return "";
}

} // namespace Orvanta
