#include "buildinput/Launchers.h"

#include "buildinput/ProgramName.h"
#include "platform/Paths.h"
#include "platform/Table.h"
#include "platform/Text.h"

#include <algorithm>
#include <cstddef>

namespace Orvanta {

namespace {

constexpr std::string_view Ccache = "ccache";

// How the words between a launcher and the command behind it are read.
enum class Form {
    Options, // options, then as many words as `positional` says
    Bare,    // the command follows at once; where an option follows, the launcher stands for "cc"
    CMake,   // "cmake -E TOOL ... COMMAND"
    Libtool, // "libtool OPTIONS --mode=compile COMMAND"
    Shell,   // "sh libtool ..."
};

struct LauncherRow {
    std::string_view name;
    Form form = Form::Options;
    std::string_view valueOptions = {}; // whose value is the next word, with blanks between them and around
    std::size_t positional = 0;
    bool mayHide = false; // see MayHideCompilation
};

// What is no launcher by its name, but by what follows it, has a form of its own.
// clang-format off
constexpr LauncherRow Launchers[] = {
    {"distcc", Form::Bare, {}, 0, true},
    {"icecc", Form::Bare, {}, 0, true},
    {"sccache", Form::Options, {}, 0, true},
    {"buildcache", Form::Options, {}, 0, true},
    {"gomacc", Form::Options, {}, 0, true},
    {"env", Form::Options, " -u --unset -C --chdir "},
    {"nice", Form::Options, " -n --adjustment "},
    {"ionice", Form::Options, " -c --class -n --classdata "},
    {"time", Form::Options, " -o --output -f --format "},
    // A word that is no option, the time that the command may take, stands before it.
    {"timeout", Form::Options, " -s --signal -k --kill-after ", 1},
    {"nohup"},
    {"stdbuf", Form::Options, " -i --input -o --output -e --error "},
    // Here it is the processors.
    {"taskset", Form::Options, {}, 1},
    {"xcrun", Form::Options, " -sdk --sdk -toolchain --toolchain "},
    {"cmake", Form::CMake},
    {"libtool", Form::Libtool},
    // Only in front of libtool, which is a script: builds name its shell where it can't be started by itself.
    {"sh", Form::Shell},
    {"bash", Form::Shell},
};
// clang-format on

// For the names that only the user knows.
constexpr LauncherRow Further = {"", Form::Options, {}, 0, true};

const LauncherRow* RowOf(std::string_view program, std::span<const std::string> further) {
    // The name once for all rows: this is asked of every command of a build.
    if (const LauncherRow* const row =
            FindRow(Launchers, &LauncherRow::name, ProgramNameOf(program), EqualsIgnoringCase)) {
        return row;
    }
    return IsProgramAmong(program, further) ? &Further : nullptr;
}

// Goes along the words of one command.
class LauncherReader {
public:
    LauncherReader(std::vector<std::string>& words, std::span<const std::string> further)
        : words_(words), further_(further) {}

    // Takes off one launcher after another until a word is none. Nothing is removed when they serve another purpose, so
    // that the command can still be shown as it was.
    LauncherEffects Read() {
        bool isCached = false;
        while (next_ < words_.size() && effects_.otherPurpose.empty()) {
            if (FileNameOf(words_[next_]) == Ccache) {
                isCached = true;
                ++next_;
                // Settings that ccache takes in front of the compiler.
                while (next_ < words_.size() && IsAssignment(words_[next_])) {
                    ++next_;
                }
            } else if (!Skip()) {
                break;
            }
        }
        // Room for "ccache", which goes into the place of the last word removed.
        const std::size_t first = isCached && next_ > 0 ? next_ - 1 : next_;
        effects_.any = first > 0 && effects_.otherPurpose.empty();
        if (effects_.any) {
            if (isCached) {
                words_[first] = Ccache;
            }
            words_.erase(words_.begin(), words_.begin() + static_cast<std::ptrdiff_t>(first));
        }
        return std::move(effects_);
    }

private:
    [[nodiscard]] bool Has(std::size_t index) const { return index < words_.size(); }

    // Passes over one launcher; false when the next word is none.
    bool Skip() {
        const LauncherRow* const row = RowOf(words_[next_], further_);
        // A launcher that stands alone starts nothing: it is the command itself.
        if (row == nullptr || !Has(next_ + 1)) {
            return false;
        }
        switch (row->form) {
        case Form::Options:
            ++next_;
            SkipOptions(row->valueOptions);
            next_ += row->positional;
            return true;
        case Form::Bare:
            if (words_[next_ + 1].starts_with('-')) {
                words_[next_] = "cc";
                return false;
            }
            ++next_;
            return true;
        case Form::CMake:
            return SkipCMake();
        case Form::Libtool:
            return SkipLibtool();
        case Form::Shell:
            // Any other script may do anything.
            if (!IsProgramNamed(words_[next_ + 1], "libtool")) {
                return false;
            }
            ++next_;
            return SkipLibtool();
        }
        return false;
    }

