#include "bundled/ClangText.h"

#include "bundled/CodeScanner.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Orvanta {

namespace {

struct Replacement {
    std::string_view gccs;
    std::string_view clangs;
};

// Built-in templates of GCC in its own library, which asks for clang's when clang preprocesses it, and types that the
// C library defines where GCC doesn't know them. What differs in a name alone is a definition on clang's command line,
// which keeps columns; these need more.
constexpr Replacement Replacements[] = {
    {"= integer_sequence<_Tp, __integer_pack(_Num)...>;", "= __make_integer_seq<integer_sequence, _Tp, _Num>;"},
    {"integer_sequence<_Tp, __integer_pack(_Num)...>", "__make_integer_seq<integer_sequence, _Tp, _Num>"},
    {"using __type = _Index_tuple<__integer_pack(_Num)...>;",
     "template<typename, size_t... _Is> using _Made = _Index_tuple<_Is...>; "
     "using __type = __make_integer_seq<_Made, size_t, _Num>;"},
    {"typedef float _Float32;", ""},
    {"typedef double _Float64;", ""},
    {"typedef double _Float32x;", ""},
    {"typedef long double _Float64x;", ""},
    {"typedef __float128 _Float128;", ""},
};

// Nearly no line holds one of them, which these tell.
constexpr std::string_view CommonParts[] = {"__integer_pack(", " _Float"};

constexpr std::string_view AtomicQualifier = "_Atomic";

bool MayNeedRepair(std::string_view line) {
    return std::any_of(std::begin(CommonParts), std::end(CommonParts),
                       [line](std::string_view part) { return line.find(part) != std::string_view::npos; });
}

std::string Repaired(std::string_view line) {
    std::string text(line);
    for (const Replacement& row : Replacements) {
        if (const std::size_t at = text.find(row.gccs); at != std::string::npos) {
            text.replace(at, row.gccs.size(), row.clangs);
        }
    }
    return text;
}

// GCC's atomic operations take pointers to atomic types of C11, clang's are others then. Without the qualifier they
// mean the same to an analyzer of one thread. `_Atomic(int)` is a definition on the command line.
std::string WithoutAtomicQualifiers(std::string_view line) {
    std::string text(line);
    for (std::size_t at = text.find(AtomicQualifier); at != std::string::npos;
         at = text.find(AtomicQualifier, at + AtomicQualifier.size())) {
        const std::size_t end = at + AtomicQualifier.size();
        const bool isWord =
            (at == 0 || !IsWordCharacter(text[at - 1])) && (end == text.size() || !IsWordCharacter(text[end]));
        const std::size_t next = text.find_first_not_of(' ', end);
        if (isWord && (next == std::string::npos || text[next] != '(')) {
            // As many blanks: columns stay.
            text.replace(at, AtomicQualifier.size(), AtomicQualifier.size(), ' ');
        }
    }
    return text;
}

/// Whose a line is to clang.
enum class Owner {
    User,
    SystemMacro,  ///< a piece of a user's line
    SystemHeader, ///< no function in it is looked at for itself
};

/// Puts lines below each other, and markers where the owner changes: clang needs no other.
class ClangTextWriter {
public:
    void Add(const MarkedLine& line, const std::vector<MarkedFile>& files) {
        const bool isSystem = !line.file || files[*line.file].isSystem;
        const Owner owner = isSystem                                 ? Owner::SystemHeader
                            : line.origin == TextOrigin::SystemMacro ? Owner::SystemMacro
                                                                     : Owner::User;
        if (owner != owner_) {
            GoTo(owner);
        }
        const TextLine place{line.file.value_or(0), line.number};
        if (isSystem && MayNeedRepair(line.text)) {
            AddLine(Repaired(line.text), place);
        } else if (line.text.find(AtomicQualifier) != std::string_view::npos) {
            AddLine(WithoutAtomicQualifiers(line.text), place);
        } else {
            AddLine(line.text, place);
        }
    }

    [[nodiscard]] ClangText Finish(std::vector<MarkedFile> files) {
        return {std::move(text_), std::move(lines_), std::move(files)};
    }

private:
    // Flag 1 enters a file and flag 2 leaves it: clang looks for faults in the functions of the main file alone.
    void GoTo(Owner owner) {
        if (owner_ == Owner::SystemHeader) {
            AddLine("# 1 \"unit\" 2", {});
        }
        if (owner == Owner::SystemHeader) {
            AddLine("# 1 \"system\" 1 3", {});
        } else if (owner == Owner::SystemMacro) {
            AddLine("# 1 \"unit\" 3", {});
        } else if (owner_ == Owner::SystemMacro) {
            AddLine("# 1 \"unit\"", {});
        }
        owner_ = owner;
    }

    void AddLine(std::string_view line, const TextLine& place) {
        lines_.push_back({place.file, place.line, text_.size()});
        text_.append(line) += '\n';
    }

    std::string text_;
    std::vector<TextLine> lines_;
    Owner owner_ = Owner::User; // of the last line
};

} // namespace

TextLine ClangText::PlaceOf(std::size_t line) const {
    return line == 0 || line > lines.size() || lines[line - 1].line == 0 ? TextLine{0, 1} : lines[line - 1];
}

std::string_view ClangText::From(std::size_t line, std::size_t column) const {
    const std::size_t begin = line == 0 || line > lines.size() || column == 0 ? text.size() : lines[line - 1].begin;
    return std::string_view(text).substr(std::min(begin + column - 1, text.size()));
}

ClangText MakeClangText(std::string_view text, const std::string& sourcePath, const std::string& currentDirectory) {
    ClangTextWriter writer;
    MarkedText marked(text, sourcePath, currentDirectory);
    for (MarkedLine line; marked.ReadLine(line);) {
        writer.Add(line, marked.Files());
    }
    return writer.Finish(marked.Files());
}

} // namespace Orvanta
