#pragma once

#include "compilers/CompilerInfo.h"
#include "platform/Environment.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace Orvanta {

class Compiler;
class CompilerRegistry;

/// A working directory as written, and where it is.
struct SharedDirectory {
    std::shared_ptr<const std::string> written;
    std::shared_ptr<const std::string> absolute;
};

/// What many units of a build share, each held once: folders, environments and compilers. One thread at a time.
class SharedRecords {
public:
    /// The registry outlives the object.
    explicit SharedRecords(const CompilerRegistry& registry) : registry_(registry) {}

    /// Relative directories are taken from here on from `directory`; until set, from the current directory.
    void SetBaseDirectory(std::string directory);

    /// The one record of the directory. Valid until the base directory is set.
    [[nodiscard]] const SharedDirectory& Of(const std::string& workingDirectory);

    /// The one record of an environment with this content. Valid until the next call: take a share of it.
    [[nodiscard]] const std::shared_ptr<const Environment>& Of(const Environment& environment);

    /// `compiler` itself, or the record of the same program in the mode that the command asks for, one for each path.
    [[nodiscard]] std::shared_ptr<const CompilerInfo> InDriverMode(const std::shared_ptr<const CompilerInfo>& compiler,
                                                                   const std::vector<std::string>& arguments);

    /// Held from the first use on: the registry hands out shares, which are not free. The type must be that of a
    /// family.
    [[nodiscard]] const Compiler& ModelOf(CompilerType type);

private:
    /// Tells environments apart by what they hold, not by where they lie.
    struct ContentLess {
        bool operator()(const std::shared_ptr<const Environment>& left,
                        const std::shared_ptr<const Environment>& right) const {
            return *left < *right;
        }
    };

    const CompilerRegistry& registry_;
    std::string baseDirectory_; // empty: not set
    std::map<CompilerType, std::shared_ptr<const Compiler>> models_;
    std::map<std::string, std::shared_ptr<const CompilerInfo>> inClMode_; // by path
    std::unordered_map<std::string, SharedDirectory> directories_;        // by the directory as written
    std::set<std::shared_ptr<const Environment>, ContentLess> environments_;
    const SharedDirectory* lastDirectory_ = nullptr; // of the invocation before: mostly the same again
    std::shared_ptr<const Environment> lastEnvironment_;
};

} // namespace Orvanta
