#include "compilers/FlagTable.h"

#include <algorithm>

namespace Orvanta {

namespace {

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
bool FitsAsBeginning(const FlagRow& row, std::string_view argument, std::string_view introducer) {
    const char next = argument[row.name.size()];
    switch (row.value) {
    case FlagValue::OfKind:
        return (TakesValue(row.kind) || row.name.back() == '=') && (row.kind != FlagKind::Preprocessor || next == ',');
    case FlagValue::ShortGlued:
        return introducer != "--";
    case FlagValue::Long:
        return next == '=';
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
    return size < argument.size() && FitsAsBeginning(row, argument, introducer) && argument.starts_with(row.name);
}

// Whether the value of the flag is the argument after it.
bool TakesNext(const FlagRow& row, std::string_view rest) {
    switch (row.value) {
    case FlagValue::OfKind:
        return rest.empty() && TakesValue(row.kind) && row.name.back() != '=';
    case FlagValue::Long:
    case FlagValue::List:
        return rest.empty();
    case FlagValue::GluedAndNext:
        return true;
    case FlagValue::Glued:
    case FlagValue::ShortGlued:
        return false;
    }
    return false;
}

bool StatesLanguageOfAll(const FlagRow& row) {
    return row.kind != FlagKind::SourceOfLanguage &&
           (row.effect == FlagEffect::NamesC || row.effect == FlagEffect::NamesCpp);
}

} // namespace

FlagTable::FlagTable(std::span<const FlagRow> rows, std::span<const FlagRow> extension) {
    rows_.reserve(rows.size() + extension.size());
    rows_.assign(extension.begin(), extension.end());
    rows_.insert(rows_.end(), rows.begin(), rows.end());
    statesLanguage_ = std::any_of(rows_.begin(), rows_.end(), StatesLanguageOfAll);
    std::stable_sort(rows_.begin(), rows_.end(), StandsBefore);

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
    for (std::size_t i = firstOf_[first]; i < end && rows_[i].name.size() >= shortest; ++i) {
        const FlagRow& row = rows_[i];
        if (Fits(row, argument, introducer)) {
            std::string_view rest = argument.substr(row.name.size());
            const bool takesNext = TakesNext(row, rest);
            if (row.value == FlagValue::Long && !rest.empty()) {
                rest.remove_prefix(1);
            }
            return {row.kind, row.effect, takesNext, row.value == FlagValue::List, row.name, rest};
        }
    }
    return {};
}

bool TakesValue(FlagKind kind) noexcept {
    switch (kind) {
    case FlagKind::KeepWithValue:
    case FlagKind::Output:
    case FlagKind::UserInclude:
    case FlagKind::SystemInclude:
    case FlagKind::Define:
    case FlagKind::Undefine:
    case FlagKind::DropWithValue:
    case FlagKind::SourceOfLanguage:
    case FlagKind::Preprocessor:
    case FlagKind::Language:
    case FlagKind::ForcedInclude:
    case FlagKind::MainFileName:
        return true;
    case FlagKind::Keep:
    case FlagKind::Drop:
    case FlagKind::NoCompilation:
    case FlagKind::Target32:
    case FlagKind::Target64:
    case FlagKind::LinkerPart:
    case FlagKind::StandardAnsi:
    case FlagKind::StandardC90:
    case FlagKind::StandardC99:
    case FlagKind::StandardC11:
    case FlagKind::StandardC17:
    case FlagKind::StandardC2x:
    case FlagKind::StandardCpp98:
    case FlagKind::StandardCpp03:
    case FlagKind::StandardCpp11:
    case FlagKind::StandardCpp14:
    case FlagKind::StandardCpp17:
    case FlagKind::StandardCpp20:
        return false;
    }
    return false;
}

} // namespace Orvanta
