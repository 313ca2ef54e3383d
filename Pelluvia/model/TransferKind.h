#pragma once

namespace pelluvia {

/// What a transfer carries: the `kind` of a receiver's `startTransfer` and `endTransfer`. An `int`,
/// since other values are passed through to observers and close nothing.
namespace transferKind {
inline constexpr int tracks = 1;
inline constexpr int routes = 2;
inline constexpr int waypoints = 3;
} // namespace transferKind

/// The producer's state in a receiver's `gpsStateChange`. Receivers ignore every value but this
/// one.
namespace gpsState {
/// The producer has finished the whole exchange: complete your work.
inline constexpr int finished = 0;
} // namespace gpsState

} // namespace pelluvia
