#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A response file has two readings: by the rules that the driver has for all families, and by those of the unit's own
// compiler. They differ only in rare words, such as those with quotes in the middle. The driver's rules hold unless the
// user wants the compiler's; where it makes a difference, the user is told of both readings.

namespace Orvanta {

/// How compilers themselves split the text of a response file.
enum class NativeQuoting {
    Gnu,     ///< quotes anywhere in a word; a backslash takes the meaning from any character, in quotes too
    Windows, ///< as a command line of that system; the ends of lines are blanks
};

/// What is asked of an expansion beside the rules that hold for all.
struct ResponseFileReading {
    /// Is told once for each file that the compiler would have read as other words: the file, the first word in which
    /// they differ, and what the compiler makes of it.
    using DifferenceReceiver =
        std::function<void(const std::string& path, const std::string& word, const std::string& native)>;

    std::optional<NativeQuoting> compilers = {}; ///< how the unit's compiler splits; absent: not known
    bool isNative = false;                       ///< whether its rules hold in place of the driver's
    DifferenceReceiver tellDifference = {};      ///< may be empty
    /// Is told of each file that is read, with its words before nested files are put in; may be empty.
    std::function<void(const std::string& path, const std::vector<std::string>& words)> tellFile = {};
    std::size_t mostWords = 16'000'000; ///< that the files of one command may hold together
    std::size_t mostBytes = std::size_t{256} << 20U;
};

/// Splits a text as compilers do. A quote without its partner reaches to the end.
[[nodiscard]] std::vector<std::string> SplitAsCompiler(std::string_view text, NativeQuoting quoting);

/// Splits the text of a response file into its tokens. `path` is for messages only.
/// \throws ZelmException "Unmatched quote in response file ..."
[[nodiscard]] std::vector<std::string> SplitResponseFile(std::string_view text, const std::string& path);

/// The arguments that a response file stands for, with the response files that it names expanded in their turn.
/// Relative paths, nested ones too, are taken from `directory`. Threads don't disturb each other.
/// \throws ZelmException, also when the files of one command hold more than any command can be
[[nodiscard]] std::vector<std::string> ExpandResponseFile(const std::string& path, const std::string& directory,
                                                          const ResponseFileReading& reading = {});

/// Replaces every argument that is "@" and the name of a file by what the file stands for; others, such as "a@b" or "@"
/// and the name of a folder or of nothing, stay.
/// \throws ZelmException; the arguments are then as they were
void ExpandResponseFiles(std::vector<std::string>& arguments, const std::string& directory,
                         const ResponseFileReading& reading = {});

} // namespace Orvanta
