// SPDX-License-Identifier: MIT

#pragma once

namespace pelluvia {

/// What a transfer carries: the `kind` of a receiver's `startTransfer` and `endTransfer`. Those
/// take an `int`, to which these convert, since other values are passed through to observers and
/// close nothing.
namespace transferKind {
enum Kind : int {
    tracks = 1,
    routes = 2,
    waypoints = 3,
};
} // namespace transferKind

/// The producer's state in a receiver's `gpsStateChange`, which takes an `int`. Receivers ignore
/// every value but this one.
namespace gpsState {
enum State : int {
    /// The producer has finished the whole exchange: complete your work.
    finished = 0,
};
} // namespace gpsState

} // namespace pelluvia
