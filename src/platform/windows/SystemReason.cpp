#include "platform/windows/SystemReason.h"

#include "platform/Text.h"
#include "platform/windows/WideText.h"

#include <array>
#include <system_error>

#include <windows.h>

namespace Orvanta {

namespace {

// The system's own sentence, in the user's language; empty when it has none.
std::string SystemText(unsigned long error) {
    std::array<wchar_t, 1024> text{};
    const DWORD length =
        ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                         nullptr, error, 0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    const std::string sentence = FromWide({text.data(), length});
    std::string_view reason = Trim(sentence);
    if (reason.ends_with('.')) {
        reason.remove_suffix(1);
    }
    return std::string(reason);
}

// To call these "Permission denied", as the common words do, would send the user the wrong way.
bool IsHeldByOther(unsigned long error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
}

} // namespace

SystemFault LastFault() noexcept {
    return {::GetLastError()};
}

std::string SystemReason(unsigned long error) {
    if (error == ERROR_BAD_EXE_FORMAT || error == ERROR_EXE_MACHINE_TYPE_MISMATCH) {
        return std::make_error_code(std::errc::executable_format_error).message();
    }
    const std::error_condition common = std::system_category().default_error_condition(static_cast<int>(error));
    if (common.category() == std::generic_category() && !IsHeldByOther(error)) {
        return common.message();
    }
    std::string text = SystemText(error);
    return text.empty() ? "error " + std::to_string(error) : text;
}

} // namespace Orvanta
