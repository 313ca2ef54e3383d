// SPDX-License-Identifier: MIT

// Makes any calls on a recorder, in any order, and checks that it then holds, tells and replays
// what a plain model of it does. See fuzz/README.md.

#include <tests/support/RecorderCalls.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string bytes(data, data + size);
    pelluvia::testing::RecorderCalls calls(bytes);
    if (const std::string difference = calls.run(); !difference.empty()) {
        std::fprintf(stderr, "the recorder differs from its model: %s\n", difference.c_str());
        std::abort();
    }
    return 0;
}
