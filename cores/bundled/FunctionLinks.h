#pragma once

#include "bundled/AnalyzerInformation.h"
#include "bundled/FunctionNames.h"
#include "platform/Fingerprint.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace Orvanta {

/// Finds out which functions of many units are one, although their units see different declarations, and has facts call
/// them by one id. A name that is defined in two places, as in two programs of one build, links nothing: then a
/// function is what one place declares.
class FunctionLinks {
public:
    /// All units first.
    void Add(std::span<const NamedFunction> functions);

    /// Replaces the ids of functions that are known to be one.
    void Rename(std::vector<FactGroup>& groups);

private:
    struct Node {
        std::size_t parent;                    // itself, for the one that stands for all
        std::optional<Fingerprint> definition; // of a name, the last that was seen
        bool isAmbiguous = false;
    };

    struct Edge {
        std::size_t place;
        std::size_t name;
    };

    std::size_t NodeOf(const Fingerprint& key);
    std::size_t RootOf(std::size_t node);
    void JoinEdges();
    void RenameIds(std::string& fact);

    std::unordered_map<Fingerprint, std::size_t, FingerprintHash> nodesByKey_;
    std::vector<Node> nodes_;
    std::vector<Edge> edges_; // those that are not joined yet
};

} // namespace Orvanta
