#include "platform/Environment.h"

#include "platform/EnvironmentNames.h"
#include "platform/Text.h"
#include "platform/windows/WideText.h"

#include <memory>

#include <windows.h>

namespace Orvanta {

namespace {

Environment ReadOwnEnvironment() {
    Environment environment;
    const std::unique_ptr<wchar_t, decltype(&::FreeEnvironmentStringsW)> block(::GetEnvironmentStringsW(),
                                                                               &::FreeEnvironmentStringsW);
    for (const wchar_t* entry = block.get(); entry != nullptr && *entry != L'\0';) {
        const std::wstring_view wide = entry;
        const std::string text = FromWide(wide);
        // The system keeps the current folder of each drive under names like "=C:".
        const std::size_t equals = text.find('=', 1);
        if (equals != std::string::npos) {
            environment.emplace(text.substr(0, equals), text.substr(equals + 1));
        }
        entry += wide.size() + 1;
    }
    return environment;
}

} // namespace

const Environment& OwnEnvironment() {
    static const Environment environment = ReadOwnEnvironment();
    return environment;
}

bool IsSameVariable(std::string_view left, std::string_view right) noexcept {
    return EqualsIgnoringCase(left, right);
}

} // namespace Orvanta
