#include "FuzzInput.h"
#include "history/FindingsStore.h"
#include "platform/Files.h"
#include "platform/TemporaryFolder.h"
#include "platform/Text.h"

#include <string>
#include <vector>

using namespace Orvanta;

namespace {

struct KeptText {
    std::string_view text;
    FindingsRange range;
};

/// Puts one byte in the place of another, or cuts the file there.
void Damage(std::string& file, std::size_t place, char byte) {
    if (place < file.size() && byte == '\n') {
        file.resize(place);
    } else if (place < file.size()) {
        file[place] = byte;
    }
}

void RequireTrueAnswers(const FindingsStore& store, std::string_view file, const std::vector<KeptText>& kept) {
    for (const auto& [text, range] : kept) {
        const bool isSame = range.begin + range.size <= file.size() && file.substr(range.begin, range.size) == text;
        Require(store.IsIntact(range) == isSame);
        Require(!isSame || store.Read(range) == text);
    }
}

} // namespace

// Two bytes for a place, one for what comes to stand there, and then the findings of units, a line each.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TemporaryFolder folder;
    std::string_view rest = FuzzText(data, size);
    if (size < 3) {
        return 0;
    }
    const std::size_t place = std::size_t{data[0]} << 8U | data[1];
    rest.remove_prefix(3);

    FindingsStore store(folder.Path());
    std::vector<KeptText> kept;
    while (!rest.empty()) {
        const std::string_view text = TakeLine(rest);
        kept.push_back({text, store.Append(text)});
    }
    if (store.Number() == 0) {
        return 0;
    }
    std::string file = ReadWholeFile(store.Path());
    Damage(file, place, static_cast<char>(data[2]));
    OutputFile(store.Path(), OutputFile::Mode::Replace).Append(file);

    // The next run: what is damaged is told from what is not, and new findings harm no old ones.
    FindingsStore next(folder.Path());
    Require(next.Continue(store.Number(), store.End()) == file.size());
    RequireTrueAnswers(next, file, kept);
    const std::string_view added = "added";
    kept.push_back({added, next.Append(added)});
    RequireTrueAnswers(next, file + std::string(added), kept);
    RemoveFile(next.Path());
    return 0;
}
