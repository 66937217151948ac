#include "buildinput/CompilationDatabase.h"

#include "Collecting.h"
#include "platform/Paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <ostream>
#include <random>
#include <sstream>

namespace Orvanta {

namespace {

using nlohmann::json;
using Words = std::vector<std::string>;

/// What the database says about one invocation.
struct Invocation {
    Words arguments;
    std::string directory;
    Environment environment;

    bool operator==(const Invocation&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Invocation& invocation) {
    return stream << json(invocation.arguments) << ' ' << json(invocation.directory) << ' '
                  << json(invocation.environment);
}

/// What reading a database came to: the invocations, or the text of the failure.
struct Outcome {
    std::vector<Invocation> invocations;
    std::string failure;

    bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    for (const Invocation& invocation : outcome.invocations) {
        stream << invocation << '\n';
    }
    return stream << "failure: " << outcome.failure;
}

/// Reads databases whose compiler is always "clang" of this folder and compiles something.
class Reader {
public:
    [[nodiscard]] const std::string& Clang() const { return clang_; }

    [[nodiscard]] Outcome Read(const std::string& text) const {
        Collecting collecting;
        std::istringstream stream(text);
        Outcome outcome;
        try {
            ParseCompilationDatabase(stream, CommandStringRules::Posix, collecting.collector);
        } catch (const std::exception& error) {
            outcome.failure = error.what();
            return outcome;
        }
        for (const CompileCommand& unit : collecting.collector.Take().units) {
            outcome.invocations.push_back({unit.arguments.ToVector(), *unit.workingDirectory, *unit.environment});
        }
        return outcome;
    }

private:
    TestFolder folder_;
    std::string clang_ = MakeProgram(folder_, "clang");
};

bool IsVariableName(const std::string& name) {
    return !name.empty() && name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_0123456789") ==
                                std::string::npos;
}

json Member(const json& entry, const char* name) {
    if (!entry.contains(name)) {
        throw json::invalid_iterator::create(214, "cannot get value", nullptr);
    }
    return entry[name];
}

/// The plain way to read a database: the whole document first. Its type errors are the library's own.
std::vector<Invocation> ReadFromDocument(const json& document) {
    if (document.is_null() || (document.is_structured() && document.empty())) {
        throw NoCompilerInvocationsFound(NoCompilerInvocationsFound::Hint::None);
    }
    std::vector<Invocation> invocations;
    for (const json& value : document.get<std::vector<json>>()) {
        const json entry = value.get<std::map<std::string, json>>();
        Invocation invocation;
        if (entry.contains("environment")) {
            invocation.environment = entry["environment"].get<Environment>();
            std::erase_if(invocation.environment, [](const auto& item) { return !IsVariableName(item.first); });
        }
        invocation.directory = Member(entry, "directory").get<std::string>();
        if (entry.contains("arguments")) {
            invocation.arguments = entry["arguments"].get<Words>();
        } else {
            invocation.arguments =
                SplitCommandString(Member(entry, "command").get<std::string>(), CommandStringRules::Posix);
        }
        invocations.push_back(invocation);
    }
    return invocations;
}

/// Leaves only the invocations of `compiler`.
Outcome ReadPlainly(const std::string& text, const std::string& compiler = "") {
    Outcome outcome;
    try {
        outcome.invocations = ReadFromDocument(json::parse(text));
        std::erase_if(outcome.invocations, [&compiler](const Invocation& invocation) {
            return invocation.arguments.empty() || invocation.arguments.front() != compiler;
        });
    } catch (const std::exception& error) {
        outcome.failure = error.what();
    }
    return outcome;
}

void ExpectFailure(const Reader& reader, const char* text, const std::string& failure) {
    EXPECT_EQ(reader.Read(text).failure, failure) << text;
    EXPECT_EQ(ReadPlainly(text).failure, failure) << text;
}

struct TypeErrorCase {
    const char* text;
    const char* expected;
    const char* found;
};

const TypeErrorCase TypeErrorCases[] = {
    {"1", "array", "number"},
    {R"("[]")", "array", "string"},
    {R"({"directory": "/", "command": "cc"})", "array", "object"},
    {"[1.5]", "object", "number"},
    {"[[]]", "object", "array"},
    {"[null]", "object", "null"},
    {R"([{"directory": 1, "command": "cc"}])", "string", "number"},
    {R"([{"directory": {"directory": "/"}}])", "string", "object"},
    {R"([{"directory": "/", "command": ["cc"]}])", "string", "array"},
    {R"([{"directory": "/", "arguments": "cc", "command": "cc"}])", "array", "string"},
    {R"([{"directory": "/", "arguments": null, "command": "cc"}])", "array", "null"},
    {R"([{"directory": "/", "arguments": ["cc", true, 1]}])", "string", "boolean"},
    {R"([{"directory": "/", "arguments": ["cc", ["a", "b"]]}])", "string", "array"},
    {R"([{"environment": ["A"]}])", "object", "array"},
    {R"([{"environment": {"A": 1}}])", "string", "number"},
    {R"([{"environment": {"not-a-name": null}}])", "string", "null"},
    {R"([{"environment": {"B": 1, "A": null}}])", "string", "null"},
    {"[1, [], {}]", "object", "number"},
};

TEST(CompilationDatabase, IsRefusedInTheWordsOfTheJsonLibrary) {
    const Reader reader;
    for (const TypeErrorCase& row : TypeErrorCases) {
        ExpectFailure(reader, row.text,
                      std::string("[json.exception.type_error.302] type must be ") + row.expected + ", but is " +
                          row.found);
    }
    const char* const withoutMember[] = {"[{}]", R"([{"arguments": ["cc"]}])", R"([{"command": "cc"}])",
                                         R"([{"directory": "/", "file": "a.c"}])", R"([{"environment": {"A": "a"}}])"};
    for (const char* text : withoutMember) {
        ExpectFailure(reader, text, "[json.exception.invalid_iterator.214] cannot get value");
    }
}

TEST(CompilationDatabase, WithoutEntriesHoldsNoInvocations) {
    const Reader reader;
    for (const char* text : {"null", "{}", " [ ] ", "\xEF\xBB\xBF[]"}) {
        ExpectFailure(reader, text, "No compiler invocations were detected.");
    }
    Collecting collecting;
    std::istringstream stream("[]");
    try {
        ParseCompilationDatabase(stream, CommandStringRules::Posix, collecting.collector);
        FAIL() << "an empty database was accepted";
    } catch (const NoCompilerInvocationsFound& error) {
        EXPECT_EQ(error.HintForUser(), NoCompilerInvocationsFound::Hint::None);
    }
}

TEST(CompilationDatabase, ThatIsNoJsonIsRefusedWithThePlaceOfTheFault) {
    const char* const texts[] = {
        "",
        "[",
        "[{]",
        "[{\n\"directory\": \"/\",\n\"command\" \"cc\"}]",
        "[{}] x",
        R"([{"directory": 1, "command": "cc"}, ])", // told before the fault of content
        R"([{"directory": "\x"}])",
        "[{\"directory\": \"\xFF\"}]",
        "[1e999]",
        "[{}, // comment\n{}]",
    };
    const Reader reader;
    for (const char* text : texts) {
        const std::string failure = reader.Read(text).failure;
        EXPECT_EQ(failure, ReadPlainly(text).failure) << text;
        EXPECT_THAT(failure, testing::AnyOf(testing::HasSubstr("[json.exception.parse_error.101] parse error at line"),
                                            testing::HasSubstr("[json.exception.out_of_range.406]")));
    }
}

TEST(CompilationDatabase, GivesItsEntriesInOrder) {
    const Reader reader;
    const std::string clang = reader.Clang();
    const std::string text = R"([
        {"directory": "/b", "file": "ignored.c", "output": 7, "command": ")" +
                             clang + R"( -c 'a b.c' -DX=\\\"y\\\""},
        {"file": null, "arguments": [")" +
                             clang + R"(", "-c", "b.c", "-DA=\u00e4"], "command": 1, "directory": "rel/a",
         "environment": {"A_1": "first", "a-b": "x", "c.d": "x", "": "x", "PATH": "/p", "A_1": "last"}},
        {"directory": 1, "directory": "/c", "arguments": [1], "arguments": [")" +
                             clang + R"(", "-c", "c.c"], "environment": {"A": 1}, "environment": {}}
    ])";
    Outcome expected;
    expected.invocations.push_back({Words{clang, "-c", "a b.c", "-DX=\"y\""}, "/b", Environment()});
    Environment variables;
    variables["A_1"] = "last";
    variables["PATH"] = "/p";
    expected.invocations.push_back({Words{clang, "-c", "b.c", "-DA=\xC3\xA4"}, "rel/a", variables});
    expected.invocations.push_back({Words{clang, "-c", "c.c"}, "/c", Environment()});
    EXPECT_EQ(reader.Read(text), expected);
}

TEST(CompilationDatabase, SkipsOtherMembersHoweverDeepTheyAre) {
    const Reader reader;
    constexpr std::size_t depth = 200000;
    const std::string deep = std::string(depth, '[') + std::string(depth, ']');
    const std::string text = R"([{"x": )" + deep + R"(, "directory": "/", "y": {"directory": 1, "arguments": [2]},
        "arguments": [")" + reader.Clang() +
                             R"(", "-c", "a.c"]}])";
    Outcome expected;
    expected.invocations.push_back({Words{reader.Clang(), "-c", "a.c"}, "/", Environment()});
    EXPECT_EQ(reader.Read(text), expected);
}

