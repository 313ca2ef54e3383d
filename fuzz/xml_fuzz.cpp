// Reads any bytes with both XML engines, the scanner and the library, and compares what they
// report. The last byte chooses how much the scanner has in memory at a time. See fuzz/README.md.

#include <Pelluvia/platform/Log.h>
#include <tests/support/XMLEngineComparison.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

/// Documents mostly end with `>` or a line end; these get the usual size.
std::size_t windowSize(std::uint8_t choice) {
    return choice % 4 == 2 ? pelluvia::xml::scan::ScanEngine::usualWindowSize
                           : 17 + 5 * static_cast<std::size_t>(choice);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool isQuiet = (pelluvia::setLogSink([](std::string_view) {}), true);
    static_cast<void>(isQuiet);
    if (size == 0) {
        return 0;
    }
    const pelluvia::testing::XMLEngineComparison comparison(
        {reinterpret_cast<const char *>(data), size}, windowSize(data[size - 1]));
    if (!comparison.difference().empty()) {
        std::fprintf(stderr, "%s\n", comparison.difference().c_str());
        std::abort();
    }
    return 0;
}
