#include "compilers/FlagKind.h"

#include "platform/Table.h"

namespace Orvanta {

namespace {

struct StandardWordRow {
    FlagKind standard;
    std::string_view word;
};

constexpr StandardWordRow StandardWords[] = {
    {FlagKind::StandardC90, "c90"},     {FlagKind::StandardC99, "c99"},     {FlagKind::StandardC11, "c11"},
    {FlagKind::StandardC17, "c17"},     {FlagKind::StandardC2x, "c20"}, // the core knows C2x by this word
    {FlagKind::StandardCpp98, "c++98"}, {FlagKind::StandardCpp03, "c++03"}, {FlagKind::StandardCpp11, "c++11"},
    {FlagKind::StandardCpp14, "c++14"}, {FlagKind::StandardCpp17, "c++17"}, {FlagKind::StandardCpp20, "c++20"},
};

} // namespace

std::string_view StandardWord(FlagKind standard, Language language) noexcept {
    // The first standard of either language: the flag means both.
    if (standard == FlagKind::StandardAnsi) {
        return language == Language::C ? "c90" : "c++98";
    }
    const StandardWordRow* const row = FindRow(StandardWords, &StandardWordRow::standard, standard);
    return row != nullptr ? row->word : std::string_view();
}

} // namespace Orvanta
