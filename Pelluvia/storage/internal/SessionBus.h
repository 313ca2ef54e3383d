// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace pelluvia::storage {

/// The address of the user's session bus, or nothing where there is none. Unlike GLib's function it
/// starts no bus: a prompt on a bus of its own would meet no portal.
[[nodiscard]] std::string sessionBusAddress();

} // namespace pelluvia::storage
