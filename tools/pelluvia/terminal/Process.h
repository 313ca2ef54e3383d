// SPDX-License-Identifier: MIT

#pragma once

namespace pelluvia::host {

/// Makes the process what the commands rely on: writing to a closed pipe or beyond a size limit is
/// an error and not the end, the descriptors 0 to 2 are taken (those that the caller had closed
/// fail when they are used), messages are in the user's language and numbers are not, and messages
/// to the main thread run at once, since this program has no other.
void prepareProcess();

/// Sends the framework's log lines to standard error.
void showLogLines();

} // namespace pelluvia::host
