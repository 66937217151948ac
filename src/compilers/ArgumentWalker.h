#pragma once

#include "compilers/Compiler.h"
#include "compilers/InputKind.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// What a word of a command is depends on the words before it. The value of a flag may look like a file, and a file
// behind "--" like a flag; a flag may stand for itself, in a list, in pairs, or glued to another flag. All of this is
// decided here, once for all families and purposes, so that visitors see nothing but flags with their values, and
// files.
//
// Every command of a build is gone through to learn whether it compiles anything, and again for each unit. So the walk
// makes no records of its own: a list of all flags would be made a hundred thousand times, mostly to be thrown away. It
// is a template for the same reason: the calls of its visitor cost nothing.

namespace Orvanta {

/// How a flag came to the compiler.
enum class FlagRoute {
    Direct,   ///< as an argument
    Listed,   ///< in a list of arguments for the preprocessor: "-Wp,FLAG,VALUE"
    Paired,   ///< each word as the value of a flag that hands it on: "-Xclang FLAG -Xclang VALUE"
    Prefixed, ///< each word glued to a flag that hands it on: "/clang:FLAG /clang:VALUE"
};

/// One flag of a command line, with the value that belongs to it.
struct FlagUse {
    FlagMatch match;
    std::string_view value; ///< the first, where there are several
    std::size_t index = 0;  ///< of the argument that holds it
    FlagRoute route = FlagRoute::Direct;
    std::string_view handedOnBy;           ///< the flag that hands it on: "-Wp", "/clang:"; empty when direct
    std::array<std::string_view, 4> words; ///< as written
    std::size_t wordCount = 0;
};

/// Whether a flag stays in the preprocessing command of the source that argument `source` names. There the source
/// stands last, so that a language for the files behind it would be its own.
[[nodiscard]] inline bool StaysForPreprocessing(const FlagUse& use, std::size_t source) noexcept {
    return use.match.row->isKept && (use.match.row->kind != FlagKind::Language || use.index < source);
}

/// One input file of a command line.
struct InputFile {
    std::size_t index = 0;  ///< of the argument that names it
    std::size_t offset = 0; ///< where the name begins in that argument
    InputKind kind = InputKind::LinkInput;
    bool isStated = false;   ///< a flag, not the extension, gives the kind
    bool mayBeValue = false; ///< it follows a flag of which nobody knows whether it takes a value
};

/// Goes once through a command line (compiler first, response files expanded) and calls `visitor.Flag(const FlagUse&)`
/// and `visitor.Input(const InputFile&)` in the order of the arguments: the one place that knows which argument is a
/// flag, which is a flag's value and which is a file. Allocates nothing. Used by CommandLineReader and CommandNotes
/// only.
template <typename Visitor>
class ArgumentWalker {
public:
    /// `openValues` are the arguments that are the values of unknown flags before them.
    ArgumentWalker(const Compiler& model, std::span<const std::string> arguments, Visitor& visitor,
                   std::span<const std::size_t> openValues = {})
        : model_(model), arguments_(arguments), visitor_(visitor), openValues_(openValues) {}

    /// Visits every flag and input once. A walker walks once: it does not go back to the beginning.
    void Walk() {
        ofAll_ = model_.KindOfAllInputs(arguments_);
        while (next_ < arguments_.size()) {
            const std::size_t index = next_++;
            ReadArgument(index, arguments_[index]);
        }
    }

private:
    // The pieces of "-Wp,A,B".
    struct List {
        std::string_view rest; // "," and the pieces not yet taken

        [[nodiscard]] std::optional<std::string_view> Peek() const {
            if (rest.empty()) {
                return std::nullopt;
            }
            return rest.substr(1, rest.find(',', 1) - 1);
        }

        void Advance() { rest.remove_prefix(std::min(rest.find(',', 1), rest.size())); }
    };

    // The values of "-Xclang A -Xclang B", as long as they follow each other.
    struct Pairs {
        std::span<const std::string> arguments;
        std::size_t& next;
        std::string_view flag;

        [[nodiscard]] std::optional<std::string_view> Peek() const {
            if (next + 1 >= arguments.size() || arguments[next] != flag) {
                return std::nullopt;
            }
            return arguments[next + 1];
        }

        void Advance() { next += 2; }
    };

    // The words of "/clang:A /clang:B", as long as they follow each other.
    struct Prefixed {
        std::span<const std::string> arguments;
        std::size_t& next;
        std::string_view flag;

        [[nodiscard]] std::optional<std::string_view> Peek() const {
            if (next >= arguments.size() || !arguments[next].starts_with(flag)) {
                return std::nullopt;
            }
            return std::string_view(arguments[next]).substr(flag.size());
        }

