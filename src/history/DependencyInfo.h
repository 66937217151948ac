#pragma once

#include "history/FingerprintedFile.h"
#include "history/Numbers.h"
#include "history/PathTable.h"
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
    std::vector<std::string> added; ///< those of the dependencies that a person has written there
};

// The JSON of a large build has hundreds of megabytes, so it is read by the parser's events and written in blocks. It
// has the fields that other programs know, and one more: "added" repeats those of the dependencies that the core has
// not listed. The binary file knows them as well, but when that is lost, nobody could say any more which of the files a
// person wants to be there and which were only there once.

/// Reads dependency information and hands on each entry as soon as it is complete: it is never whole in memory.
/// \throws ZelmException for what is not JSON or not of this form; the text says what is wrong, without the path
void ReadDependencyInfo(std::istream& input, const std::function<void(const DependencyInfoEntry&)>& take);

/// Writes `depend_info.json`. What it replaces stays until `Commit`.
class DependencyInfoWriter {
public:
    /// \throws FileException; so do the other functions
    explicit DependencyInfoWriter(const std::string& path);

    /// `listed` and then `added` are what the unit is made of. `paths` is the same at all calls.
    void Add(std::string_view id, std::span<const std::string> arguments, const PathTable& paths,
             std::span<const FileNumber> listed, std::span<const FileNumber> added);

    /// To be called behind the last Add. Returns what the file will hold.
    ContentFingerprint Finish();

    /// The last call: the file is there.
    void Commit() { file_.Commit(); }

private:
    /// Appends the paths behind `opening`, joined by commas; every file has its text in `pathTexts_` by then.
    void AppendList(std::string_view opening, std::span<const FileNumber> files);

    FingerprintedFile file_;
    std::string text_; // of one entry; keeps its memory for the next
    bool isFirst_ = true;
    std::vector<std::string> pathTexts_; // as JSON, by file: each is written many times
};

} // namespace Orvanta
