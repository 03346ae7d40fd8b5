// SPDX-License-Identifier: Apache-2.0
// Boxed<T>: an optional that keeps its value on the heap. A timeline holds a clip event per clip,
// most events have no fade, automation or export note, and a pointer is what they pay for each.
//
// Copies share one value until one of them is changed: an effect over ten thousand clips gives them
// all the same automation, and its points are held once.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <utility>

namespace [[gnu::visibility("default")]] trellant {

/// A value or nothing, with the semantics of a value: changing a copy leaves the others as they
/// are, == compares the values. As with any value, several threads may read one object at a time,
/// and different copies may be changed by different threads: reading, of an object that is not
/// const too, never writes.
template <class T>
class Boxed {
  public:
    using value_type = T;

    Boxed() noexcept = default;
    Boxed(std::nullopt_t) noexcept {}
    Boxed(T value) : box_(new Box{std::move(value)}) {}
    Boxed(const Boxed& other) noexcept : box_(other.box_) {
        if (box_ != nullptr) {
            box_->owners.fetch_add(1, std::memory_order_relaxed);
        }
    }
    Boxed(Boxed&& other) noexcept : box_(std::exchange(other.box_, nullptr)) {}
    Boxed& operator=(const Boxed& other) noexcept {
        if (this != &other) {
            Boxed copy(other);
            std::swap(box_, copy.box_);
        }
        return *this;
    }
    Boxed& operator=(Boxed&& other) noexcept {
        Boxed taken(std::move(other));
        std::swap(box_, taken.box_);
        return *this;
    }
    ~Boxed() { reset(); }

    /// True when there is a value.
    [[nodiscard]] bool has_value() const noexcept { return box_ != nullptr; }
    explicit operator bool() const noexcept { return has_value(); }
    /// The value; requires has_value().
    [[nodiscard]] const T& operator*() const noexcept { return box_->value; }
    [[nodiscard]] const T* operator->() const noexcept { return &box_->value; }
    /// The value for changing, this copy's own from now on: copied first when others share it.
    /// Requires has_value().
    [[nodiscard]] T& mutableValue() {
        if (box_->owners.load(std::memory_order_acquire) != 1) {
            *this = Boxed(T(box_->value));
        }
        return box_->value;
    }

    /// A new default value in place of what was there.
    T& emplace() {
        *this = Boxed(T());
        return box_->value;
    }
    /// Leaves nothing; other copies keep theirs.
    void reset() noexcept {
        Box* const box = std::exchange(box_, nullptr);
        if (box != nullptr && box->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete box;
        }
    }

    friend bool operator==(const Boxed& left, const Boxed& right) {
        return left.box_ == right.box_ ||
               (left.has_value() && right.has_value() && *left == *right);
    }

  private:
    struct Box {
        T value;
        std::atomic<std::uint32_t> owners{1};
    };

    Box* box_ = nullptr;
};

}  // namespace trellant
