#include "app/OutputCheck.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/InputFile.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <array>

namespace Orvanta {

namespace {

// Only of a file on a disk is there something to be lost.
bool MayTakeAPlace(const std::string& output) {
    return !output.empty() && !IsOwnOpenFile(output) && LookAt(output).kind == PathKind::File;
}

// Whether it begins as reports and databases do, which no compiler takes for a source.
bool LooksLikeOurs(const std::string& path) {
    std::array<char, 2> beginning{};
    const std::size_t count = InputFile(path).Read(beginning);
    return count > 0 && (beginning[0] == '{' || (beginning[0] == '[' && beginning[1] != '['));
}

[[noreturn]] void Refuse(const std::string& output, const std::string& input) {
    throw ZelmException("The output " + output + " would replace a file that is read: " + input);
}

} // namespace

void RequireNoInput(const std::string& output, std::span<const std::optional<std::string>> inputs) {
    if (!MayTakeAPlace(output)) {
        return;
    }
    for (const std::optional<std::string>& input : inputs) {
        if (input && LookAt(*input).IsThere() && IsSameFile(output, *input)) {
            Refuse(output, *input);
        }
    }
}

void RequireNoSource(const std::string& output, std::span<const CompileCommand> units) {
    if (!MayTakeAPlace(output)) {
        return;
    }
    const std::optional<FileIdentity> identity = IdentityOf(output);
    // A link or another hard link may have any name. To ask for each source costs more than to read the database did,
    // and the report of an earlier run is there in nearly every run.
    const bool isAnyName = !LooksLikeOurs(output);
    const std::string name(FileNameOf(output));
    for (const CompileCommand& unit : units) {
        if (!isAnyName && !EqualsIgnoringCase(FileNameOf(unit.SourceFile()), name)) {
            continue;
        }
        const std::string source = SourcePath(unit);
        if (LookAt(source).IsThere() && IdentityOf(source) == identity) {
            Refuse(output, source);
        }
    }
}

} // namespace Orvanta
