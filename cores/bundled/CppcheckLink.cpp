#include "bundled/CppcheckLink.h"

#include "bundled/CppcheckCommand.h"
#include "bundled/CppcheckRun.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <utility>

namespace Orvanta {

namespace {

constexpr std::string_view EndTag = "</analyzerinfo>";

// Cppcheck builds a tree of a whole part, many times its size.
constexpr std::size_t PartSize = std::size_t{4} << 20;

// Each part is to Cppcheck a source of its own, with what was found in it beside it.
std::string TextName(std::size_t part) {
    return std::to_string(part) + ".c";
}

std::string InformationName(std::size_t part) {
    return std::to_string(part) + ".a1";
}

void WriteFile(const std::string& path, std::string_view text) {
    OutputFile(path, OutputFile::Mode::Replace).Append(text);
}

} // namespace

CppcheckLink::CppcheckLink(std::string folder) : folder_(std::move(folder)), program_(FindCppcheck()) {
    WriteFile(JoinPath(folder_, TextName(0)), "");
    // Only for the frame that it leaves: an empty file has no findings.
    static_cast<void>(RunCppcheckCommand(CppcheckLinkCommand(program_, {TextName(0)}), folder_));
    frame_ = ReadWholeFile(JoinPath(folder_, InformationName(0)));
    // The facts go in front of the end tag, where Cppcheck itself would have put them.
    const std::size_t end = frame_.rfind(EndTag);
    if (end == std::string::npos) {
        throw ZelmException("Cppcheck's build folder has a form that is not understood");
    }
    frame_.resize(end);
}

void CppcheckLink::Add(std::span<const FactGroup> facts) {
    for (const FactGroup& group : facts) {
        FactGroup unknown{group.check, group.kind, {}};
        for (const std::string& fact : group.facts) {
            // A header's facts come with every unit that includes it: by fingerprint, so that their texts need not be
            // kept.
            if (known_.insert(FingerprintBuilder().Add(group.check).Add(group.kind).Add(fact).Value()).second) {
                unknown.facts.push_back(fact);
            }
        }
        if (!unknown.facts.empty()) {
            AppendFactGroup(part_, unknown);
        }
    }
    // Between groups, never within one: each part is whole by itself.
    if (part_.size() >= PartSize) {
        WritePart();
    }
}

void CppcheckLink::WritePart() {
    const std::string information = frame_ + part_ + std::string(EndTag) + "\n";
    // Empty, like the one that the frame is of: it has the hash that the frame tells.
    WriteFile(JoinPath(folder_, TextName(partSizes_.size())), "");
    WriteFile(JoinPath(folder_, InformationName(partSizes_.size())), information);
    partSizes_.push_back(information.size());
    part_.clear();
}

CppcheckOutput CppcheckLink::Run() {
    // The last part, which may be empty: there is one in any case.
    WritePart();
    // Its memory is given back before Cppcheck needs its own.
    known_ = {};
    Arguments textNames;
    for (std::size_t part = 0; part < partSizes_.size(); ++part) {
        textNames.push_back(TextName(part));
    }
    CppcheckOutput output = RunCppcheckCommand(CppcheckLinkCommand(program_, textNames), folder_);
    // What it does not believe, it writes anew.
    for (std::size_t part = 0; part < partSizes_.size(); ++part) {
        if (FileSize(JoinPath(folder_, InformationName(part))) != partSizes_[part]) {
            throw ZelmException("this version of Cppcheck does not take over what it is told of analyzed units");
        }
    }
    return output;
}

} // namespace Orvanta
