#include "bundled/FileAlias.h"

#include "platform/Hash.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <algorithm>
#include <system_error>

namespace Orvanta {

namespace {

// Whether the extension needs no quoting anywhere; one that does is left out of the name.
bool IsPlainExtension(std::string_view extension) {
    return std::all_of(extension.begin(), extension.end(), [](char character) {
        const char lower = ToLowerAscii(character);
        return (lower >= 'a' && lower <= 'z') || IsDigit(character) || character == '.' || character == '+';
    });
}

// Compilers of Windows do not agree on the case of letters.
std::string OneSpelling(std::string_view path) {
    return HostPathRules() == PathRules::Windows ? ToLowerAscii(path) : std::string(path);
}

constexpr char FilePrefix = 'f';

} // namespace

std::uint64_t FileKey(std::string_view path) {
    return Fnv1a(OneSpelling(path));
}

std::string AliasOf(std::string_view path) {
    std::string alias(1, FilePrefix);
    alias += std::to_string(FileKey(path));
    if (const std::string extension = OneSpelling(ExtensionOf(path)); IsPlainExtension(extension)) {
        alias += extension;
    }
    return alias;
}

std::optional<std::uint64_t> KeyOfAlias(std::string_view alias) {
    if (!alias.starts_with(FilePrefix)) {
        return std::nullopt;
    }
    // The key stands between the prefix and the extension, which may be missing.
    return WholeNumber<std::uint64_t>(alias.substr(1, alias.find('.') - 1));
}

} // namespace Orvanta
