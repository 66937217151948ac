#include "suppress/SuppressEntry.h"

#include "report/Utf8.h"
#include "suppress/LineHash.h"

#include <functional>
#include <string_view>
#include <tuple>

namespace OrvlogConverter {

namespace {

// Reports come from either system.
std::string_view FileNameOf(std::string_view path) {
    return path.substr(path.find_last_of("/\\") + 1); // nothing found is the greatest number
}

auto FieldsOf(const SuppressEntry& entry) {
    return std::tie(entry.fileName, entry.errorCode, entry.message, entry.codePrev, entry.codeCurrent, entry.codeNext);
}

std::string ValidText(std::string_view text) {
    std::string valid;
    AppendValidUtf8(valid, text);
    return valid;
}

} // namespace

bool SuppressEntry::operator==(const SuppressEntry& other) const noexcept {
    return FieldsOf(*this) == FieldsOf(other);
}

bool SuppressEntry::operator<(const SuppressEntry& other) const noexcept {
    return FieldsOf(*this) < FieldsOf(other);
}

std::size_t SuppressEntryHash::operator()(const SuppressEntry& entry) const {
    constexpr std::uint64_t Spread = 0x9e3779b97f4a7c15U;
    std::uint64_t hash = std::hash<std::string>()(entry.message);
    for (const std::uint64_t part :
         {std::uint64_t{std::hash<std::string>()(entry.fileName)},
          std::uint64_t{std::hash<std::string>()(entry.errorCode)}, std::uint64_t{entry.codePrev},
          std::uint64_t{entry.codeCurrent}, std::uint64_t{entry.codeNext}}) {
        hash = (hash ^ (hash >> 29)) * Spread + part;
    }
    return static_cast<std::size_t>(hash ^ (hash >> 32));
}

SuppressEntry MakeSuppressEntry(const ReportMessage& message, std::uint32_t version) {
    const MessagePosition& first = FirstPosition(message);
    SuppressEntry entry;
    entry.fileName = ValidText(FileNameOf(first.file));
    entry.errorCode = ValidText(message.code);
    entry.message = NormalizeText(message.message);
    if (!IsValidUtf8(entry.message)) {
        entry.message = ValidText(entry.message);
    }
    if (first.prevHash != 0 && first.currHash != 0 && first.nextHash != 0) {
        entry.codePrev = first.prevHash;
        entry.codeCurrent = first.currHash;
        entry.codeNext = first.nextHash;
    } else {
        entry.codePrev = HashLine(first.prevLine, version);
        entry.codeCurrent = HashLine(first.currLine, version);
        entry.codeNext = HashLine(first.nextLine, version);
    }
    return entry;
}

} // namespace OrvlogConverter
