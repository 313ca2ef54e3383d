// How much an import adds to the XML parser: the four passes of a GPX file into a receiver that
// does nothing, beside four bare passes of the XML library over the same file with handlers that do
// nothing. The two take turns in one run; what counts is the ratio.
//
//     passes FILE.gpx [ROUNDS]

#include <Pelluvia/gpximport/GPXFileImporter.h>
#include <tests/support/NullReceiver.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <memory>
#include <vector>

namespace {

/// What the import may take at most, as a multiple of the bare passes.
constexpr double bar = 1.5;

void startNothing(void * /*context*/, const xmlChar * /*localName*/, const xmlChar * /*prefix*/,
                  const xmlChar * /*uri*/, int /*namespaceCount*/, const xmlChar ** /*namespaces*/,
                  int /*attributeCount*/, int /*defaultedCount*/, const xmlChar ** /*attributes*/) {
}

void endNothing(void * /*context*/, const xmlChar * /*localName*/, const xmlChar * /*prefix*/,
                const xmlChar * /*uri*/) {}

void textNothing(void * /*context*/, const xmlChar * /*text*/, int /*length*/) {}

bool parseBare(const char *path) {
    xmlSAXHandler handler;
    std::memset(&handler, 0, sizeof handler);
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = startNothing;
    handler.endElementNs = endNothing;
    handler.characters = textNothing;
    handler.ignorableWhitespace = textNothing;
    handler.cdataBlock = textNothing;
    return xmlSAXUserParseFile(&handler, nullptr, path) == 0;
}

bool fourBarePasses(const char *path) {
    for (int pass = 0; pass < 4; ++pass) {
        if (!parseBare(path)) {
            return false;
        }
    }
    return true;
}

bool import(const char *path) {
    const auto receiver = std::make_shared<pelluvia::testing::NullReceiver>();
    return pelluvia::GPXFileImporter::initWithReceiver(receiver)->processFile(path) == nullptr;
}

/// Seconds of processor time that the function takes; negative when it fails. Unlike the time on
/// the wall it hardly minds what else the machine does.
template <class Function>
double seconds(Function function, const char *path) {
    const std::clock_t start = std::clock();
    const bool succeeded = function(path);
    const std::clock_t taken = std::clock() - start;
    return succeeded ? static_cast<double>(taken) / CLOCKS_PER_SEC : -1.0;
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

int measure(const char *path, int rounds) {
    std::vector<double> bare;
    std::vector<double> imported;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        // The one that goes first changes from round to round.
        double a = round % 2 == 0 ? seconds(fourBarePasses, path) : 0.0;
        const double b = seconds(import, path);
        a = round % 2 == 0 ? a : seconds(fourBarePasses, path);
        if (a < 0.0 || b < 0.0) {
            std::fprintf(stderr, "passes: %s cannot be read\n", path);
            return 1;
        }
        bare.push_back(a);
        imported.push_back(b);
        ratios.push_back(b / a);
    }
    const double ratio = median(ratios);
    std::printf("four bare passes %8.3f s   import %8.3f s   ratio %5.2f (bar %.1f)  %s\n",
                median(bare), median(imported), ratio, bar, path);
    return ratio <= bar ? 0 : 1;
}

} // namespace

int main(int count, char **arguments) {
    int rounds = 7;
    bool understood = count == 2 || count == 3;
    if (count == 3) {
        const char *text = arguments[2];
        const auto result = std::from_chars(text, text + std::strlen(text), rounds);
        understood = result.ec == std::errc() && *result.ptr == '\0' && rounds > 0;
    }
    if (!understood) {
        std::fprintf(stderr, "usage: passes FILE.gpx [ROUNDS]\n");
        return 2;
    }
    return measure(arguments[1], rounds);
}
