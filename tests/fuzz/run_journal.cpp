#include "FuzzInput.h"
#include "history/RunJournal.h"
#include "platform/Files.h"
#include "platform/TemporaryFolder.h"
#include "platform/Text.h"

#include <string>
#include <vector>

using namespace Orvanta;

// Two bytes for a place, one for what comes to stand there (a line break cuts the file), and then the findings of
// units, a line each.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TemporaryFolder folder;
    static const std::string path = folder.Path() + "/journal";
    std::string_view rest = FuzzText(data, size);
    if (size < 3) {
        return 0;
    }
    const std::size_t place = std::size_t{data[0]} << 8U | data[1];
    const char byte = static_cast<char>(data[2]);
    rest.remove_prefix(3);

    const JournalInputs inputs = {FingerprintOf("build"), FingerprintOf("settings")};
    std::vector<std::string_view> findings;
    {
        RunJournal journal(path, inputs, RunJournal::Start::Anew);
        while (!rest.empty()) {
            findings.push_back(TakeLine(rest));
            const std::string_view text = findings.back();
            journal.Append(findings.size() - 1, {FingerprintOf(text), text.size() % 2 == 1, journal.Begin()}, text);
        }
    }
    std::string file = ReadWholeFile(path);
    const bool isDamaged = place < file.size() && (byte == '\n' || file[place] != byte);
    if (isDamaged && byte == '\n') {
        file.resize(place);
    } else if (isDamaged) {
        file[place] = byte;
    }
    OutputFile(path, OutputFile::Mode::Replace).Append(file);

    // What is told is true, and nothing is told behind what is not whole.
    RunJournal next(path, inputs, RunJournal::Start::GoOn);
    bool isCut = false;
    for (std::size_t unit = 0; unit < findings.size(); ++unit) {
        const std::optional<FinishedUnit> finished = next.Find(unit);
        Require(!(isCut && finished));
        isCut = isCut || !finished;
        if (finished) {
            Require(finished->text == FingerprintOf(findings[unit]));
            Require(finished->importsModules == (findings[unit].size() % 2 == 1));
            Require(next.Findings(unit) == findings[unit]);
        }
    }
    Require(isDamaged || !isCut);
    next.Remove();
    return 0;
}
