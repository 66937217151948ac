#pragma once

#include "report/ReportMessage.h"

namespace OrvlogConverter {

/// The code of the message that is no finding but says where the warnings are described.
inline constexpr const char* DocumentationLinkCode = "Help:";

/// The message that says where the warnings are described.
[[nodiscard]] ReportMessage DocumentationLinkMessage();

} // namespace OrvlogConverter