        void Advance() { ++next; }
    };

    // Decides what the argument at `index` is and has it read with all arguments that belong to it; `next_` then stands
    // behind them. A lone "-" is the standard input, though every family has it as an introducer.
    void ReadArgument(std::size_t index, std::string_view argument) {
        std::string_view introducer;
        if (onlyInputs_ || argument == "-" || !model_.MatchLongestPrefixFlag(argument, introducer)) {
            ReadInput(index);
            return;
        }
        if (argument == "--") {
            onlyInputs_ = true;
            return;
        }
        FlagUse use;
        use.match = model_.Flags().Find(argument.substr(introducer.size()), introducer);
        use.index = index;
        if (use.match.row->kind == FlagKind::Preprocessor) {
            ReadHandedOn(index, argument, use.match);
        } else if (use.match.row->kind == FlagKind::SourceOfLanguage) {
            ReadSourceOfLanguage(index, argument, use.match);
        } else if (use.match.row->kind == FlagKind::LinkerPart) {
            next_ = arguments_.size();
            visitor_.Flag(use);
        } else if (!use.match.IsKnown() && introducer == "/" && IsSource(model_.KindOfInput(argument, std::nullopt))) {
            ReadInput(index); // an absolute path, no flag
        } else {
            ReadFlag(use, argument);
        }
    }

    // Takes the words of the flag's value along, as many as are left, and has the flag visited. A flag without a row
    // takes the word behind it only where the caller has said so; otherwise that word is reported as one that may be a
    // value.
    void ReadFlag(FlagUse& use, std::string_view argument) {
        AddWord(use, argument);
        use.value = use.match.gluedValue;
        const bool isOpen = !use.match.IsKnown() && IsValueOfUnknown(next_);
        behindUnknown_ = use.match.IsKnown() || isOpen ? 0 : next_;
        for (unsigned left = isOpen ? 1 : use.match.following; left > 0 && next_ < arguments_.size(); --left) {
            AddWord(use, arguments_[next_++]);
        }
        if (use.wordCount > 1) {
            use.value = use.words[1];
        }
        TakeNamedFlag(use);
        if (use.match.row->kind == FlagKind::Language) {
            SetStatedKind(use.value);
        }
        visitor_.Flag(use);
    }

    // The kind counts as stated when a flag gives it, and not when the name alone decides, whatever flags there are.
    // Behind "--" no word can be a value.
    void ReadInput(std::size_t index) {
        const std::string_view name = arguments_[index];
        const InputKind kind = KindOf(name);
        const bool mayBeValue = index == behindUnknown_ && !onlyInputs_;
        visitor_.Input(InputFile{index, 0, kind, (stated_ ? stated_ : ofAll_) == kind, mayBeValue});
    }

    // Names that no extension decides come first: no language flag makes a null device or a missing file a source.
    [[nodiscard]] InputKind KindOf(std::string_view name) const {
        if (name == "-" || name == "/dev/stdin") {
            return InputKind::StandardInput;
        }
        if (name == "/dev/null") {
            return InputKind::NullDevice;
        }
        // Those that are there have been expanded. "@VERSION@" is a word of a template, as build steps hand it on.
        if (name.size() > 1 && name.front() == '@' && name.back() != '@') {
            return InputKind::MissingResponseFile;
        }
        return stated_ ? *stated_ : model_.KindOfInput(name, ofAll_);
    }

    // An input whose flag names it: the file's name is what is glued to the flag, else the next argument. A flag that
    // stands last and names nothing is passed over.
    void ReadSourceOfLanguage(std::size_t index, std::string_view argument, const FlagMatch& match) {
        const InputKind kind = KindNamedBy(match.row->effect).value_or(InputKind::LinkInput);
        if (match.following == 0) {
            visitor_.Input(InputFile{index, argument.size() - match.gluedValue.size(), kind, true});
        } else if (next_ < arguments_.size()) {
            visitor_.Input(InputFile{next_++, 0, kind, true});
        }
    }

    // A word that is no language, such as the processor names that some compilers glue to "-x", changes nothing.
    void SetStatedKind(std::string_view word) {
        if (word == "none") {
            stated_.reset();
        } else if (const std::optional<InputKind> kind = InputKindByLanguageWord(word)) {
            stated_ = kind;
        }
    }

