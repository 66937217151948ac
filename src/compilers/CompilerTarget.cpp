#include "compilers/CompilerTarget.h"

#include "compilers/CompilerQuestion.h"
#include "platform/Table.h"
#include "platform/Text.h"

#include <algorithm>
#include <span>

namespace Orvanta {

namespace {

struct TargetRow {
    std::string_view word;
    TargetBits bits;
};

// Names of the folders that hold cl, in old and new Visual Studios: the target alone, or behind the host.
constexpr TargetRow Folders[] = {
    {"x64", TargetBits::Bits64},       {"x86", TargetBits::Bits32},         {"amd64", TargetBits::Bits64},
    {"x86_amd64", TargetBits::Bits64}, {"amd64_x86", TargetBits::Bits32},   {"arm64", TargetBits::Bits64},
    {"x86_arm64", TargetBits::Bits64}, {"amd64_arm64", TargetBits::Bits64}, {"arm", TargetBits::Bits32},
    {"x86_arm", TargetBits::Bits32},   {"amd64_arm", TargetBits::Bits32},   {"ia64", TargetBits::Bits64},
    {"x86_ia64", TargetBits::Bits64},
};

// Processors, as banners and triples name them.
constexpr TargetRow Processors[] = {
    {"x64", TargetBits::Bits64},     {"x86", TargetBits::Bits32},   {"x86_64", TargetBits::Bits64},
    {"amd64", TargetBits::Bits64},   {"arm64", TargetBits::Bits64}, {"arm64ec", TargetBits::Bits64},
    {"aarch64", TargetBits::Bits64}, {"ia64", TargetBits::Bits64},  {"80x86", TargetBits::Bits32},
    {"i386", TargetBits::Bits32},    {"i486", TargetBits::Bits32},  {"i586", TargetBits::Bits32},
    {"i686", TargetBits::Bits32},    {"arm", TargetBits::Bits32},   {"armv7", TargetBits::Bits32},
    {"thumbv7", TargetBits::Bits32},
};

std::optional<TargetBits> Find(std::span<const TargetRow> rows, std::string_view word) {
    const TargetRow* const row = FindRow(rows, &TargetRow::word, word, EqualsIgnoringCase);
    return row != nullptr ? std::optional(row->bits) : std::nullopt;
}

// Cuts the last component off a path, whatever its separators.
std::string_view TakeLastComponent(std::string_view& path) {
    const std::size_t separator = path.find_last_of("/\\");
    const std::string_view component = path.substr(separator == std::string_view::npos ? 0 : separator + 1);
    path = path.substr(0, separator == std::string_view::npos ? 0 : separator);
    return component;
}

// cl takes the question for an unknown option, and prints its banner all the same.
std::optional<TargetBits> AskForTarget(const std::string& path, LauncherWords launcher) {
    const CapturedOutput output = AskCompiler(path, "--version", launcher);
    // A line end between the two, so that they make no word together.
    return TargetByVersionText(output.standardOutput + '\n' + output.standardError);
}

} // namespace

std::optional<TargetBits> TargetByCompilerPath(std::string_view path) {
    TakeLastComponent(path); // the compiler itself
    const std::string_view folder = TakeLastComponent(path);
    if (EqualsIgnoringCase(folder, "bin") && EqualsIgnoringCase(TakeLastComponent(path), "VC")) {
        return TargetBits::Bits32; // of an old Visual Studio, whose other compilers lie in folders below
    }
    return Find(Folders, folder);
}

std::optional<TargetBits> TargetByTriple(std::string_view triple) {
    return Find(Processors, triple.substr(0, triple.find('-')));
}

// A banner says the target as a word ("for x64"), a version text as the first part of a triple: one search finds both.
std::optional<TargetBits> TargetByVersionText(std::string_view text) {
    constexpr std::string_view WhiteSpace = " \t\n\r\v\f";
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find_first_of(WhiteSpace));
        if (const std::optional<TargetBits> bits = TargetByTriple(word)) {
            return bits;
        }
        text.remove_prefix(std::min(word.size() + 1, text.size()));
    }
    return std::nullopt;
}

TargetBits CompilerTargets::TargetOf(const std::string& path, PathMeaning meaning) {
    return targets_.Get(path, [&] {
        std::optional<TargetBits> bits;
        if (meaning == PathMeaning::Target) {
            bits = TargetByCompilerPath(path);
        }
        if (!bits) {
            bits = AskForTarget(path, launcher_);
        }
        return bits.value_or(TargetBits::Bits64);
    });
}

} // namespace Orvanta
