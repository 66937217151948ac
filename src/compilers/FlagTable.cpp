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

// Cheap tests first: only a row that could fit by its length and kind is compared byte by byte.
bool Fits(const FlagRow& row, std::string_view argument) {
    const std::size_t size = row.name.size();
    if (size == argument.size()) {
        return row.name == argument;
    }
    const bool isGlued = row.value == FlagValue::Glued;
    if (size > argument.size() || !(TakesValue(row.kind) || isGlued || row.name.back() == '=')) {
        return false;
    }
    return argument.starts_with(row.name) && (row.kind != FlagKind::Preprocessor || isGlued || argument[size] == ',');
}

} // namespace

FlagTable::FlagTable(std::span<const FlagRow> rows, std::span<const FlagRow> extension) {
    rows_.reserve(rows.size() + extension.size());
    rows_.assign(rows.begin(), rows.end());
    rows_.insert(rows_.end(), extension.begin(), extension.end());
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
        if (Fits(row, argument)) {
            const std::string_view rest = argument.substr(row.name.size());
            const bool takesNext =
                rest.empty() && TakesValue(row.kind) && row.value == FlagValue::OfKind && row.name.back() != '=';
            return {row.kind, row.effect, takesNext, row.name, rest};
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
