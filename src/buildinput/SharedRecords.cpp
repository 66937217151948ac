#include "buildinput/SharedRecords.h"

#include "compilers/Compiler.h"
#include "compilers/CompilerRegistry.h"
#include "platform/Paths.h"
#include "platform/Process.h"

#include <algorithm>
#include <utility>

namespace Orvanta {

void SharedRecords::SetBaseDirectory(std::string directory) {
    // What was made absolute by another base does not hold any more.
    baseDirectory_ = std::move(directory);
    lastDirectory_ = nullptr;
    directories_.clear();
}

/// A clang that is told to read its command as cl does is a clang-cl.
std::shared_ptr<const CompilerInfo> SharedRecords::InDriverMode(const std::shared_ptr<const CompilerInfo>& compiler,
                                                                const std::vector<std::string>& arguments) {
    if (compiler->type != CompilerType::Clang ||
        std::find(arguments.begin(), arguments.end(), "--driver-mode=cl") == arguments.end()) {
        return compiler;
    }
    std::shared_ptr<const CompilerInfo>& inMode = inClMode_[compiler->path];
    if (inMode == nullptr) {
        // A record of its own: other commands use the same program without the flag.
        auto copy = std::make_shared<CompilerInfo>(*compiler);
        copy->type = CompilerType::ClangCl;
        copy->rule += ", and --driver-mode=cl stands in its command";
        inMode = std::move(copy);
    }
    return inMode;
}

const Compiler& SharedRecords::ModelOf(CompilerType type) {
    const auto [place, isNew] = models_.try_emplace(type);
    if (isNew) {
        place->second = registry_.Get(type);
    }
    return *place->second;
}

const SharedDirectory& SharedRecords::Of(const std::string& workingDirectory) {
    if (lastDirectory_ != nullptr && *lastDirectory_->written == workingDirectory) {
        return *lastDirectory_;
    }
    SharedDirectory& directory = directories_[workingDirectory];
    if (directory.written == nullptr) {
        // Asked of the system once for each directory as written, not once for each command.
        const std::string base = baseDirectory_.empty() ? CurrentDirectory() : baseDirectory_;
        directory.written = std::make_shared<const std::string>(workingDirectory);
        directory.absolute = std::make_shared<const std::string>(NormalizePath(JoinPath(base, workingDirectory)));
    }
    lastDirectory_ = &directory;
    return directory;
}

const std::shared_ptr<const Environment>& SharedRecords::Of(const Environment& environment) {
    // A comparison with the one before is cheaper than the search in the set, which compares with several.
    if (lastEnvironment_ == nullptr || *lastEnvironment_ != environment) {
        lastEnvironment_ = *environments_.insert(std::make_shared<const Environment>(environment)).first;
    }
    return lastEnvironment_;
}

} // namespace Orvanta