/// Writes JSON texts that are nearly databases: members are left out, doubled, or of another type.
class RandomDatabase {
public:
    RandomDatabase(unsigned seed, std::string compiler) : random_(seed), compiler_(std::move(compiler)) {}

    std::string Next() {
        const std::size_t size = random_() % 4;
        std::string text = "[";
        for (std::size_t i = 0; i < size; ++i) {
            text += (i > 0 ? ", " : "") + (Rarely() ? Other() : Entry());
        }
        return text + (Rarely() && Rarely() ? "" : "]");
    }

private:
    bool Rarely() { return random_() % 24 == 0; }

    std::string Other() {
        const char* const values[] = {"null", "true", "-1", "2.5", R"("text")", "[]", "{}", R"([["a"], {"b": []}])"};
        return values[random_() % std::size(values)];
    }

    std::string Command() {
        const char* const words[] = {R"(\"-DA=b c\")", "'-I d'", "-O2", R"(-I\\\\x)", R"(-DB=\u00e4)"};
        return '"' + compiler_ + " -c " + words[random_() % std::size(words)] + " a.c\"";
    }

    std::string Arguments() {
        std::string text = "[\"" + compiler_ + "\", \"-c\"";
        for (std::size_t count = random_() % 3; count > 0; --count) {
            text += ", " + (Rarely() ? Other() : R"("-DA=\"b c\"")");
        }
        return text + ", \"a.c\"]";
    }

