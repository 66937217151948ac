#include "compilers/FlagTable.h"

#include <algorithm>

namespace Orvanta {

namespace {

// Unsigned, as it is a place in an array.
constexpr unsigned char FirstByte(std::string_view text) {
    return static_cast<unsigned char>(text.front());
}

// Sorts behind each other what Find looks through: one character's rows, the longest name first.
bool StandsBefore(const FlagRow& left, const FlagRow& right) {
    if (FirstByte(left.name) != FirstByte(right.name)) {
        return FirstByte(left.name) < FirstByte(right.name);
    }
    return left.name.size() > right.name.size();
}

// Whether an argument longer than the row's name, which begins with it, can be this flag.
bool FitsAsBeginning(const FlagRow& row, char next, std::string_view introducer) {
    switch (row.value) {
    case FlagValue::None:
    case FlagValue::Next:
    case FlagValue::NextTwo:
    case FlagValue::NextThree:
        return false;
    case FlagValue::ShortGlued:
        return introducer != "--";
    case FlagValue::Long:
        return next == '=';
    case FlagValue::CommaList:
        return next == ',';
    case FlagValue::GluedOrNext:
    case FlagValue::Glued:
    case FlagValue::List:
    case FlagValue::GluedAndNext:
        return true;
    }
    return false;
}

// Cheap tests first: only a row that could fit by its length is compared byte by byte.
bool Fits(const FlagRow& row, std::string_view argument, std::string_view introducer) {
    const std::size_t size = row.name.size();
    if (size == argument.size()) {
        return row.name == argument;
    }
    // Few rows share the last letter of their names with what stands there.
    return size < argument.size() && row.name[size - 1] == argument[size - 1] &&
           FitsAsBeginning(row, argument[size], introducer) && argument.starts_with(row.name);
}

// How many arguments after the flag are its value.
unsigned Following(FlagValue value, std::string_view rest) {
    switch (value) {
    case FlagValue::GluedOrNext:
    case FlagValue::Long:
    case FlagValue::List:
        return rest.empty() ? 1 : 0;
    case FlagValue::Next:
    case FlagValue::GluedAndNext:
        return 1;
    case FlagValue::NextTwo:
        return 2;
    case FlagValue::NextThree:
        return 3;
    case FlagValue::None:
    case FlagValue::Glued:
    case FlagValue::ShortGlued:
    case FlagValue::CommaList:
        return 0;
    }
    return 0;
}

// A flag that names one source says nothing of the others.
bool StatesLanguageOfAll(const FlagRow& row) {
    return row.kind != FlagKind::SourceOfLanguage &&
           (row.effect == FlagEffect::NamesC || row.effect == FlagEffect::NamesCpp);
}

} // namespace

FlagTable::FlagTable(std::initializer_list<std::span<const FlagRow>> parts) {
    for (const std::span<const FlagRow> part : parts) {
        rows_.insert(rows_.end(), part.begin(), part.end());
    }
    statesLanguage_ = std::any_of(rows_.begin(), rows_.end(), StatesLanguageOfAll);
    // Stable: of rows with one name, that of the earlier part stays in front, where it is found first.
    std::stable_sort(rows_.begin(), rows_.end(), StandsBefore);

    // A character without rows has an empty range, so that looking one up needs no test.
    std::uint16_t row = 0;
    for (std::size_t character = 0; character < 256; ++character) {
        firstOf_[character] = row;
        while (row < rows_.size() && FirstByte(rows_[row].name) == character) {
            ++row;
        }
    }
    firstOf_[256] = row;
}

FlagMatch FlagTable::Find(std::string_view argument, std::string_view introducer) const {
    if (argument.empty()) {
        return {};
    }
    const unsigned char first = FirstByte(argument);
    const std::size_t shortest = introducer == "--" ? 2 : 1;
    const std::size_t end = firstOf_[first + std::size_t{1}];
    // Longest first, so that the first row that fits is the answer, and the names that are too short stand together at
    // the end.
    for (std::size_t i = firstOf_[first]; i < end && rows_[i].name.size() >= shortest; ++i) {
        const FlagRow& row = rows_[i];
        if (Fits(row, argument, introducer)) {
            std::string_view rest = argument.substr(row.name.size());
            const unsigned following = Following(row.value, rest);
            // Behind a long flag's name stands "=": FitsAsBeginning has seen to it.
            if (row.value == FlagValue::Long && !rest.empty()) {
                rest.remove_prefix(1);
            }
            return {&row, rest, following};
        }
    }
    return {};
}

} // namespace Orvanta
