#include "report/MultipleOutput.h"

#include "report/Exceptions.h"

#include <utility>

namespace OrvlogConverter {

void MultipleOutput::Add(std::unique_ptr<IOutput> output) {
    if (output == nullptr) {
        throw ConfigException("output is nullptr");
    }
    children_.push_back(std::move(output));
}

void MultipleOutput::Begin() {
    for (const auto& child : children_) {
        child->Begin();
    }
}

bool MultipleOutput::Write(const ReportMessage& message) {
    bool isTaken = false;
    for (const auto& child : children_) {
        isTaken = child->Write(message) || isTaken;
    }
    return isTaken;
}

void MultipleOutput::End() {
    for (const auto& child : children_) {
        child->End();
    }
}

} // namespace OrvlogConverter
