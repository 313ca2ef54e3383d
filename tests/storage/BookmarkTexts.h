// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Data.h>

#include <glib.h>
#include <memory>
#include <string>

/// \file
/// Bookmark data as text, and made by hand, as somebody would who wants to lead us astray.

namespace pelluvia::testing {

[[nodiscard]] inline std::string textOf(const Data &data) {
    return {data.begin(), data.end()};
}

[[nodiscard]] inline Data dataOf(const std::string &text) {
    return {text.begin(), text.end()};
}

/// Data of this version with these lines, and the checksum that belongs to them.
[[nodiscard]] inline Data bookmarkWith(const std::string &fields) {
    const std::string text = "Pelluvia bookmark 1\n" + fields;
    const std::unique_ptr<gchar, decltype(&g_free)> sum(
        g_compute_checksum_for_string(G_CHECKSUM_SHA256, text.c_str(),
                                      static_cast<gssize>(text.size())),
        g_free);
    return dataOf(text + "sum " + sum.get() + "\n");
}

} // namespace pelluvia::testing
