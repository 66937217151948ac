#include "bundled/CppcheckCommand.h"

#include "bundled/CppcheckOutput.h"
#include "bundled/Targets.h"

#include <optional>
#include <span>

namespace Orvanta {

namespace {

struct WordPair {
    std::string_view ours;
    std::string_view cppchecks;
};

// c17 is c11 without its defects; c20 has no nearer one.
constexpr WordPair Standards[] = {
    {"c90", "c89"},     {"c99", "c99"},     {"c11", "c11"},     {"c17", "c11"},
    {"c20", "c11"},     {"c++98", "c++03"}, {"c++03", "c++03"}, {"c++11", "c++11"},
    {"c++14", "c++14"}, {"c++17", "c++17"}, {"c++20", "c++20"},
};

// Names that the macros of system headers leave in a user's text, given back the meaning that Cppcheck knows them by.
constexpr std::string_view Definitions[] = {
    "__null=NULL",
    "__builtin_va_start=va_start",
    "__builtin_va_arg=va_arg",
    "__builtin_va_copy=va_copy",
    "__builtin_va_end=va_end",
    "__builtin_offsetof=offsetof",
    "__builtin_expect(value,expected)=(value)",
    "__builtin_unreachable=abort",
    "__builtin_trap=abort",
    // Of several words: those of C11's atomic operations are a comma expression, whose type is that of its last part.
    "__typeof__(...)=typeof(__VA_ARGS__)",
    // What a failed assertion calls: without these, each assertion would look like a test whose outcome is ignored.
    "__assert_fail(text,file,line,function)=abort()",
    "__assert_func(file,line,function,text)=abort()",
    "__assert_rtn(function,file,line,text)=abort()",
    "__aeabi_assert(text,file,line)=abort()",
    "_wassert(text,file,line)=abort()",
};

std::string_view Find(std::span<const WordPair> table, std::string_view word) {
    for (const WordPair& pair : table) {
        if (pair.ours == word) {
            return pair.cppchecks;
        }
    }
    return {};
}

// A file of the target's own says nothing of the functions that its system has.
void AddLibraries(Arguments& command, std::string_view platform) {
    const bool isUnix = platform.starts_with("unix");
    const bool isWindows = platform.starts_with("win");
    if (isUnix) {
        command.insert(command.end(), {"--library=posix", "--library=gnu"});
    } else if (isWindows) {
        command.emplace_back("--library=windows");
    }
}

constexpr std::string_view BuildFolder = "--cppcheck-build-dir=.";

// One job: the driver runs as many cores as there is room for. Quiet: what it tells of its progress is for nobody.
Arguments CommonWords(const std::string& program) {
    return {program,
            "--quiet",
            "-j",
            "1",
            "--enable=warning,style,performance,portability",
            "--template=" + CppcheckTemplate(),
            "--template-location=" + CppcheckLocationTemplate()};
}

void AddUnitWords(Arguments& command, const UnitSettings& unit) {
    command.emplace_back(unit.language == UnitLanguage::C ? "--language=c" : "--language=c++");
    if (const std::string_view standard = CppcheckStandard(unit.standard); !standard.empty()) {
        command.push_back("--std=" + std::string(standard));
    }
    const std::string platform = CppcheckPlatform(unit);
    command.push_back("--platform=" + platform);
    AddLibraries(command, platform);
    // It comes with Cppcheck, and knows the rules for C.
    if (unit.choice.Has(CheckGroup::Misra) && unit.language == UnitLanguage::C) {
        command.emplace_back("--addon=misra");
    }
    for (const std::string_view definition : Definitions) {
        command.push_back("-D" + std::string(definition));
    }
}

} // namespace

std::string_view CppcheckStandard(std::string_view standard) {
    return Find(Standards, standard);
}

std::string CppcheckPlatform(const UnitSettings& unit) {
    const std::optional<Target> target = TargetOf(unit);
    if (!target) {
        return "unspecified";
    }
    if (target->sizes) {
        return PlatformPath(unit);
    }
    std::string platform(target->cppchecks);
    // Only these two have such a twin.
    if (unit.isPlainCharUnsigned && platform.starts_with("unix")) {
        platform += "-unsigned";
    }
    return platform;
}

std::string PlatformPath(const UnitSettings& unit) {
    return unit.preprocessedPath + ".platform.xml";
}

Arguments CppcheckCommand(const std::string& program, const UnitSettings& unit, const std::string& textPath) {
    Arguments command = CommonWords(program);
    AddUnitWords(command, unit);
    command.push_back(textPath);
    return command;
}

Arguments CppcheckCollectCommand(const std::string& program, const UnitSettings& unit, const std::string& textName) {
    // The same words as for an analysis alone: findings of one can stand for those of the other.
    Arguments command = CppcheckCommand(program, unit, textName);
    command.emplace_back(BuildFolder);
    // Who calls what, by name.
    command.emplace_back("--dump");
    return command;
}

Arguments CppcheckLinkCommand(const std::string& program, const Arguments& textNames) {
    Arguments command = CommonWords(program);
    command.emplace_back(BuildFolder);
    // No words of a unit: none is analyzed here.
    command.insert(command.end(), textNames.begin(), textNames.end());
    return command;
}

} // namespace Orvanta
