// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/MessageTarget.h>
#include <Pelluvia/values/Selector.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

/// \file
/// Messages to the main thread. Receivers report completion and errors here and go on at once; the
/// host decides when the messages run, in one of three ways:
///
///  1. it calls `drain` when it likes, for instance after an import;
///  2. it watches `fileDescriptor` in the event loop it has and calls `drain` when it is readable;
///  3. it installs a scheduler that passes each message on to a loop of its own.

namespace pelluvia::mainThread {

/// A message: called once, then destroyed with everything it holds.
using Message = std::function<void()>;

/// Takes each message in place of the queue, on the thread that posts it, and must see that the
/// messages run on the main thread in the same order.
///
/// It is called with the queue locked, which keeps that order: it should pass the message on and
/// return. It may post and set another scheduler, but not wait for another thread that does. What
/// it throws reaches the caller of `post` or `setScheduler`; the message is then lost.
using Scheduler = std::function<void(Message message)>;

/// Queues a message and returns at once; an empty function is not a message. Callable from any
/// thread.
PELLUVIA_EXPORT void post(Message message);

/// Runs the messages that are queued now, in order, on the calling thread, which should be the
/// host's main thread, and returns how many ran. Messages that these post are left for the next
/// time; a message may itself call `drain`, which then also runs the ones left. A message that
/// throws has been taken off the queue; the exception reaches the caller and the messages behind it
/// stay queued.
PELLUVIA_EXPORT std::size_t drain();

/// A descriptor that is readable while messages are queued. It belongs to the queue: watch it, do
/// not read or close it. -1 when the system gave none.
[[nodiscard]] PELLUVIA_EXPORT int fileDescriptor();

/// Hands every message from now on, and those queued so far, to the scheduler; an empty function
/// brings the queue back. Callable from any thread.
PELLUVIA_EXPORT void setScheduler(Scheduler scheduler);

/// Queues the call of `selector` on `target` with `argument`. Both are kept alive until it has run.
/// A null target makes no message. `target` must have been a pointer to the class that the selector
/// was made for.
template <class Argument>
void perform(std::shared_ptr<void> target, const Selector<Argument> &selector, Argument argument) {
    if (target != nullptr) {
        post([target = std::move(target), selector, argument = std::move(argument)] {
            selector.perform(target.get(), argument);
        });
    }
}

/// Queues the target's message with `argument`. Both are kept alive until it has run, a weakly held
/// target from now on. Makes no message where nobody is to be told.
template <class Argument>
void perform(const MessageTarget<Argument> &target, std::type_identity_t<Argument> argument) {
    perform(target.object(), target.selector(), std::move(argument));
}

} // namespace pelluvia::mainThread
