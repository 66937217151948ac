#pragma once

#include "report/ReportMessage.h"

namespace OrvlogConverter {

/// The code of the message that is no finding but says where the warnings are described.
inline constexpr const char* DocumentationLinkCode = "Help:";

/// Where the warnings are described; each has a page of its own below it.
inline constexpr const char* DocumentationAddress = "https://docs.orvanta.example/en/docs/warnings/";

/// The message that says where the warnings are described.
[[nodiscard]] ReportMessage DocumentationLinkMessage();

} // namespace OrvlogConverter
