#include "doubles/StrictCompiler.h"

#include "doubles/StrictSwitches.h"
#include "platform/Paths.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace Orvanta {

namespace {

struct StandardVersion {
    std::string_view standard;
    std::string_view version;
};

constexpr StandardVersion StandardVersions[] = {
    {"c90", "199409L"},   {"c99", "199901L"},   {"c11", "201112L"},   {"c17", "201710L"},
    {"c20", "202000L"},   {"c++98", "199711L"}, {"c++03", "199711L"}, {"c++11", "201103L"},
    {"c++14", "201402L"}, {"c++17", "201703L"}, {"c++20", "202002L"},
};

constexpr std::string_view CppExtensions[] = {".cpp", ".cc", ".cxx", ".C"};

const CommandLanguage& LanguageNamed(std::string_view name) {
    for (const CommandLanguage& language : CommandLanguages()) {
        if (language.name == name) {
            return language;
        }
    }
    throw Refusal("no such compiler: " + std::string(name));
}

bool IsCppStandard(std::string_view standard) {
    return standard.starts_with("c++");
}

/// Reads one command.
class StrictReader {
public:
    StrictReader(const CommandLanguage& language, std::string_view program) : language_(language) {
        result_.isPlainCharUnsigned = language.isPlainCharUnsigned;
        isCppDriver_ = FileNameOf(program).find("++") != std::string_view::npos;
    }

    Understanding Read(const std::vector<std::string>& arguments) {
        for (std::size_t index = 0; index < arguments.size(); ++index) {
            const std::string& argument = arguments[index];
            const bool isPathForMsvc = IsMsvc() && index + 1 == arguments.size();
            if (IsSwitch(argument) && !isPathForMsvc) {
                ReadSwitch(arguments, index);
            } else {
                Set(result_.source, argument, "a second source");
                sourceLanguage_ = languageWord_;
            }
        }
        if (!preprocesses_ || result_.source.empty() || result_.output.empty()) {
            throw Refusal("the command preprocesses no source into a file");
        }
        Decide();
        return std::move(result_);
    }

private:
    [[nodiscard]] bool IsMsvc() const { return language_.name == "cl" || language_.name == "clang-cl"; }

    [[nodiscard]] bool IsSwitch(const std::string& argument) const {
        return argument.size() > 1 && (argument.front() == '-' || (IsMsvc() && argument.front() == '/'));
    }

    [[nodiscard]] const Switch* FindSwitch(std::string_view argument) const {
        std::string spelled(argument); // cl's family knows each switch with either introducer
        if (IsMsvc() && !argument.starts_with("--")) {
            spelled.front() = '/';
        }
        const Switch* best = nullptr;
        for (const std::span<const Switch> switches : {language_.shared, language_.own}) {
            for (const Switch& candidate : switches) {
                if (Fits(candidate, spelled) && (best == nullptr || candidate.name.size() >= best->name.size())) {
                    best = &candidate;
                }
            }
        }
        return best;
    }

    static bool Fits(const Switch& candidate, std::string_view argument) {
        if (!argument.starts_with(candidate.name)) {
            return false;
        }
        const std::string_view rest = argument.substr(candidate.name.size());
        switch (candidate.value) {
        case SwitchValue::None:
        case SwitchValue::Next:
            return rest.empty();
        case SwitchValue::Glued:
            return !rest.empty();
        case SwitchValue::GluedOrNext:
            return true;
        case SwitchValue::Equals:
            return rest.size() > 1 && rest.front() == '=';
        case SwitchValue::EqualsOrNext:
            return rest.empty() || (rest.size() > 1 && rest.front() == '=');
        }
        return false;
    }

    void ReadSwitch(const std::vector<std::string>& arguments, std::size_t& index) {
        const std::string& argument = arguments[index];
        const Switch* const found = FindSwitch(argument);
        if (found == nullptr) {
            throw Refusal("unknown switch " + argument);
        }
        std::string value = argument.substr(found->name.size());
        if (value.empty() && found->value != SwitchValue::None) {
            if (index + 1 == arguments.size()) {
                throw Refusal("no value behind " + argument);
            }
            value = arguments[++index];
            if (value.starts_with('-') && found->meaning != SwitchMeaning::HandedOn) {
                throw Refusal("a switch where the value of " + argument + " must stand: " + value);
            }
        } else if (found->value == SwitchValue::Equals || found->value == SwitchValue::EqualsOrNext) {
            value.erase(0, 1);
        }
        Apply(*found, value);
    }

