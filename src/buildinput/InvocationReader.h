#pragma once

#include "buildinput/ResponseFile.h"
#include "platform/Environment.h"
#include "platform/Log.h"
#include "settings/RunSettings.h"

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Orvanta {

class Compiler;
struct CompilerInfo;
struct InvocationOutline;

/// Reads commands whose compiler is known: puts in place what stands elsewhere, and tells what they do. Looks at the
/// disk where only that can tell. One thread at a time.
class InvocationReader {
public:
    /// Both outlive the object. `log` takes what differs from how a compiler reads its files.
    InvocationReader(const RunSettings& settings, Log& log) : settings_(settings), log_(log) {}

    /// From now on each response file that is read is told to `receiver`, as ResponseFileReading says.
    void TellFiles(std::function<void(const std::string& path, const std::vector<std::string>& words)> receiver) {
        tellFile_ = std::move(receiver);
    }

    /// Adds what variables, response files and option files say to the arguments, in the order in which the compiler
    /// reads them.
    void Complete(std::vector<std::string>& arguments, const Compiler& model, const CompilerInfo& compiler,
                  const std::string& directory, const std::vector<const Environment*>& layers);

    /// What the command does, the values of unknown flags told from its inputs.
    [[nodiscard]] InvocationOutline Outline(const Compiler& model, const std::vector<std::string>& arguments,
                                            const std::string& directory) const;

private:
    /// The result refers to this object: differences are told in its log, once for each file.
    [[nodiscard]] ResponseFileReading ReadingFor(const CompilerInfo& compiler);
    /// Places in `arguments`, in rising order. Looks at the disk, for the words in question only.
    [[nodiscard]] std::vector<std::size_t> ValuesOfUnknown(const InvocationOutline& outline,
                                                           const std::vector<std::string>& arguments,
                                                           const std::string& directory) const;

    const RunSettings& settings_;
    Log& log_;
    std::set<std::string> toldResponseFiles_;
    std::function<void(const std::string&, const std::vector<std::string>&)> tellFile_; // mostly empty
};

} // namespace Orvanta
