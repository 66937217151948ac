#include "settings/EngineList.h"

#include "platform/Exceptions.h"
#include "platform/Table.h"
#include "platform/Text.h"

#include <string>

namespace Orvanta {

namespace {

struct EngineWord {
    std::string_view word;
    EngineKind kind;
};

constexpr EngineWord EngineWords[] = {
    {"cppcheck", EngineKind::Cppcheck},
    {"clang", EngineKind::Clang},
};

} // namespace

std::vector<EngineKind> ParseEngineList(std::string_view text) {
    std::vector<EngineKind> engines;
    while (!text.empty()) {
        const std::string_view word = Trim(TakeUpTo(text, ",;"));
        const EngineWord* const row = FindRow(EngineWords, &EngineWord::word, word);
        if (row == nullptr) {
            throw ZelmException('"' + std::string(word) + R"(", expected "cppcheck", "clang" or both, joined by ',')");
        }
        engines.push_back(row->kind);
    }
    return engines;
}

} // namespace Orvanta
