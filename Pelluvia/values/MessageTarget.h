// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Selector.h>

#include <concepts>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

namespace pelluvia {

/// A target with its selector: who is told of something, and by which message with one argument of
/// type `Argument`. What the `set...Object` methods of receivers store.
///
///     exporter->setErrorObject(host, &Host::exportFailed);         // a method, const or not
///     exporter->setErrorObject(host, [](Host &host, const Report &report) { host.show(report); });
///     exporter->setErrorObject(std::weak_ptr(host), &Host::exportFailed);
///     exporter->setErrorObject([](const Report &report) { print(report); });
///     exporter->setErrorObject(nullptr);                           // nobody
///
/// Ownership: a target given as `std::shared_ptr` is kept alive. That makes a ring when the target
/// in turn keeps alive, directly or through others, what it is a target of, as a host does that is
/// told by an exporter which is one of its members: neither is ever freed, unless one of them lets
/// go, `setErrorObject(nullptr)` for instance. A target given as `std::weak_ptr` makes no ring;
/// once it is gone it is told nothing more. What a lambda has captured is owned by the lambda:
/// capture a `std::weak_ptr`, or a plain pointer to what surely outlives it.
///
/// Threads: a plain value.
template <class Argument>
class MessageTarget {
  public:
    /// Nobody; performing does nothing.
    MessageTarget() = default;
    MessageTarget(std::nullptr_t) noexcept {}
    template <class Method>
    MessageTarget(std::nullptr_t, const Method & /*method*/) noexcept {}

    /// An object that is kept alive, and its message. A null object or selector: nobody.
    template <class Object, MessageOf<Object, Argument> Method>
    MessageTarget(std::shared_ptr<Object> object, Method method)
        : MessageTarget(Selector<Argument>::template forObject<Object>(std::move(method))) {
        if (selector_) {
            strong_ = std::const_pointer_cast<std::remove_const_t<Object>>(std::move(object));
        }
    }
    /// An object that is not kept alive, and its message.
    template <class Object, MessageOf<Object, Argument> Method>
    MessageTarget(const std::weak_ptr<Object> &object, Method method)
        : MessageTarget(object.lock(), std::move(method)) {
        weak_ = strong_;
        strong_ = nullptr;
    }
    /// A function or lambda, for who has no object to name. An empty `std::function`: nobody.
    template <class Function>
    requires(!std::is_null_pointer_v<Function> && std::invocable<const Function &, Argument>)
        MessageTarget(Function function)
        : MessageTarget(std::make_shared<char>(), std::move(function)) {}

    /// The target, kept alive while the result lives; null when there is none (any more).
    [[nodiscard]] std::shared_ptr<void> object() const noexcept {
        return strong_ != nullptr ? strong_ : weak_.lock();
    }
    [[nodiscard]] const Selector<Argument> &selector() const noexcept { return selector_; }

    /// Whether there is somebody to be told now.
    explicit operator bool() const noexcept { return object() != nullptr; }

    /// Sends the message on the calling thread.
    void perform(Argument argument) const {
        // Copies of our own: the target may replace this one, or let it go, when it is told.
        const std::shared_ptr<void> target = object();
        const Selector<Argument> message = selector_;
        message.perform(target.get(), std::move(argument));
    }

  private:
    explicit MessageTarget(Selector<Argument> made) : selector_(std::move(made)) {}

    std::shared_ptr<void> strong_;
    std::weak_ptr<void> weak_;
    Selector<Argument> selector_;
};

} // namespace pelluvia
