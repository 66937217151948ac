#include "bundled/FunctionLinks.h"

#include <string_view>
#include <utility>

namespace Orvanta {

namespace {

Fingerprint KeyOfPlace(std::string_view place) {
    return FingerprintBuilder().Add("place").Add(place).Value();
}

Fingerprint KeyOfName(std::string_view name) {
    return FingerprintBuilder().Add("name").Add(name).Value();
}

} // namespace

void FunctionLinks::Add(std::span<const NamedFunction> functions) {
    for (const NamedFunction& function : functions) {
        const Edge edge{NodeOf(KeyOfPlace(function.place)), NodeOf(KeyOfName(function.name))};
        edges_.push_back(edge);
        if (function.definition.empty()) {
            continue;
        }
        Node& name = nodes_[edge.name];
        const Fingerprint definition = KeyOfPlace(function.definition);
        name.isAmbiguous = name.isAmbiguous || (name.definition && name.definition != definition);
        name.definition = definition;
    }
}

void FunctionLinks::Rename(std::vector<FactGroup>& groups) {
    JoinEdges();
    for (FactGroup& group : groups) {
        for (std::string& fact : group.facts) {
            RenameIds(fact);
        }
    }
}

std::size_t FunctionLinks::NodeOf(const Fingerprint& key) {
    const auto [entry, isNew] = nodesByKey_.try_emplace(key, nodes_.size());
    if (isNew) {
        nodes_.push_back({nodes_.size(), std::nullopt, false});
    }
    return entry->second;
}

std::size_t FunctionLinks::RootOf(std::size_t node) {
    while (nodes_[node].parent != node) {
        // Halves the way for the next one.
        nodes_[node].parent = nodes_[nodes_[node].parent].parent;
        node = nodes_[node].parent;
    }
    return node;
}

void FunctionLinks::JoinEdges() {
    for (const Edge& edge : edges_) {
        if (!nodes_[edge.name].isAmbiguous) {
            nodes_[RootOf(edge.place)].parent = RootOf(edge.name);
        }
    }
    edges_.clear();
}

void FunctionLinks::RenameIds(std::string& fact) {
    std::string renamed;
    std::size_t end = 0; // of what is renamed already
    for (const std::string_view id : FunctionsOfFact(fact)) {
        const auto begin = static_cast<std::size_t>(id.data() - fact.data());
        renamed.append(fact, end, begin - end);
        end = begin + id.size();
        // A number is no place, so it stands for no function that is left as it is.
        const auto node = nodesByKey_.find(KeyOfPlace(id));
        renamed += node == nodesByKey_.end() ? std::string(id) : std::to_string(RootOf(node->second));
    }
    renamed.append(fact, end);
    fact = std::move(renamed);
}

} // namespace Orvanta
