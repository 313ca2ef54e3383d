// SPDX-License-Identifier: MIT

#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <utility>

/// \file
/// Shared ownership in one pointer. Dictionaries hold millions of values, so a reference has to fit
/// in eight bytes and needs no control block beside the object.
///
///     Ref<Array> points = Ref<Array>::make();
///     points->append(Value(3));

namespace pelluvia {

/// Base of objects that count their owners. The object deletes itself (as its `Derived` type) when
/// the last `Ref` lets go. An object on the stack or inside another one is simply never referred
/// to.
///
/// Objects that own each other in a ring keep each other for ever.
///
/// Threads: counting is atomic; the object's content has no lock.
template <class Derived>
class RefCounted {
  public:
    RefCounted() = default;
    /// A copy starts with owners of its own.
    RefCounted(const RefCounted &) noexcept {}
    RefCounted &operator=(const RefCounted &) noexcept { return *this; }

    /// Whether the caller, an owner, is the only one: then nobody else can reach the object.
    [[nodiscard]] bool hasOneOwner() const noexcept {
        return owners_.load(std::memory_order_acquire) == 1;
    }

    void retain() const noexcept { owners_.fetch_add(1, std::memory_order_relaxed); }
    void release() const noexcept {
        if (owners_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete static_cast<const Derived *>(this);
        }
    }

  protected:
    ~RefCounted() = default;

  private:
    mutable std::atomic<std::uint32_t> owners_{0};
};

/// An owning reference to a `RefCounted` object; null is nil.
template <class T>
class Ref {
  public:
    Ref() = default;
    Ref(std::nullptr_t) noexcept {}
    explicit Ref(T *object) noexcept : object_(object) {
        if (object_ != nullptr) {
            object_->retain();
        }
    }
    Ref(const Ref &other) noexcept : Ref(other.object_) {}
    Ref(Ref &&other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Ref &operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref() {
        if (object_ != nullptr) {
            object_->release();
        }
    }

    /// Makes a new object that the returned reference owns.
    template <class... Arguments>
    [[nodiscard]] static Ref make(Arguments &&...arguments) {
        return Ref(new T(std::forward<Arguments>(arguments)...));
    }

    [[nodiscard]] T *get() const noexcept { return object_; }
    T *operator->() const noexcept { return object_; }
    /// Not of a temporary reference: in `for (auto value : *recorder.processingTelemetry())` the
    /// object would be gone before the first value is read. Give the reference a name.
    T &operator*() const &noexcept { return *object_; }
    T &operator*() const && = delete;
    explicit operator bool() const noexcept { return object_ != nullptr; }

    /// Gives the ownership away as a bare pointer; the caller must give it back with `adopt`.
    [[nodiscard]] T *leak() noexcept { return std::exchange(object_, nullptr); }
    /// Takes back what `leak` gave away.
    [[nodiscard]] static Ref adopt(T *object) noexcept {
        Ref reference;
        reference.object_ = object;
        return reference;
    }

  private:
    T *object_ = nullptr;
};

} // namespace pelluvia