    // Reads what the flag at `index` hands on. Where each hands on one word, those that follow at once are read with
    // it: a value of what is handed on stands in the next of them ("-Xclang -load -Xclang PLUGIN").
    void ReadHandedOn(std::size_t index, std::string_view argument, const FlagMatch& match) {
        FlagUse use;
        use.index = index;
        if (match.following > 0) {
            Pairs pairs{arguments_, next_, argument};
            next_ = index;
            use.route = FlagRoute::Paired;
            use.handedOnBy = argument;
            ReadPieces(pairs, use);
            next_ = std::max(next_, index + 1); // the flag stands last and has no value
            return;
        }
        use.handedOnBy = argument.substr(0, argument.size() - match.gluedValue.size());
        if (match.row->value == FlagValue::Glued) {
            Prefixed words{arguments_, next_, use.handedOnBy};
            next_ = index;
            use.route = FlagRoute::Prefixed;
            ReadPieces(words, use);
        } else {
            List list{match.gluedValue};
            use.route = FlagRoute::Listed;
            ReadPieces(list, use);
        }
    }

    template <typename Pieces>
    // Visits each handed-on word as a flag of its own, in the form in which it came, so that it can be kept in that
    // form. A word that is no flag is visited too, without a row: it has to be handed on again.
    void ReadPieces(Pieces& pieces, const FlagUse& form) {
        while (const std::optional<std::string_view> piece = pieces.Peek()) {
            pieces.Advance();
            FlagUse use = form;
            AddWord(use, *piece);
            const Compiler& model = model_.ModelOfHandedOn();
            std::string_view introducer;
            if (model.MatchLongestPrefixFlag(*piece, introducer)) {
                use.match = FindPiece(piece->substr(introducer.size()), introducer, use.route);
                ReadValueOfPiece(pieces, use);
            }
            visitor_.Flag(use);
        }
    }

    // The preprocessor itself takes a file after "-MD" and "-MMD", which have none for the driver: a bare word after a
    // flag that is dropped goes with it.
    template <typename Pieces>
    void ReadValueOfPiece(Pieces& pieces, FlagUse& use) {
        use.value = use.match.gluedValue;
        const std::optional<std::string_view> following = pieces.Peek();
        if (!following) {
            return;
        }
        std::string_view introducer;
        const bool isBare = !model_.ModelOfHandedOn().MatchLongestPrefixFlag(*following, introducer);
        if (use.match.following > 0 || (use.match.row->kind == FlagKind::Drop && isBare)) {
            pieces.Advance();
            use.value = *following;
            AddWord(use, *following);
        }
        // Of a flag that hands its value on once more, only a value that writes a file matters.
        if (use.match.row->kind == FlagKind::Preprocessor && !isBare) {
            const FlagMatch inner = FindPiece(following->substr(introducer.size()), introducer, use.route);
            if (inner.row->file == FlagFile::Written) {
                use.match = inner;
            }
        }
    }

    // What a driver hands on word by word or in a list is read by another program, with more flags than the driver's.
    [[nodiscard]] FlagMatch FindPiece(std::string_view piece, std::string_view introducer, FlagRoute route) const {
        const Compiler& model = model_.ModelOfHandedOn();
        const FlagTable* const frontEnd = route == FlagRoute::Prefixed ? nullptr : model.FrontEndFlags();
        FlagMatch match;
        if (frontEnd != nullptr) {
            match = frontEnd->Find(piece, introducer);
        }
        return match.IsKnown() ? match : model.Flags().Find(piece, introducer);
    }

    // "--std c99" is "-std=c99": the flag that its value names has the facts.
    void TakeNamedFlag(FlagUse& use) const {
        const FlagEffect effect = use.match.row->effect;
        if (effect == FlagEffect::NamesStandard || effect == FlagEffect::NamesMachine) {
            const std::string name = std::string(effect == FlagEffect::NamesStandard ? "std=" : "m").append(use.value);
            use.match.row = model_.Flags().Find(name, "-").row;
        }
    }

    // A search from the front: there are a few such words in a command, mostly none.
    [[nodiscard]] bool IsValueOfUnknown(std::size_t index) const {
        return std::find(openValues_.begin(), openValues_.end(), index) != openValues_.end();
    }

    // There is room for the flag and three values, and no row has more.
    static void AddWord(FlagUse& use, std::string_view word) { use.words[use.wordCount++] = word; }

    const Compiler& model_;
    std::span<const std::string> arguments_;
    Visitor& visitor_;
    std::size_t next_ = 1;
    std::span<const std::size_t> openValues_;
    std::size_t behindUnknown_ = 0;   // the argument behind an unknown flag; 0: none
    bool onlyInputs_ = false;         // after "--"
    std::optional<InputKind> ofAll_;  // what a flag makes of every source
    std::optional<InputKind> stated_; // by the last language flag for the files after it
};

} // namespace Orvanta
