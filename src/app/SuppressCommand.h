#pragma once

namespace args {
class Subparser;
}

namespace Orvanta {

/// Where accepted messages are kept unless the user names another file.
inline constexpr const char* DefaultBasePath = "suppress_base.json";

/// The callback of `suppress`: declares its options, parses them, checks them and adds a report's messages to a base.
/// \throws ZelmException, OrvlogConverter::ReportException
void SuppressCommand(args::Subparser& parser);

} // namespace Orvanta