    std::string Variables() {
        const char* const names[] = {"A", "B", "A", "not-a-name", ""};
        std::string text = "{";
        for (std::size_t count = random_() % 4; count > 0; --count) {
            text += std::string("\"") + names[random_() % std::size(names)] +
                    "\": " + (Rarely() ? Other() : "\"" + std::to_string(count) + "\"") + (count > 1 ? ", " : "");
        }
        return text + "}";
    }

    std::string Entry() {
        std::string text = R"({"file": )" + Other();
        for (std::size_t count = 2 + random_() % 4; count > 0; --count) {
            switch (random_() % 4) {
            case 0:
                text += R"(, "command": )" + (Rarely() ? Other() : Command());
                break;
            case 1:
                text += R"(, "arguments": )" + (Rarely() ? Other() : Arguments());
                break;
            case 2:
                text += R"(, "environment": )" + (Rarely() ? Other() : Variables());
                break;
            default:
                text += R"(, "command": )" + Command();
                break;
            }
        }
        text += Rarely() ? "" : R"(, "directory": )" + (Rarely() ? Other() : R"("/b")");
        return text + "}";
    }

    std::mt19937 random_;
    std::string compiler_;
};

TEST(CompilationDatabase, GivesWhatAReaderOfTheWholeDocumentGives) {
    const Reader reader;
    RandomDatabase texts(31, reader.Clang());
    std::size_t accepted = 0;
    for (int round = 0; round < 2000; ++round) {
        const std::string text = texts.Next();
        const Outcome outcome = reader.Read(text);
        ASSERT_EQ(outcome, ReadPlainly(text, reader.Clang())) << text;
        accepted += outcome.failure.empty() ? 1U : 0U;
    }
    EXPECT_GT(accepted, 200U);
    EXPECT_LT(accepted, 1800U);
}

