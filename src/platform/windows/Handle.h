#pragma once

#include <utility>

namespace Orvanta {

/// Owns one handle of the system, or none, and closes it. Move-only.
class Handle {
public:
    Handle() noexcept = default;

    /// What the system gives for a failure counts as none.
    explicit Handle(void* value) noexcept;

    ~Handle() { Reset(); }

    /// The other owns none afterwards.
    Handle(Handle&& other) noexcept : value_(std::exchange(other.value_, nullptr)) {}

    Handle& operator=(Handle&& other) noexcept {
        Reset();
        value_ = std::exchange(other.value_, nullptr);
        return *this;
    }

    /// Null when there is none. Stays owned.
    [[nodiscard]] void* Get() const noexcept { return value_; }

    /// Whether it owns a handle.
    [[nodiscard]] bool IsOpen() const noexcept { return value_ != nullptr; }

    /// Closes it.
    void Reset() noexcept;

private:
    void* value_ = nullptr;
};

} // namespace Orvanta
