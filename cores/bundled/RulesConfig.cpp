#include "bundled/RulesConfig.h"

#include "bundled/Misra.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Text.h"

namespace Orvanta {

namespace {

constexpr std::string_view LevelKey = "level:";
constexpr std::uint32_t LastLevel = 3;

// The text behind the reason is the line's, as it stands.
std::string ReasonRefused(std::string_view line, CheckRules& rules) {
    std::string_view value = line;
    const std::string_view key = Trim(TakeUpTo(value, "="));
    value = Trim(value);
    const bool isLevel = key.starts_with(LevelKey);
    if (!isLevel && key != "disable" && key != "enable") {
        return "\"disable=ID\", \"enable=ID\" or \"level:ID=N\" is expected";
    }
    const std::string_view id = isLevel ? Trim(key.substr(LevelKey.size())) : value;
    if (FindCheck(id) == nullptr && !IsJudged(MisraRuleOf(id))) {
        return "no check is called \"" + std::string(id) + "\"";
    }
    CheckRules::Rule& rule = rules.byCheck[std::string(id)];
    if (!isLevel) {
        rule.state = key == "enable" ? CheckState::On : CheckState::Off;
    } else if (ReadWholeNumber(value, rule.level) != std::errc() || rule.level == 0 || rule.level > LastLevel) {
        return "a level is 1, 2 or 3";
    }
    return "";
}

} // namespace

void CheckRules::ApplyTo(CheckRow& row) const {
    const auto entry = byCheck.find(row.id);
    if (entry == byCheck.end()) {
        return;
    }
    row.state = entry->second.state.value_or(row.state);
    row.level = entry->second.level != 0 ? entry->second.level : row.level;
}

bool CheckRules::SwitchesOff(std::string_view id) const {
    const auto entry = byCheck.find(id);
    return entry != byCheck.end() && entry->second.state == CheckState::Off;
}

void ReadRules(const std::string& path, CheckRules& rules) {
    const std::string text = ReadWholeFile(path);
    std::size_t number = 0;
    for (std::string_view rest = WithoutUtf8Mark(text); !rest.empty();) {
        const std::string_view line = Trim(TakeLine(rest));
        ++number;
        if (line.empty() || line.starts_with('#')) {
            continue;
        }
        if (const std::string reason = ReasonRefused(line, rules); !reason.empty()) {
            std::string message = path + ", line " + std::to_string(number);
            message.append(": \"").append(line).append("\": ").append(reason);
            throw ZelmException(message);
        }
    }
}

} // namespace Orvanta
