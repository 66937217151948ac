#include "bundled/ClangCommand.h"

#include "bundled/CheckTable.h"
#include "bundled/Targets.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace Orvanta {

namespace {

// How much of a function the analyzer explores: at its own bound, one test program takes more than a minute. Measured,
// so that a whole project takes a few times what compiling it does.
constexpr std::string_view NodesOfAFunction = "max-nodes=10000";

// What the checks of iterators ask for.
constexpr std::string_view ForIterators = "aggressive-binary-operation-simplification=true";

// Names that GCC knows and clang does not, as macros: columns stay what they are.
constexpr std::string_view Definitions[] = {
    "_Atomic(...)=__typeof__(__VA_ARGS__)", // as for the qualifier, which the text has lost
    "__malloc__(...)=__malloc__",           // the attribute's arguments
    "_Float128=__float128",
    "_Float64x=long double",
    "_Float64=double",
    "_Float32x=double",
    "_Float32=float",
    "__float80=long double",
    "__builtin_va_arg_pack()=0",
    "__builtin_va_arg_pack_len()=0",
    "__is_layout_compatible(a,b)=false",
    "__is_pointer_interconvertible_base_of(a,b)=false",
    "__builtin_is_corresponding_member(a,b)=false",
    "__builtin_is_pointer_interconvertible_with_class(a)=false",
};

// Warnings that clang makes errors of, which would keep the analyzer from looking at the text. GCC takes such code.
constexpr std::string_view ErrorsOfClang[] = {
    "c++11-narrowing",
    "register",
    "address-of-temporary",
    "reserved-user-defined-literal",
    "implicit-function-declaration",
};

bool IsMsvc(const UnitSettings& unit) {
    return unit.preprocessor == "visualcpp";
}

bool IsAskedFor(CheckRow row, const CheckChoice& choice) {
    choice.rules.ApplyTo(row);
    return choice.Has(row.group) && (choice.all || row.state != CheckState::Off) && !choice.rules.SwitchesOff(row.id);
}

// The analyzer's models of the library come along with its checks, and are no checks themselves.
std::string ChecksFor(const CheckChoice& choice) {
    std::string checks = "-*,clang-diagnostic-error";
    if (choice.Has(CheckGroup::General)) {
        checks += ",clang-analyzer-core.*,clang-analyzer-apiModeling.*,clang-analyzer-cplusplus.SmartPtrModeling";
    }
    for (const CheckRow& row : ClangChecks()) {
        if (IsAskedFor(row, choice)) {
            checks += "," + std::string(row.id);
        }
    }
    return checks;
}

// GCC's own words for the standards take its extensions along: the text may hold them whatever the build says.
std::string StandardOf(const UnitSettings& unit) {
    const std::size_t word = unit.standard.find_first_of("0123456789");
    if (IsMsvc(unit) || word == std::string::npos) {
        return unit.standard;
    }
    return (unit.language == UnitLanguage::C ? "gnu" : "gnu++") + unit.standard.substr(word);
}

void AddAnalyzerOption(Arguments& command, std::string_view option) {
    command.insert(command.end(), {"-Xclang", "-analyzer-config", "-Xclang", std::string(option)});
}

void AddDialect(Arguments& command, const UnitSettings& unit) {
    command.insert(command.end(), {"-x", unit.language == UnitLanguage::C ? "c" : "c++"});
    if (const std::string standard = StandardOf(unit); !standard.empty()) {
        command.push_back("-std=" + standard);
    }
    if (const std::optional<Target> target = TargetOf(unit); target && !target->clangs.empty()) {
        command.push_back("--target=" + std::string(target->clangs));
    }
    if (unit.isPlainCharUnsigned) {
        command.emplace_back("-funsigned-char");
    }
    if (IsMsvc(unit)) {
        command.insert(command.end(), {"-fms-extensions", "-fms-compatibility"});
    }
}

} // namespace

bool HasClangChecks(const CheckChoice& choice) {
    const auto checks = ClangChecks();
    return std::any_of(checks.begin(), checks.end(), [&](const CheckRow& row) { return IsAskedFor(row, choice); });
}

Arguments ClangCommand(const std::string& program, const UnitSettings& unit, const std::string& textPath) {
    // The empty configuration keeps it from looking for one in the folders above the text.
    Arguments command = {program,
                         "--quiet",
                         "--config={}",
                         "--allow-enabling-analyzer-alpha-checkers",
                         "--checks=" + ChecksFor(unit.choice),
                         textPath,
                         "--"};
    AddDialect(command, unit);
    // The text has been preprocessed: no name in it is a macro of clang's own.
    command.insert(command.end(), {"-fsyntax-only", "-undef", "-Weverything"});
    for (const std::string_view warning : ErrorsOfClang) {
        command.push_back("-Wno-error=" + std::string(warning));
    }
    for (const std::string_view definition : Definitions) {
        command.push_back("-D" + std::string(definition));
    }
    AddAnalyzerOption(command, ForIterators);
    if (!unit.isDeep) {
        AddAnalyzerOption(command, NodesOfAFunction);
    }
    return command;
}

} // namespace Orvanta
