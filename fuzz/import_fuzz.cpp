// SPDX-License-Identifier: MIT

// Imports any bytes as a GPX file and checks that the calls follow the receiver's rules, whatever
// the bytes are, and that an import by the XML library makes the same calls, with the same error in
// the same place, as one by the scanner. See fuzz/README.md.

#include "StrictReceiver.h"

#include <Pelluvia/gpximport/GPXFileImporter.h>
#include <Pelluvia/system/Log.h>
#include <Pelluvia/xml/XMLParser.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

namespace {

using namespace pelluvia;
using fuzz::require;

/// Follows the calls of an importer.
class RuleChecker : public fuzz::StrictReceiver {
  public:
    /// After each import.
    void finish(const ErrorPtr &result) {
        require(openKind_ == 0, "every transfer ends");
        require((result != nullptr) == hasFailed_, "a failed import told the receiver so");
        require(hasFailed_ || transfers_ == 3, "a good import makes three transfers");
        transfers_ = 0;
        hasFailed_ = false; // whether there was a track is left over
    }
    /// A number that differs when the calls differ.
    [[nodiscard]] std::uint64_t digest() const noexcept { return digest_; }

    void startTransfer(const void *sender, int kind, const Dictionary *extra) override {
        constexpr int order[] = {2, 3, 1};
        require(openKind_ == 0 && !hasFailed_, "transfers follow one another until one fails");
        require(transfers_ < 3 && kind == order[transfers_], "routes, waypoints, tracks");
        require(sender == nullptr, "the importer sends no sender");
        require(extra != nullptr && extra->size() == 1, "the count stands alone");
        const Value count = extra->find(Key::known("count"));
        require(count.kind() == Value::Kind::Integer && count.number()->intValue() >= 0,
                "the count is an integer");
        ++transfers_;
        openKind_ = kind;
        add("startTransfer", nullptr, extra);
    }
    void endTransfer(int kind) override {
        require(kind == openKind_, "the open transfer ends");
        openKind_ = 0;
        add("endTransfer", nullptr, nullptr);
    }
    void newRoute(const Dictionary *extra) override {
        require(isRunning(2), "routes in their transfer");
        require(extra == nullptr || !extra->empty(), "nil for no attributes");
        add("newRoute", nullptr, extra);
    }
    void newTrack(const Dictionary *extra) override {
        require(isRunning(1), "tracks in their transfer");
        require(extra == nullptr || !extra->empty(), "nil for no attributes");
        hasTrack_ = true;
        add("newTrack", nullptr, extra);
    }
    void newTrackSegment() override {
        require(isRunning(1) && hasTrack_, "segments in a track");
        add("newTrackSegment", nullptr, nullptr);
    }
    void routePoint(GPSPoint point, const Dictionary *extra) override {
        require(isRunning(2) && extra != nullptr, "route points in their transfer");
        add("routePoint", &point, extra);
    }
    void wayPoint(GPSPoint point, const Dictionary *extra) override {
        require(isRunning(3) && extra != nullptr, "waypoints in their transfer");
        add("wayPoint", &point, extra);
    }
    void trackPoint(GPSPoint point, const Dictionary *extra) override {
        require(isRunning(1), "track points in their transfer");
        require(extra == nullptr || !extra->empty(), "nil for no extras");
        add("trackPoint", &point, extra);
    }
    void error(const Report &error) override {
        require(openKind_ != 0 && !hasFailed_, "one error, in a transfer");
        const auto *object = std::get_if<ErrorPtr>(&error);
        require(object != nullptr && *object != nullptr, "an error object");
        hasFailed_ = true;
        add((*object)->localizedDescription(), nullptr, nullptr);
    }

  private:
    [[nodiscard]] bool isRunning(int kind) const { return openKind_ == kind && !hasFailed_; }

