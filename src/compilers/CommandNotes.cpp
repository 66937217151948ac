#include "compilers/CommandNotes.h"

#include "compilers/ArgumentWalker.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Orvanta {

namespace {

// A kind's role in a word or two.
std::string_view MeaningOf(FlagKind kind) {
    switch (kind) {
    case FlagKind::Output:
        return "output";
    case FlagKind::UserInclude:
        return "include folder";
    case FlagKind::SystemInclude:
        return "system include folder";
    case FlagKind::Define:
        return "macro";
    case FlagKind::Undefine:
        return "macro taken back";
    case FlagKind::NoCompilation:
        return "no compilation";
    case FlagKind::Language:
        return "language";
    case FlagKind::ForcedInclude:
        return "forced include";
    case FlagKind::Target32:
    case FlagKind::Target64:
        return "target";
    case FlagKind::LinkerPart:
        return "the linker's part";
    case FlagKind::Drop:
    case FlagKind::DropWithValue:
        return "not for preprocessing";
    case FlagKind::Keep:
    case FlagKind::KeepWithValue:
    case FlagKind::SourceOfLanguage:
    case FlagKind::Preprocessor:
    case FlagKind::MainFileName:
        return "flag";
    case FlagKind::StandardAnsi:
    case FlagKind::StandardC90:
    case FlagKind::StandardC99:
    case FlagKind::StandardC11:
    case FlagKind::StandardC17:
    case FlagKind::StandardC2x:
    case FlagKind::StandardCpp98:
    case FlagKind::StandardCpp03:
    case FlagKind::StandardCpp11:
    case FlagKind::StandardCpp14:
    case FlagKind::StandardCpp17:
    case FlagKind::StandardCpp20:
        return "language standard";
    }
    return "flag";
}

bool NamesStep(FlagEffect effect) {
    constexpr FlagEffect Steps[] = {FlagEffect::Compiles, FlagEffect::StopsBeforeLinking, FlagEffect::PreprocessesOnly,
                                    FlagEffect::ListsDependencies, FlagEffect::MakesPrecompiledHeader};
    return std::find(std::begin(Steps), std::end(Steps), effect) != std::end(Steps);
}

// Where the kind says less than another column.
std::string_view MeaningOf(const FlagMatch& match) {
    const FlagRow& row = *match.row;
    if (!match.IsKnown()) {
        return "unknown flag";
    }
    if (row.effect == FlagEffect::NamesPrecompiled) {
        return "precompiled header";
    }
    if (NamesStep(row.effect)) {
        return "step of the compilation";
    }
    if (row.effect == FlagEffect::UnknownStandard) {
        return "language standard, of which the compiler is asked";
    }
    switch (row.file) {
    case FlagFile::Written:
        return "makes the compiler write a file";
    case FlagFile::AboutWritten:
        return "of a file that the compiler writes";
    case FlagFile::Read:
    case FlagFile::ReadAsSpecs:
        return row.kind == FlagKind::Keep || row.kind == FlagKind::KeepWithValue ? "file that is read"
                                                                                 : MeaningOf(row.kind);
    case FlagFile::None:
        break;
    }
    return MeaningOf(row.kind);
}

bool SaysWhatIsWritten(const FlagRow& row) {
    return row.kind == FlagKind::Output || row.kind == FlagKind::LinkerPart || row.file == FlagFile::Written ||
           row.file == FlagFile::AboutWritten || NamesStep(row.effect);
}

class NotingVisitor {
public:
    NotingVisitor(std::vector<WordNote>& notes, std::size_t arguments, std::size_t source)
        : notes_(notes), arguments_(arguments), source_(source) {}

