#include "analysis/ModuleImports.h"

#include "platform/Text.h"

#include <algorithm>

namespace Orvanta {

namespace {

void SkipBlanks(std::string_view& line) {
    while (line.starts_with(' ') || line.starts_with('\t')) {
        line.remove_prefix(1);
    }
}

// Cuts the word off the line, when the line begins with it.
bool TakeWord(std::string_view& line, std::string_view word) {
    if (!line.starts_with(word)) {
        return false;
    }
    std::string_view rest = line.substr(word.size());
    SkipBlanks(rest);
    const bool isWhole = rest.size() + word.size() < line.size() || rest.starts_with(':') || rest.starts_with('<') ||
                         rest.starts_with('"');
    if (isWhole) {
        line = rest;
    }
    return isWhole;
}

// "name.of.module:part;", or with attributes behind it: what else a line may say begins like this, but ends otherwise.
bool IsModuleName(std::string_view text) {
    const std::string_view name = text.substr(0, text.find_first_of(";["));
    const auto isPart = [](char letter) {
        return std::string_view("_.: \t").find(letter) != std::string_view::npos || IsDigit(letter) ||
               (ToLowerAscii(letter) >= 'a' && ToLowerAscii(letter) <= 'z') ||
               static_cast<unsigned char>(letter) >= 0x80;
    };
    return !name.empty() && name.size() < text.size() && std::all_of(name.begin(), name.end(), isPart);
}

bool IsImport(std::string_view line) {
    SkipBlanks(line);
    const bool isExported = TakeWord(line, "export");
    if (TakeWord(line, "import")) {
        return line.starts_with('<') || line.starts_with('"') || IsModuleName(line);
    }
    // Of "module;" and "module :private;" nothing is imported.
    return !isExported && TakeWord(line, "module") && !line.starts_with(':') && IsModuleName(line);
}

} // namespace

bool ImportsModules(std::string_view text) noexcept {
    while (!text.empty()) {
        if (IsImport(TakeLine(text))) {
            return true;
        }
    }
    return false;
}

} // namespace Orvanta
