#pragma once

#include <functional>
#include <utility>

namespace pelluvia {

/// The message of a target-and-selector pair: which method of the target is called, with one
/// argument of type `Argument`. The target's type is known only where the pair is made.
///
/// Threads: a plain value.
template <class Argument>
class Selector {
  public:
    /// No message; performing it does nothing.
    Selector() = default;

    /// The method of a target that must be passed to `perform` as a pointer to `Target`, not to a
    /// class that it derives from or that derives from it. A null method is no message.
    template <class Target, class Parameter>
    explicit Selector(void (Target::*method)(Parameter)) {
        if (method != nullptr) {
            call_ = [method](void *target, Argument argument) {
                (static_cast<Target *>(target)->*method)(std::move(argument));
            };
        }
    }

    /// Calls the method on the target; a null target is left alone.
    void perform(void *target, Argument argument) const {
        if (call_ && target != nullptr) {
            call_(target, std::move(argument));
        }
    }

  private:
    std::function<void(void *, Argument)> call_;
};

} // namespace pelluvia
