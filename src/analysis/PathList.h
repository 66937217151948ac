#pragma once

#include <string>
#include <vector>

namespace Orvanta {

/// Writes a file of one path a line. A path with a line feed in it would be read back as two.
/// \throws ZelmException with the path and the system's reason
void WritePathList(const std::string& path, const std::vector<std::string>& listed);

/// Reads such a file.
/// \throws ZelmException with the path and the system's reason
[[nodiscard]] std::vector<std::string> ReadPathList(const std::string& path);

} // namespace Orvanta
