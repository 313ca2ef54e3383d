// SPDX-License-Identifier: MIT

// What the XML library takes for bare passes over a GPX file, with handlers that do nothing, and
// what the framework takes for its work on the same file: the counting parse beside one bare pass,
// and the four passes of an import into a receiver that does nothing beside four. All take turns in
// one run; what counts are the ratios.
//
//     passes FILE.gpx [ROUNDS]
//     passes --bare FILE.gpx          one bare pass and nothing else

#include <Pelluvia/gpximport/GPXFileImporter.h>
#include <Pelluvia/gpximport/GPXImportCounter.h>
#include <Pelluvia/model/NullReceiver.h>
#include <Pelluvia/xml/XMLParser.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <memory>
#include <vector>

namespace {

/// How much faster than a bare pass the counting parse is at least.
constexpr double countingBar = 3.0;
/// What the import may take at most, as a multiple of four bare passes.
constexpr double importBar = 1.5;

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

bool import(const char *path) {
    const auto receiver = std::make_shared<pelluvia::NullReceiver>();
    return pelluvia::GPXFileImporter::initWithReceiver(receiver)->processFile(path) == nullptr;
}

bool count(const char *path) {
    const auto counter = pelluvia::GPXImportCounter::init();
    const auto parser =
        pelluvia::XMLParser::initWithContentsOfURL(pelluvia::URL::fileURLWithPath(path));
    parser->setDelegate(counter.get());
    return parser->parse();
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

/// One kind of work, measured in every round.
struct Work {
    const char *name;
    bool (*run)(const char *path);
    std::vector<double> times;
};

int measure(const char *path, int rounds) {
    std::array<Work, 3> works = {
        {{"bare pass", parseBare, {}}, {"counting parse", count, {}}, {"import", import, {}}}};
    for (int round = 0; round < rounds; ++round) {
        for (Work &work : works) {
            const double time = seconds(work.run, path);
            if (time < 0.0) {
                std::fprintf(stderr, "passes: %s cannot be read\n", path);
                return 1;
            }
            work.times.push_back(time);
        }
    }
    const double bare = median(works[0].times);
    const double counting = median(works[1].times);
    const double importing = median(works[2].times);
    std::printf("%s\n", path);
    std::printf("  bare pass of the library %8.4f s\n", bare);
    std::printf("  counting parse           %8.4f s, %5.2f times as fast\n", counting,
                bare / counting);
    std::printf("  import                   %8.4f s, %5.2f times as long as four bare passes\n",
                importing, importing / (4 * bare));
    const bool passes = bare / counting >= countingBar && importing / (4 * bare) <= importBar;
    std::printf("  %s: counting at least %.1f times as fast, import at most %.1f times as long\n",
                passes ? "pass" : "FAIL", countingBar, importBar);
    return passes ? 0 : 1;
}

} // namespace

int main(int count, char **arguments) {
    int rounds = 7;
    if (count == 3 && std::strcmp(arguments[1], "--bare") == 0) {
        return parseBare(arguments[2]) ? 0 : 1;
    }
    bool understood = count == 2 || count == 3;
    if (count == 3) {
        const char *text = arguments[2];
        const auto result = std::from_chars(text, text + std::strlen(text), rounds);
        understood = result.ec == std::errc() && *result.ptr == '\0' && rounds > 0;
    }
    if (!understood) {
        std::fprintf(stderr, "usage: passes FILE.gpx [ROUNDS] | passes --bare FILE.gpx\n");
        return 2;
    }
    return measure(arguments[1], rounds);
}
