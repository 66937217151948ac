#pragma once

#include "bundled/CodeScanner.h"
#include "platform/LineMarker.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// A file that the text of a unit comes from.
struct MarkedFile {
    std::string path;      ///< absolute and normalised
    bool isSystem = false; ///< entered as a system header, or standing in a system folder
    bool isNamed = false;  ///< a line marker names it
};

/// Who wrote the text of a line.
enum class TextOrigin {
    File,        ///< whoever wrote the file that it stands in
    SystemMacro, ///< a macro of a system header, used in that file
};

/// One line of a unit's preprocessed text.
struct MarkedLine {
    std::string_view text;           ///< without its line end
    std::optional<std::size_t> file; ///< index into `Files()`; none for text that no file holds
    std::uint32_t number = 0;        ///< the line's number in that file
    TextOrigin origin = TextOrigin::File;
};

/// Reads preprocessed text line by line and follows its line markers. The text must outlive the object.
class MarkedText {
public:
    /// Text before the first marker belongs to the unit's source. `sourcePath` is absolute and normalised; relative
    /// names are taken from `currentDirectory` or, where there is no such file, from the folder of the file that names
    /// them.
    MarkedText(std::string_view text, const std::string& sourcePath, std::string currentDirectory);

    /// The next line that is no marker; false at the end of the text.
    [[nodiscard]] bool ReadLine(MarkedLine& line);

    /// The files met so far, in order of first appearance, the unit's source always first.
    [[nodiscard]] const std::vector<MarkedFile>& Files() const noexcept { return files_; }

private:
    // The lines that follow are those that the marker tells.
    void Follow(const LineMarker& marker);

    // The absolute path of a file by its name in a marker.
    [[nodiscard]] std::string FindPath(const std::string& name) const;

    // The index of the marker's file; none for a name such as "<built-in>".
    std::optional<std::size_t> FindOrAddFile(const LineMarker& marker);

    std::string_view rest_;
    std::string currentDirectory_;
    std::vector<MarkedFile> files_;
    std::map<std::string, std::optional<std::size_t>, std::less<>> indexByName_; // name as quoted in markers
    std::map<std::string, std::size_t, std::less<>> indexByPath_;
    std::optional<std::size_t> currentFile_ = 0;
    std::uint32_t nextNumber_ = 1;
    TextOrigin origin_ = TextOrigin::File;
    CodeScanner scanner_; // reads those lines that may open or close a raw string
};

/// The files that the markers of a unit's text name, system headers included, in order of first appearance.
[[nodiscard]] std::vector<std::string> ListDependencies(std::string_view text, const std::string& sourcePath,
                                                        const std::string& currentDirectory);

} // namespace Orvanta
