#pragma once

#include "buildinput/ArgumentList.h"
#include "history/HistoryFile.h"
#include "platform/Files.h"
#include "platform/Fingerprint.h"

#include <functional>
#include <istream>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// An element of `depend_info.json`: a unit and the files that it is made of.
struct DependencyInfoEntry {
    std::optional<std::string> id;
    std::vector<std::string> arguments;
    std::vector<std::string> dependencies;
};

/// Reads dependency information and hands on each entry as soon as it is complete: it is never whole in memory.
/// \throws ZelmException for what is not JSON or not of this form; the text says what is wrong, without the path
void ReadDependencyInfo(std::istream& input, const std::function<void(const DependencyInfoEntry&)>& take);

/// Writes `depend_info.json`, in one step.
class DependencyInfoWriter {
public:
    /// \throws ZelmException: the path, then the system's reason; so do the other functions
    explicit DependencyInfoWriter(const std::string& path);

    /// `dependencies` are numbers of `paths`, which is the same at all calls.
    void Add(std::string_view id, const ArgumentList& arguments, const PathTable& paths,
             std::span<const std::uint32_t> dependencies);

    /// The last call. Returns what the file then holds.
    ContentFingerprint Commit();

private:
    void WriteText();

    AtomicFile file_;
    ContentFingerprinter content_;
    std::string text_; // not written yet
    bool isFirst_ = true;
    std::vector<std::string> pathTexts_; // as JSON, by number: each is written many times
};

} // namespace Orvanta
