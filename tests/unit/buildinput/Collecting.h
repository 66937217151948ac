#pragma once

#include "buildinput/InvocationCollector.h"
#include "compilers/CompilerRegistry.h"
#include "platform/StopFlag.h"
#include "support/TestFolder.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace Orvanta {

/// A collector with all that it works on. Settings are to be changed before the first invocation.
struct Collecting {
    RunSettings settings;
    CompilerRegistry registry;
    Log log;
    StopFlag stop;
    CompilerIdentifier identifier{settings, log, stop};
    InvocationCollector collector{settings, registry, identifier, log};
};

/// Puts a program into the folder. Its name tells its family, or it is never asked: what it holds does not matter. The
/// path has "/" alone, which every system takes and JSON texts can hold as it is.
inline std::string MakeProgram(const TestFolder& folder, std::string_view name, std::string_view text = "") {
    const std::filesystem::path path = folder.Write(name, text);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path.generic_string();
}

} // namespace Orvanta
