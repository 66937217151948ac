#include "report/MultipleOutput.h"

#include "report/Exceptions.h"

#include <exception>
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
        // In this order: every child gets the message, whatever those before it said.
        isTaken = child->Write(message) || isTaken;
    }
    return isTaken;
}

// The failure of one output is not that of the others.
void MultipleOutput::End() {
    std::exception_ptr failure;
    for (const auto& child : children_) {
        try {
            child->End();
        } catch (...) {
            failure = failure == nullptr ? std::current_exception() : failure;
        }
    }
    if (failure != nullptr) {
        std::rethrow_exception(failure);
    }
}

} // namespace OrvlogConverter