    // Ends behind "--", or at the first word that is neither an option, nor the value of one, nor a variable to be set.
    void SkipOptions(std::string_view valueOptions) {
        for (; Has(next_); ++next_) {
            const std::string_view word = words_[next_];
            if (word == "--") {
                ++next_;
                return;
            }
            if (IsAssignment(word) && !word.starts_with('-')) {
                const std::size_t equals = word.find('=');
                effects_.variables[std::string(word.substr(0, equals))] = word.substr(equals + 1);
            } else if (!word.starts_with('-')) {
                return;
            } else if (word.starts_with("--chdir=")) {
                effects_.directory = word.substr(word.find('=') + 1);
            } else if (valueOptions.find(' ' + std::string(word) + ' ') != std::string_view::npos && Has(next_ + 1)) {
                ++next_;
                if (word == "-C" || word == "--chdir") {
                    effects_.directory = words_[next_];
                }
            }
        }
    }

    // Of the tools of "cmake -E" only those that start the command behind them are passed over.
    bool SkipCMake() {
        if (words_[next_ + 1] != "-E" || !Has(next_ + 2)) {
            return false;
        }
        const std::string_view tool = words_[next_ + 2];
        const std::size_t rest = next_ + 3;
        if (tool == "env" || tool == "time") {
            next_ = rest;
            SkipOptions({});
        } else if (tool == "chdir" && Has(rest)) {
            effects_.directory = words_[rest];
            next_ = rest + 1;
        } else if (tool.starts_with("__run_co_compile")) {
            // What stands before the dashes tells it which other tools to run on the source.
            const auto dashes = std::find(words_.begin() + static_cast<std::ptrdiff_t>(rest), words_.end(), "--");
            next_ = static_cast<std::size_t>(dashes - words_.begin()) + (dashes == words_.end() ? 0 : 1);
        } else {
            effects_.otherPurpose = "a tool of CMake";
        }
        return true;
    }

    // Only its mode for compiling has a compiler's command behind it that makes objects.
    bool SkipLibtool() {
        bool compiles = false;
        std::size_t index = next_ + 1;
        // Two of its options may have their value in the next word; the others have none.
        for (; Has(index) && words_[index].starts_with('-'); ++index) {
            if (words_[index] == "--mode" || words_[index] == "--tag") {
                compiles = compiles || (Has(index + 1) && words_[index + 1] == "compile");
                ++index;
            } else if (words_[index] == "--mode=compile") {
                compiles = true;
            }
        }
        if (!compiles) {
            effects_.otherPurpose = "another step of libtool than to compile";
            return true;
        }
        next_ = index;
        RemoveFlagsOfLibtool();
        return true;
    }

    // What stands in the compiler's command, but is meant for libtool.
    void RemoveFlagsOfLibtool() {
        constexpr std::string_view Own[] = {"-prefer-pic", "-prefer-non-pic", "-no-suppress"};
        const auto begin = words_.begin() + static_cast<std::ptrdiff_t>(std::min(next_, words_.size()));
        words_.erase(std::remove_if(begin, words_.end(),
                                    [&](const std::string& word) {
                                        return word == "-Xcompiler" ||
                                               std::find(std::begin(Own), std::end(Own), word) != std::end(Own);
                                    }),
                     words_.end());
        for (std::size_t index = next_; index < words_.size(); ++index) {
            // Libtool hands on what follows the comma.
            if (words_[index].starts_with("-Wc,")) {
                words_[index].erase(0, 4);
            }
        }
    }

    std::vector<std::string>& words_;
    std::span<const std::string> further_;
    std::size_t next_ = 0;
    LauncherEffects effects_;
};

} // namespace

bool IsAssignment(std::string_view word) noexcept {
    const std::size_t equals = word.find('=');
    return equals != 0 && equals != std::string_view::npos &&
           std::all_of(word.begin(), word.begin() + static_cast<std::ptrdiff_t>(equals), [](char character) {
               return IsDigit(character) || character == '_' || (character >= 'a' && character <= 'z') ||
                      (character >= 'A' && character <= 'Z');
           });
}

LauncherEffects RemoveLaunchers(std::vector<std::string>& arguments, std::span<const std::string> further) {
    return LauncherReader(arguments, further).Read();
}

bool MayHideCompilation(std::string_view program, std::span<const std::string> further) {
    const LauncherRow* const row = RowOf(program, further);
    return IsProgramNamed(program, Ccache) || (row != nullptr && row->mayHide);
}

} // namespace Orvanta