TEST(CompilationDatabase, ThatIsNoReadableFileIsToldFromABadOne) {
    const TestFolder folder;
    Collecting collecting;
    EXPECT_FALSE(ReadCompilationDatabase(folder / "none.json", collecting.collector));
    EXPECT_THROW((void)ReadCompilationDatabase(folder.Write("a.json", "[}"), collecting.collector), json::parse_error);
}

TEST(CompilationDatabase, ReadBackAfterWritingGivesTheSameUnits) {
    const TestFolder folder;
    const std::string clang = MakeProgram(folder, "clang");
    Collecting first;
    first.collector.SetBaseDirectory(folder.Path());
    const Environment variables = {{"A", "b=\"c\""}};
    const Words odd = {clang, "-c", "a \"b\"\\'.c", "", "-DX=$(Y) \t"};
    const Words several = {clang, "-c", "one.c", "two.cpp", "\xC3\xA4.c"};
    first.collector.AddInvocation(odd, "rel", variables);
    first.collector.AddInvocation(several, "/", {});
    first.collector.AddInvocation({clang, "a.o"}, "/", {});
    first.collector.AddInvocation({clang, "-c", "last.c"}, "/", {});
    const std::vector<CompileCommand> written = first.collector.Take().units;
    ASSERT_EQ(written.size(), 5U);
    WriteCompilationDatabase(folder / "out.json", written);

    Collecting second;
    ASSERT_TRUE(ReadCompilationDatabase(folder / "out.json", second.collector));
    const CollectedCommands read = second.collector.Take();
    EXPECT_EQ(read.invocations, 3U);
    ASSERT_EQ(read.units.size(), written.size());
    for (std::size_t i = 0; i < written.size(); ++i) {
        EXPECT_EQ(read.units[i].arguments.ToVector(), written[i].arguments.ToVector());
        EXPECT_EQ(read.units[i].SourceFile(), written[i].SourceFile());
        EXPECT_EQ(*read.units[i].absoluteDirectory, *written[i].absoluteDirectory);
        EXPECT_EQ(*read.units[i].environment, *written[i].environment);
    }
    const json document = json::parse(folder.Read("out.json"));
    EXPECT_EQ(document[1]["file"], "one.c");
    EXPECT_EQ(document[0]["directory"], NormalizePath(folder / "rel"));
}

TEST(CompilationDatabase, IsValidJsonWhateverTheBytesOfACommand) {
    const TestFolder folder;
    Collecting collecting;
    collecting.collector.AddInvocation({MakeProgram(folder, "clang"), "-c", "\xFF\x80.c"}, "/", {});
    WriteCompilationDatabase(folder / "out.json", collecting.collector.Take().units);
    EXPECT_EQ(json::parse(folder.Read("out.json"))[0]["file"], "\xEF\xBF\xBD\xEF\xBF\xBD.c");

    WriteCompilationDatabase(folder / "out.json", {});
    EXPECT_EQ(json::parse(folder.Read("out.json")), json::array());
}

} // namespace

} // namespace Orvanta
