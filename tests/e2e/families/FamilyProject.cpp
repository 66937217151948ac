#include "e2e/families/FamilyProject.h"

#include "platform/Paths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

namespace Orvanta {

namespace {

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

// The text without the marks, and without what stands between those of `gone`.
std::string WithoutMarks(std::string_view text, std::string_view gone) {
    std::string left;
    bool isGone = false;
    for (const char character : text) {
        if (gone.find(character) != std::string_view::npos) {
            isGone = std::string_view("{[<").find(character) != std::string_view::npos;
            left += ' ';
        } else if (std::string_view("[]").find(character) != std::string_view::npos) {
            left += ' ';
        } else if (!isGone && std::string_view("{}<>").find(character) == std::string_view::npos) {
            left += character;
        }
    }
    return left;
}

Arguments WordsOf(const FamilyUnit& unit, const std::string& text) {
    Arguments words;
    std::istringstream stream(text);
    for (std::string word; stream >> word;) {
        words.push_back(unit.Filled(word));
    }
    return words;
}

FamilyUnit MakeUnit(const Sandbox& sandbox, const Family& family, const UnitRow& row, std::size_t number) {
    FamilyUnit unit;
    unit.family = &family;
    unit.row = &row;
    unit.directory = sandbox.Path("rows/" + std::to_string(number) + "/build");
    const std::string_view text = row.command;
    const std::size_t source = text.find('<') + 1;
    unit.source = unit.Filled(text.substr(source, text.find('>') - source));
    unit.command = WordsOf(unit, WithoutMarks(text, "[]"));
    unit.kept = WordsOf(unit, WithoutMarks(text, "{}<>"));
    const std::string compiler = std::string(family.name) + '/' + unit.command.front();
    unit.command.front() = sandbox.Path("tools/" + compiler);
    unit.kept.erase(unit.kept.begin());
    if (!sandbox.Exists("tools/" + compiler)) {
        sandbox.AddCompiler(compiler, family.version, "strict " + std::string(family.strict) + '\n');
    }
    return unit;
}

// What the compiler has written into the preprocessed text about its command.
std::string Understood(const CoreCall& call, const std::string& what) {
    const std::string begin = "// " + what + ": ";
    std::istringstream lines(call.preprocessed);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(begin)) {
            return line.substr(begin.size());
        }
    }
    return "(nothing)";
}

// The preprocessing command, without the compiler.
Arguments ExpectedCommand(const FamilyUnit& unit, const std::string& output) {
    Arguments words = unit.kept;
    words.emplace_back("-DORVANTA");
    for (const std::string& word : WordsOf(unit, unit.family->ending)) {
        words.push_back(word == "<>" ? unit.source : Replaced(word, "@", output));
    }
    return words;
}

void ExpectUnit(const FamilyUnit& unit, const CoreCall& call) {
    const UnitRow& row = *unit.row;
    const std::string defines = unit.Filled(row.defines);
    const std::pair<const char*, std::string> settings[] = {
        {"source-file", unit.source},
        {"preprocessor", unit.family->preprocessor},
        {"platform", row.platform != nullptr ? row.platform : unit.family->platform},
        {"language", row.language},
        {"std", row.standard},
        {"funsigned-char", std::string_view(row.plainChar) == "unsigned" ? "yes" : "no"},
    };
    for (const auto& [key, value] : settings) {
        EXPECT_EQ(call.Setting(key), value) << key << " of " << row.command;
    }
    EXPECT_EQ(call.preprocessed.substr(0, call.preprocessed.find('\n')),
              "// " + CommandLineText(ExpectedCommand(unit, "OUTPUT")));
    EXPECT_EQ(Understood(call, "language"), row.language) << row.command;
    EXPECT_EQ(Understood(call, "includes"), unit.Filled(row.includes)) << row.command;
    EXPECT_EQ(Understood(call, "defines"), defines + (defines.empty() ? "ORVANTA" : "|ORVANTA")) << row.command;
}

} // namespace

std::string FamilyUnit::Filled(std::string_view text) const {
    return Replaced(Replaced(std::string(text), "%", DirectoryOf(directory)), "~", " ");
}

const std::vector<Family>& Families() {
    static const std::vector<Family> families = {
        GccFamily(),      ClangFamily(), ClFamily(),       ClangClFamily(), Keil5Family(),
        Keil5GnuFamily(), Keil6Family(), TiArmCGTFamily(), GccARMFamily(),  OlderIARArmFamily(),
        IARArmFamily(),   QccFamily(),   XC8Family(),
    };
    return families;
}

std::vector<FamilyUnit> WriteFamilyProject(const Sandbox& sandbox) {
    std::vector<FamilyUnit> units;
    for (const Family& family : Families()) {
        for (const UnitRow& row : family.rows) {
            units.push_back(MakeUnit(sandbox, family, row, units.size() + 1));
            const std::string folder = "rows/" + std::to_string(units.size()) + '/';
            if (row.file != nullptr) {
                sandbox.Write(folder + "build/options", row.file);
            }
            sandbox.Write(folder + "build/note", "");
            const std::string source = JoinPath(units.back().directory, units.back().source);
            sandbox.Write(NormalizePath(source).substr(sandbox.Path().size() + 1), "int value;\n");
        }
    }
    return units;
}

void ExpectFamilyUnits(const Sandbox& sandbox, const std::vector<FamilyUnit>& units, const RunResult& result) {
    EXPECT_EQ(result.exitCode, 0) << result;
    std::map<std::string, CoreCall> calls;
    for (const CoreCall& call : sandbox.CoreCalls()) {
        EXPECT_TRUE(calls.emplace(NormalizePath(call.directory), call).second) << "two units in " << call.directory;
    }
    std::set<std::string> told;
    for (const FamilyUnit& unit : units) {
        const auto call = calls.find(NormalizePath(unit.directory));
        if (call == calls.end()) {
            ADD_FAILURE() << "not analyzed: " << CommandLineText(unit.command);
            continue;
        }
        ExpectUnit(unit, call->second);
        const std::string line = "Compiler family: '" + unit.command.front() + "' is " + unit.family->title + '\n';
        if (told.insert(line).second) {
            EXPECT_EQ(result.Count(line), 1U) << line;
        }
    }
    EXPECT_EQ(calls.size(), units.size());
}

} // namespace Orvanta
