// SPDX-License-Identifier: MIT

#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

namespace pelluvia {

/// Whether `Method` can be the message that an `Object` is sent with an `Argument`: a method of the
/// object's class or of a class that it derives from, const or not, or a function or lambda that
/// takes the object and the argument, or the argument only. They may take the argument by value or
/// by const reference. A null pointer is no message, and allowed.
template <class Method, class Object, class Argument>
concept MessageOf = std::is_null_pointer_v<Method> ||
    std::invocable<const Method &, Object &, Argument> || std::invocable<const Method &, Argument>;

/// The message of a target-and-selector pair: what is called on the target, with one argument of
/// type `Argument`. The target's type is known only where the pair is made; `MessageTarget` keeps
/// the two together and is what you want to use.
///
/// Threads: a plain value.
template <class Argument>
class Selector {
  public:
    /// No message; performing it does nothing.
    Selector() = default;

    /// A method, for targets that are passed to `perform` as a pointer to `Object`, the class that
    /// the method is of: not to one that it derives from or that derives from it. A null method is
    /// no message.
    template <class Object, class Parameter>
    explicit Selector(void (Object::*method)(Parameter)) : Selector(forObject<Object>(method)) {}
    template <class Object, class Parameter>
    explicit Selector(void (Object::*method)(Parameter) const)
        : Selector(forObject<const Object>(method)) {}

    /// Any message, for targets that are passed to `perform` as a pointer to `Object`.
    template <class Object, MessageOf<Object, Argument> Method>
    [[nodiscard]] static Selector forObject(Method method) {
        Selector selector;
        if constexpr (!std::is_null_pointer_v<Method>) {
            if (isNull(method)) {
                return selector;
            }
            selector.call_ = [method = std::move(method)](void *target, Argument argument) {
                if constexpr (std::invocable<const Method &, Object &, Argument>) {
                    std::invoke(method, *static_cast<Object *>(target), std::move(argument));
                } else {
                    std::invoke(method, std::move(argument));
                }
            };
        }
        return selector;
    }

    /// Whether there is a message.
    explicit operator bool() const noexcept { return call_ != nullptr; }

    /// Calls the method on the target; a null target is left alone.
    void perform(void *target, Argument argument) const {
        if (call_ && target != nullptr) {
            call_(target, std::move(argument));
        }
    }

  private:
    /// Pointers and function objects that wrap one can be null, lambdas cannot.
    template <class Method>
    static bool isNull(const Method &method) {
        if constexpr (std::is_constructible_v<Method, std::nullptr_t>) {
            return method == nullptr;
        } else {
            return false;
        }
    }

    std::function<void(void *, Argument)> call_;
};

} // namespace pelluvia
