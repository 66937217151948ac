#pragma once

#include "platform/Files.h"
#include "platform/TemporaryFolder.h"

#include <string>
#include <string_view>

namespace Orvanta {

/// A file for readers that take a path: it holds one input at a time and goes with the process.
class FuzzFile {
public:
    /// Replaces what the file holds. Returns its path.
    const std::string& Hold(std::string_view text) const {
        OutputFile(path_, OutputFile::Mode::Replace).Append(text);
        return path_;
    }

private:
    TemporaryFolder folder_;
    std::string path_ = folder_.Path() + "/input";
};

} // namespace Orvanta
