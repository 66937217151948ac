#include "report/SourceRootTransformer.h"

#include "platform/Text.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace OrvlogConverter {

using Orvanta::PathRules;

SourceRootTransformer::SourceRootTransformer(IOutput* next, std::string root)
    : ITransform(next), root_(std::move(root)) {}

bool SourceRootTransformer::Write(const ReportMessage& message) {
    // A message that stays as it is is not copied.
    if (!root_.empty()) {
        return ITransform::Write(message);
    }
    return next_ == nullptr || next_->Write(message);
}

ReportMessage SourceRootTransformer::Transform(ReportMessage message) {
    if (root_.empty()) {
        return message;
    }
    for (MessagePosition& position : message.positions) {
        if (const std::size_t marker = position.file.find(SourceRootMarker); marker != std::string::npos) {
            const std::string_view behind = std::string_view(position.file).substr(marker + SourceRootMarker.size());
            // The marker stands for the root without its last separator, but a root such as "/" is one.
            const bool isDoubled = !behind.empty() && Orvanta::IsSeparator(behind.front(), PathRules::Windows) &&
                                   Orvanta::IsSeparator(root_.back());
            position.file.replace(marker, SourceRootMarker.size() + (isDoubled ? 1U : 0U), root_);
        }
    }
    return message;
}

SourceRootHider::SourceRootHider(IOutput* next, std::string root, PathRules rules)
    : ITransform(next), root_(std::move(root)), rules_(rules) {
    while (!root_.empty() && Orvanta::IsSeparator(root_.back(), rules_)) {
        root_.pop_back();
    }
}

ReportMessage SourceRootHider::Transform(ReportMessage message) {
    for (MessagePosition& position : message.positions) {
        if (LiesBelowRoot(position.file)) {
            position.file.replace(0, root_.size(), SourceRootMarker);
        }
    }
    return message;
}

bool SourceRootHider::LiesBelowRoot(std::string_view file) const {
    if (file.size() <= root_.size() || !Orvanta::IsSeparator(file[root_.size()], rules_)) {
        return false;
    }
    // Windows knows a path in either case and with either separator.
    return std::equal(root_.begin(), root_.end(), file.begin(), [this](char one, char other) {
        if (rules_ == PathRules::Posix) {
            return one == other;
        }
        return Orvanta::ToLowerAscii(one) == Orvanta::ToLowerAscii(other) ||
               (Orvanta::IsSeparator(one, rules_) && Orvanta::IsSeparator(other, rules_));
    });
}

} // namespace OrvlogConverter
