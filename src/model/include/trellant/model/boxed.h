// Boxed<T>: an optional that keeps its value on the heap. A timeline holds a clip event per clip,
// most events have no fade, automation or export note, and a pointer is what they pay for each.
#pragma once

#include <memory>
#include <optional>
#include <utility>

namespace trellant {

/// A value or nothing, with the semantics of a value: copies are deep, == compares the values.
template <class T>
class Boxed {
  public:
    using value_type = T;

    Boxed() noexcept = default;
    Boxed(std::nullopt_t) noexcept {}
    Boxed(T value) : box_(std::make_unique<T>(std::move(value))) {}
    Boxed(const Boxed& other) : box_(other.box_ ? std::make_unique<T>(*other.box_) : nullptr) {}
    Boxed(Boxed&&) noexcept = default;
    Boxed& operator=(const Boxed& other) {
        Boxed copy(other);
        box_ = std::move(copy.box_);
        return *this;
    }
    Boxed& operator=(Boxed&&) noexcept = default;
    ~Boxed() = default;

    [[nodiscard]] bool has_value() const noexcept { return box_ != nullptr; }
    explicit operator bool() const noexcept { return has_value(); }
    /// The value; requires has_value().
    [[nodiscard]] const T& operator*() const noexcept { return *box_; }
    [[nodiscard]] T& operator*() noexcept { return *box_; }
    [[nodiscard]] const T* operator->() const noexcept { return box_.get(); }
    [[nodiscard]] T* operator->() noexcept { return box_.get(); }

    T& emplace() {
        box_ = std::make_unique<T>();
        return *box_;
    }
    void reset() noexcept { box_.reset(); }

    friend bool operator==(const Boxed& left, const Boxed& right) {
        return left.has_value() == right.has_value() && (!left.has_value() || *left == *right);
    }

  private:
    std::unique_ptr<T> box_;
};

}  // namespace trellant
