#include "buildinput/trace/TraceDirectory.h"

#include "platform/Files.h"
#include "platform/Paths.h"

namespace Orvanta {

namespace {

// Those of the system on which the build was traced, whatever the driver runs on.
constexpr PathRules Rules = PathRules::Posix;

/// Whether a component is "..": in "a..b" there is none.
bool GoesUp(std::string_view path) {
    for (std::size_t at = path.find(".."); at != std::string_view::npos; at = path.find("..", at + 1)) {
        const bool begins = at == 0 || path[at - 1] == '/';
        const bool ends = at + 2 == path.size() || path[at + 2] == '/';
        if (begins && ends) {
            return true;
        }
    }
    return false;
}

} // namespace

std::string JoinTracePath(std::string_view base, std::string_view path) {
    if (base.empty() || IsAbsolutePath(path, Rules)) {
        return std::string(path);
    }
    return path.empty() || path == "." ? std::string(base) : JoinPath(base, path, Rules);
}

std::string ResolveTracePath(const std::string& path) {
    if (GoesUp(path)) {
        // Only here are links followed. All other paths stay as the build has spelt them, which is how people know
        // them.
        std::string resolved = ResolveLinks(path);
        if (resolved != path) {
            return resolved;
        }
    }
    return NormalizePath(path, Rules);
}

void TraceDirectory::Change(std::string_view to) {
    if (IsAbsolutePath(to, Rules)) {
        Set(std::string(to));
    } else {
        // An empty path says that nothing has changed since the beginning, which "." does not alter.
        path = JoinTracePath(path, to == "." ? std::string_view() : to);
    }
}

void TraceDirectory::Set(std::string absolutePath) {
    path = std::move(absolutePath);
    base.reset();
}

} // namespace Orvanta