    // The words of a run of handed-on flags share the index of its first argument, so that they are counted here.
    void Flag(const FlagUse& use) {
        if (use.route == FlagRoute::Direct || use.index != runIndex_) {
            runIndex_ = use.index;
            runWords_ = 0;
        }
        const std::size_t argumentsOfWord = use.route == FlagRoute::Paired ? 2 : 1;
        WordNote& note = notes_.emplace_back();
        note.first = use.index + (use.route == FlagRoute::Listed ? 0 : runWords_ * argumentsOfWord);
        note.count = use.route == FlagRoute::Listed ? 1 : use.wordCount * argumentsOfWord;
        note.words.assign(use.words.begin(), use.words.begin() + static_cast<std::ptrdiff_t>(use.wordCount));
        note.handedOnBy = use.handedOnBy;
        note.meaning = MeaningOf(use.match);
        note.isKnown = use.match.IsKnown();
        if (use.match.row->kind == FlagKind::LinkerPart) {
            note.count = arguments_ - use.index;
        }
        // Where the unit works is decided already.
        note.isForOutput = SaysWhatIsWritten(*use.match.row) || use.match.row->effect == FlagEffect::NamesDirectory;
        note.fate = StaysForPreprocessing(use, source_) ? WordFate::Kept : WordFate::Dropped;
        runWords_ += use.wordCount;
    }

    void Input(const InputFile& input) {
        WordNote& note = notes_.emplace_back();
        note.first = input.index;
        if (input.kind == InputKind::MissingResponseFile) {
            note.meaning = "response file"; // not expanded: the compiler reads it
            return;
        }
        note.fate = input.index == source_ ? WordFate::Source : WordFate::OtherInput;
        note.meaning = IsSource(input.kind) ? "source" : "no source";
    }

private:
    std::vector<WordNote>& notes_;
    std::size_t arguments_; // how many there are
    std::size_t source_;
    std::size_t runIndex_ = 0;
    std::size_t runWords_ = 0;
};

bool IsListed(const WordNote& note) {
    return note.count == 1 && !note.handedOnBy.empty() && note.handedOnBy.back() != ':';
}

} // namespace

std::vector<WordNote> NoteWords(const Compiler& model, std::span<const std::string> arguments,
                                const SourceArgument& source) {
    std::vector<WordNote> notes;
    NotingVisitor visitor(notes, arguments.size(), source.index);
    const std::span<const std::size_t> openValues = source.openValues != nullptr
                                                        ? std::span<const std::size_t>(*source.openValues)
                                                        : std::span<const std::size_t>();
    ArgumentWalker<NotingVisitor>(model, arguments, visitor, openValues).Walk();
    for (WordNote& note : notes) {
        if (note.words.empty()) { // an input, or the linker's part
            const std::span<const std::string> words = arguments.subspan(note.first, note.count);
            note.words.assign(words.begin(), words.end());
        }
    }
    return notes;
}

std::vector<std::string> WithoutParts(std::span<const std::string> arguments, std::span<const WordNote> notes,
                                      const std::vector<bool>& left) {
    // What no note covers stays: "--", and flags that hand nothing on.
    std::vector<bool> isLeft(arguments.size());
    std::vector<std::string> lists(arguments.size()); // a list without the parts that are left out
    for (std::size_t place = 0; place < notes.size(); ++place) {
        const WordNote& note = notes[place];
        const bool goes = left[place] || note.isForOutput || note.fate == WordFate::OtherInput;
        if (IsListed(note)) {
            std::string& list = lists[note.first];
            isLeft[note.first] = true; // it is made anew
            for (const std::string& word : note.words) {
                list += goes ? "" : "," + word;
            }
            continue;
        }
        for (std::size_t word = 0; word < note.count && goes; ++word) {
            isLeft[note.first + word] = true;
        }
    }
    for (const WordNote& note : notes) {
        if (IsListed(note) && !lists[note.first].empty() && lists[note.first].front() == ',') {
            lists[note.first].insert(0, note.handedOnBy);
        }
    }
    std::vector<std::string> words;
    for (std::size_t place = 1; place < arguments.size(); ++place) {
        if (!lists[place].empty()) {
            words.push_back(std::move(lists[place]));
        } else if (!isLeft[place]) {
            words.push_back(arguments[place]);
        }
    }
    return words;
}

} // namespace Orvanta
