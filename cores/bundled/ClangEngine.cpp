#include "bundled/ClangEngine.h"

#include "bundled/ClangCommand.h"
#include "bundled/ClangOutput.h"
#include "bundled/ClangText.h"
#include "bundled/CodeScanner.h"
#include "bundled/FileAlias.h"
#include "bundled/ProgramRun.h"
#include "platform/Paths.h"
#include "platform/ScopedFile.h"
#include "platform/Text.h"

#include <algorithm>
#include <iterator>

namespace Orvanta {

namespace {

FindingPlace PlaceOf(const ClangText& text, const ClangNote& note) {
    const TextLine place = text.PlaceOf(note.line);
    return {AliasOf(text.files[place.file].path), place.line};
}

Finding MakeFinding(const ClangText& text, ClangDiagnostic diagnostic) {
    Finding finding;
    finding.location = PlaceOf(text, diagnostic.note);
    finding.id = std::move(diagnostic.checks.front());
    finding.otherIds.assign(diagnostic.checks.begin() + 1, diagnostic.checks.end());
    finding.message = std::move(diagnostic.note.message);
    for (const ClangNote& step : diagnostic.steps) {
        // What happens within the functions of system headers is nothing that a user can look at.
        if (!text.files[text.PlaceOf(step.line).file].isSystem) {
            finding.path.push_back(PlaceOf(text, step));
        }
    }
    return finding;
}

// "exit" is among the functions that threads may not call at once. Nearly every program ends by it, in one thread.
bool IsAboutExit(const ClangText& text, const ClangDiagnostic& diagnostic) {
    constexpr std::string_view Spellings[] = {"exit", "std::exit", "::exit"};
    const std::string_view code = text.From(diagnostic.note.line, diagnostic.note.column);
    return diagnostic.checks.front() == "concurrency-mt-unsafe" &&
           std::any_of(std::begin(Spellings), std::end(Spellings), [code](std::string_view spelling) {
               return code.starts_with(spelling) && !IsWordCharacter(code[spelling.size()]);
           });
}

} // namespace

std::string ClangEngine::Version(const std::string& workingDirectory) const {
    // Of several lines, one tells the version, behind the name of who built it.
    const std::string answer = VersionAnswer(program_, Name(), workingDirectory);
    constexpr std::string_view Word = "version ";
    const std::size_t at = answer.find(Word);
    const std::string_view rest = std::string_view(answer).substr(at == std::string::npos ? 0 : at + Word.size());
    return std::string(Name()) + " " + std::string(rest.substr(0, rest.find_first_of(" \r\n"))) + ", " +
           ProgramIdentity(program_);
}

EngineResult ClangEngine::Analyze(const UnitSettings& unit, const UnitText& text) const {
    if (!HasClangChecks(unit.choice)) {
        return {};
    }
    const ClangText clangText = MakeClangText(text.preprocessed, unit.sourcePath, text.currentDirectory);
    const ScopedFile file(unit.preprocessedPath + (unit.language == UnitLanguage::C ? ".clang.c" : ".clang.cpp"),
                          clangText.text);
    const ProgramEnd end =
        RunProgram(ClangCommand(program_, unit, file.Path()), std::string(DirectoryOf(unit.preprocessedPath)));
    ClangOutput output = ReadClangOutput(end.standardOutput, file.Path());
    EngineResult result;
    result.notLookedAt = std::move(output.error);
    // Code 1 is that of an error in the text; a crash has another one, and tells what clang was at.
    if (result.notLookedAt.empty() && end.exitCode != 0) {
        std::string_view said = Trim(end.standardError);
        result.notLookedAt = "ended with code " + std::to_string(end.exitCode) + ": " + std::string(TakeLine(said));
    }
    if (result.notLookedAt.empty()) {
        for (ClangDiagnostic& diagnostic : output.diagnostics) {
            if (!IsAboutExit(clangText, diagnostic)) {
                result.findings.push_back(MakeFinding(clangText, std::move(diagnostic)));
            }
        }
    }
    return result;
}

Arguments ClangEngine::CommandFor(const UnitSettings& unit) const {
    return ClangCommand(program_, unit, "");
}

} // namespace Orvanta