    void Apply(const Switch& found, const std::string& value) {
        switch (found.meaning) {
        case SwitchMeaning::Nothing:
        case SwitchMeaning::Undefine:
        case SwitchMeaning::ForcedInclude:
            return;
        case SwitchMeaning::Include:
            result_.includes.push_back(value);
            return;
        case SwitchMeaning::IncludeList:
            AddEach(value);
            return;
        case SwitchMeaning::Define:
            result_.defines.push_back(value);
            return;
        case SwitchMeaning::Output:
            Set(result_.output, value, "a second output");
            return;
        case SwitchMeaning::PreprocessTo:
            Set(result_.output, value, "a second output");
            preprocesses_ = true;
            return;
        case SwitchMeaning::Preprocess:
            preprocesses_ = true;
            return;
        case SwitchMeaning::Mode:
            isAllCpp_ = IsCppStandard(found.standard);
            SetStandard(found.standard);
            return;
        case SwitchMeaning::Standard:
            SetStandard(found.standard);
            return;
        case SwitchMeaning::AllCpp:
            isAllCpp_ = true;
            return;
        case SwitchMeaning::LanguageWord:
            languageWord_ = value;
            return;
        case SwitchMeaning::CExtension:
            cExtension_ = '.' + value;
            return;
        case SwitchMeaning::CppExtension:
            cppExtension_ = '.' + value;
            return;
        case SwitchMeaning::HandedOn:
            Read1(value);
            return;
        case SwitchMeaning::HandedOnByList:
            for (std::size_t begin = 1; begin <= value.size();) {
                const std::size_t end = std::min(value.find(',', begin), value.size());
                Read1(value.substr(begin, end - begin));
                begin = end + 1;
            }
            return;
        case SwitchMeaning::SignedChar:
        case SwitchMeaning::UnsignedChar:
            result_.isPlainCharUnsigned = found.meaning == SwitchMeaning::UnsignedChar;
            return;
        }
    }

    void Read1(const std::string& argument) {
        std::size_t index = 0;
        ReadSwitch({argument}, index);
    }

    void AddEach(std::string_view list) {
        while (list.find(',') != std::string_view::npos) {
            result_.includes.emplace_back(list.substr(0, list.find(',')));
            list.remove_prefix(list.find(',') + 1);
        }
        result_.includes.emplace_back(list);
    }

    static void Set(std::string& target, const std::string& value, const char* fault) {
        if (!target.empty()) {
            throw Refusal(fault + (": " + value));
        }
        target = value;
    }

    void SetStandard(std::string_view standard) {
        if (!standard.empty()) {
            (IsCppStandard(standard) ? cppStandard_ : cStandard_) = standard;
        }
    }

    [[nodiscard]] bool IsCpp() const {
        if (!sourceLanguage_.empty()) {
            return sourceLanguage_ == "c++";
        }
        if (isAllCpp_) {
            return *isAllCpp_;
        }
        const std::string_view extension = ExtensionOf(result_.source);
        if (extension == cExtension_ || (extension == ".c" && !isCppDriver_)) {
            return false;
        }
        if (extension == cppExtension_ || isCppDriver_ ||
            std::find(std::begin(CppExtensions), std::end(CppExtensions), extension) != std::end(CppExtensions)) {
            return true;
        }
        throw Refusal("no source: " + result_.source);
    }

    void Decide() {
        const bool isCpp = IsCpp();
        result_.language = isCpp ? "C++" : "C";
        const std::string_view stated = isCpp ? cppStandard_ : cStandard_;
        const std::string_view byDefault = isCpp ? language_.defaultCpp : language_.defaultC;
        result_.standard = stated.empty() ? byDefault : stated;
    }

    const CommandLanguage& language_;
    Understanding result_;
    bool isCppDriver_ = false;
    bool preprocesses_ = false;
    std::optional<bool> isAllCpp_;
    std::string languageWord_;
    std::string sourceLanguage_;
    std::string cExtension_;
    std::string cppExtension_;
    std::string_view cStandard_;
    std::string_view cppStandard_;
};

} // namespace

Understanding ReadStrictly(std::string_view compiler, std::string_view program,
                           const std::vector<std::string>& arguments) {
    return StrictReader(LanguageNamed(compiler), program).Read(arguments);
}

std::string VersionOfStandard(std::string_view standard) {
    for (const StandardVersion& row : StandardVersions) {
        if (row.standard == standard) {
            return std::string(row.version);
        }
    }
    return {};
}

} // namespace Orvanta
