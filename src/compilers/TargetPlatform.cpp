#include "compilers/TargetPlatform.h"

#include "compilers/CompilerQuestion.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <algorithm>
#include <iterator>

namespace Orvanta {

namespace {

enum class PlainChar { Signed, Unsigned };

struct ProcessorRow {
    std::string_view beginning; // of the triple's first part
    std::string_view word;
    PlainChar plainChar;
};

// The first that fits counts.
constexpr ProcessorRow Processors[] = {
    {"arm64", "linux64", PlainChar::Unsigned},     {"arm", "arm", PlainChar::Unsigned},
    {"thumb", "arm", PlainChar::Unsigned},         {"aarch64", "linux64", PlainChar::Unsigned},
    {"riscv64", "linux64", PlainChar::Unsigned},   {"riscv32", "linux32", PlainChar::Unsigned},
    {"powerpc64", "linux64", PlainChar::Unsigned}, {"powerpc", "linux32", PlainChar::Unsigned},
    {"s390x", "linux64", PlainChar::Unsigned},     {"xtensa", "linux32", PlainChar::Unsigned},
    {"mips64", "linux64", PlainChar::Signed},      {"mips", "linux32", PlainChar::Signed},
    {"m68k", "linux32", PlainChar::Signed},        {"sh4", "linux32", PlainChar::Signed},
    {"sparc64", "linux64", PlainChar::Signed},     {"sparc", "linux32", PlainChar::Signed},
};

// Before the dash at their end stands a target.
constexpr std::string_view DriverNames[] = {"-gcc", "-g++", "-cc", "-c++", "-clang", "-clang++"};
constexpr std::string_view OwnProcessors[] = {"x86_64", "amd64"};

} // namespace

std::optional<TargetPlatform> PlatformOfTriple(std::string_view triple) {
    for (const ProcessorRow& row : Processors) {
        if (triple.starts_with(row.beginning)) {
            return TargetPlatform{std::string(triple), row.word, row.plainChar == PlainChar::Unsigned};
        }
    }
    return std::nullopt;
}

bool IsNamedAfterForeignTarget(std::string_view path) {
    const std::string_view name = FileNameOf(path);
    // A native compiler may have its triple in its name, too.
    const bool isOwn = std::any_of(std::begin(OwnProcessors), std::end(OwnProcessors),
                                   [name](std::string_view own) { return name.starts_with(own); });
    return !isOwn && std::any_of(std::begin(DriverNames), std::end(DriverNames), [name](std::string_view driver) {
        // What stands before the driver has to have a dash itself, as triples have: "my-gcc" names no target.
        const std::size_t place = name.find(driver);
        return place != std::string_view::npos && name.substr(0, place).find('-') != std::string_view::npos;
    });
}

std::optional<TargetPlatform> CompilerPlatforms::Get(const std::string& path) {
    return platforms_.Get(path, [&]() -> std::optional<TargetPlatform> {
        // Starting a compiler costs more than all else here: only those whose name promises an answer are asked.
        if (!IsNamedAfterForeignTarget(path)) {
            return std::nullopt;
        }
        // The answer is a line of its own, or nothing.
        return PlatformOfTriple(Trim(AskCompiler(path, "-dumpmachine", launcher_).standardOutput));
    });
}

} // namespace Orvanta