    void add(std::string_view call, const GPSPoint *point, const Dictionary *extra) {
        addBytes(call);
        if (point != nullptr) {
            require(point->test == 0, "the importer never sets the test field");
            require(!std::isnan(point->latitude) && !std::isnan(point->longitude) &&
                        !std::isnan(point->altitude),
                    "no text reads as NaN");
            addRecord(*point);
        }
        if (extra != nullptr) {
            for (const Dictionary::Entry &each : *extra) {
                addBytes(each.key.name());
                addValue(each);
            }
        }
    }
    void addValue(const Dictionary::Entry &entry) {
        if (const auto text = entry.value.string()) {
            require(!text->empty() || entry.key == Key::known("sensor"), "empty texts are absent");
            addBytes(*text);
            return;
        }
        const auto number = entry.value.number();
        require(number.has_value(), "extras are numbers and texts");
        const double value = number->doubleValue();
        require(!std::isnan(value), "no text reads as NaN");
        addRecord(value);
    }
    void addBytes(std::string_view bytes) {
        for (const char c : bytes) { // FNV-1a
            digest_ = (digest_ ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
        }
    }
    template <class Record>
    void addRecord(const Record &record) {
        char bytes[sizeof record];
        std::memcpy(bytes, &record, sizeof record);
        addBytes({bytes, sizeof bytes});
    }

    int transfers_ = 0;
    int openKind_ = 0;
    bool hasTrack_ = false;
    bool hasFailed_ = false;
    // The multiplication above is meant to wrap: the type is unsigned.
    std::uint64_t digest_ = 0xCBF29CE484222325U;
};

/// A file in a folder of its own, so that no external entity finds anything else.
class InputFile {
  public:
    explicit InputFile(std::string_view text = {}) {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "fuzz-import-XXXXXX").string();
        require(::mkdtemp(pattern.data()) != nullptr, "a temporary folder");
        folder_ = pattern;
        write(text);
    }
    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;
    ~InputFile() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    [[nodiscard]] std::string path() const { return (folder_ / "input.gpx").string(); }

    void write(std::string_view text) const {
        std::FILE *file = std::fopen(path().c_str(), "wb");
        require(file != nullptr, "the input can be written");
        const std::size_t written = std::fwrite(text.data(), 1, text.size(), file);
        require(std::fclose(file) == 0 && written == text.size(), "the input can be written");
    }

  private:
    std::filesystem::path folder_;
};

/// Imports and how the first of them ended, as numbers and texts that can be compared.
struct Imports {
    std::uint64_t digest = 0;
    std::int64_t code = 0;
    std::string description;
    std::int64_t line = 0;
    std::int64_t column = 0;
    bool operator==(const Imports &) const = default;
};

/// By one importer, one after the other: what is left over of a file may show in later calls.
Imports importBy(const char *engine, std::initializer_list<const InputFile *> files) {
    require(::setenv("PELLUVIA_XML_ENGINE", engine, 1) == 0, "the environment can be set");
    const auto checker = std::make_shared<RuleChecker>();
    const auto importer = GPXFileImporter::initWithReceiver(checker);
    ErrorPtr first;
    for (const InputFile *file : files) {
        const ErrorPtr error = importer->processFile(file->path());
        checker->finish(error);
        first = file == *files.begin() ? error : first;
    }
    Imports imports;
    imports.digest = checker->digest();
    if (first != nullptr) {
        imports.code = first->code();
        imports.description = first->localizedDescription();
        imports.line = first->integer(NSXMLParserErrorLineNumber);
        imports.column = first->integer(NSXMLParserErrorColumn);
    }
    return imports;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const InputFile file;
    // Points that begin nowhere, and are made of what is left over.
    static const InputFile trackPoint("<x:trkpt xmlns:x='x'/>");
    static const InputFile waypoint("<x:wpt xmlns:x='x'/>");
    static const bool isQuiet = (setLogSink([](std::string_view) {}), true);
    static_cast<void>(isQuiet);
    file.write({reinterpret_cast<const char *>(data), size});
    const std::initializer_list<const InputFile *> files = {&file, &trackPoint, &waypoint, &file};
    require(importBy("automatic", files) == importBy("libxml2", files),
            "both engines lead to the same calls and the same error");
    return 0;
}
