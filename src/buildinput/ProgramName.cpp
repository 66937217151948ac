#include "buildinput/ProgramName.h"

#include "platform/Paths.h"
#include "platform/Text.h"

namespace Orvanta {

namespace {

std::string_view WithoutExe(std::string_view name) {
    constexpr std::string_view Exe = ".exe";
    const bool ends = name.size() > Exe.size() && EqualsIgnoringCase(name.substr(name.size() - Exe.size()), Exe);
    return ends ? name.substr(0, name.size() - Exe.size()) : name;
}

} // namespace

bool IsProgramNamed(std::string_view path, std::string_view name) noexcept {
    return EqualsIgnoringCase(WithoutExe(FileNameOf(path)), WithoutExe(name));
}

} // namespace Orvanta
