// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/calllog/CallLogReader.h>

#include <tests/formats/calllog/CallLogs.h>
#include <tests/support/SpyReceiver.h>

#include <Pelluvia/formats/calllog/internal/CallLogLimits.h>

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/NullReceiver.h>
#include <Pelluvia/values/Array.h>
#include <Pelluvia/values/CocoaErrors.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <unistd.h>
#include <vector>

namespace pelluvia {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::readLog;
using testing::SpyReceiver;

#define POINT R"({"latitude":47.1,"longitude":8.5,"altitude":430.0,"time":1591000000,"test":-2})"

SpyReceiver readAll(std::string_view log) {
    SpyReceiver receiver;
    const auto fault = readLog(log, receiver);
    EXPECT_EQ(fault, nullptr) << "line " << fault->integer(callLogErrorLine) << ": "
                              << fault->localizedDescription();
    return receiver;
}

TEST(CallLogReader, MakesEachCallInOrder) {
    const SpyReceiver receiver =
        readAll(R"({"call":"startTransfer:kind:extra:","kind":1,"extra":null}
{"call":"newTrack:","extra":{}}
{"call":"newTrackSegment"}
{"call":"trackPoint:extra:","point":)" POINT R"(,"extra":{}}
{"call":"newRoute:","extra":null}
{"call":"routePoint:extra:","point":)" POINT R"(,"extra":{}}
{"call":"wayPoint:extra:","point":)" POINT R"(,"extra":{}}
{"call":"poiPoint:extra:","point":)" POINT R"(,"extra":{}}
{"call":"lapInfoStart:end:extras:","start":)" POINT R"(,"end":)" POINT R"(,"extras":{}}
{"call":"endTransfer:","kind":1}
{"call":"currentPosition:accuracy:","point":)" POINT R"(,"accuracy":5}
{"call":"warning:","object":"text"}
{"call":"error:","error":null}
{"call":"gpsStateChange:","state":2}
{"call":"startSending:kind:extra:","kind":3,"extra":{}}
{"call":"sendProgress:","count":4}
{"call":"endSending:","kind":3}
)");
    EXPECT_THAT(receiver.names(),
                ElementsAre("startTransfer 1", "newTrack", "newTrackSegment", "trackPoint",
                            "newRoute", "routePoint", "wayPoint", "poiPoint", "lapInfoStart",
                            "endTransfer 1", "currentPosition 5", "warning", "error",
                            "gpsStateChange 2", "startSending 3", "sendProgress 4",
                            "endSending 3"));
}

TEST(CallLogReader, ReadsEveryFieldOfAPoint) {
    const SpyReceiver receiver =
        readAll(R"({"call":"poiPoint:extra:","point":)" POINT R"(,"extra":null})");
    const GPSPoint &point = receiver.seen.at(0).point;
    EXPECT_EQ(point.latitude, 47.1);
    EXPECT_EQ(point.longitude, 8.5);
    EXPECT_EQ(point.altitude, 430.0);
    EXPECT_EQ(point.time, 1591000000);
    EXPECT_EQ(point.test, -2);
}

TEST(CallLogReader, ALineMayBeWrittenByHand) {
    const SpyReceiver receiver =
        readAll(R"( { "point" : {"test":0, "time":1, "altitude":{"real":"NaN"}, "longitude":-8, )"
                R"("latitude":47}, "extra":null, "call":"poiPoint:extra:" } )");
    const GPSPoint &point = receiver.seen.at(0).point;
    EXPECT_EQ(point.latitude, 47.0);
    EXPECT_EQ(point.longitude, -8.0);
    EXPECT_TRUE(std::isnan(point.altitude));
    EXPECT_EQ(point.time, 1);
}

TEST(CallLogReader, IntegersAndRealsKeepTheirType) {
    const SpyReceiver receiver = readAll(
        R"({"call":"newTrack:","extra":{"index":7,"speed":7.0,"temp":1e2,"low":-9223372036854775808,"high":9223372036854775807,"zero":-0.0}})");
    const Dictionary &extra = receiver.seen.at(0).extra.value();
    EXPECT_EQ(extra.find(extras::index).kind(), Value::Kind::Integer);
    EXPECT_EQ(extra.find(extras::speed).kind(), Value::Kind::Double);
    EXPECT_EQ(extra.find(extras::temp).number()->doubleValue(), 100.0);
    EXPECT_EQ(extra.find(Key("low")).number()->int64Value(), INT64_MIN);
    EXPECT_EQ(extra.find(Key("high")).number()->int64Value(), INT64_MAX);
    EXPECT_TRUE(std::signbit(extra.find(Key("zero")).number()->doubleValue()));
}

TEST(CallLogReader, StringsAreUnescaped) {
    const SpyReceiver receiver = readAll("{\"call\":\"newTrack:\",\"extra\":{\"name\":"
                                         "\"a\\\"\\\\\\/\\b\\f\\n\\r\\t\\u00fc\\ud83d\\udeb2\"}}");
    EXPECT_EQ(receiver.seen.at(0).extra->find(extras::name).string(),
              "a\"\\/\b\f\n\r\t\xC3\xBC\xF0\x9F\x9A\xB2");
}

TEST(CallLogReader, ObjectsInsideADictionaryAreWhatTheyAreSpelledAs) {
    const SpyReceiver receiver =
        readAll(R"({"call":"newTrack:","extra":{"point":)" POINT
                R"(,"nan":{"real":"NaN"},"down":{"real":"-Infinity"},)"
                R"("other":{"real":"nan"},"points":[)" POINT R"(,{"real":"Infinity"},[]]}})");
    const Dictionary &extra = receiver.seen.at(0).extra.value();
    const auto *point = extra.record<GPSPoint>(extras::point);
    ASSERT_NE(point, nullptr);
    EXPECT_EQ(point->test, -2);
    EXPECT_TRUE(std::isnan(extra.find(Key("nan")).number()->doubleValue()));
    EXPECT_EQ(extra.find(Key("down")).number()->doubleValue(), -INFINITY);
    EXPECT_NE(extra.find(Key("other")).dictionary(), nullptr);
    const Array *points = extra.find(extras::points).array();
    ASSERT_NE(points, nullptr);
    ASSERT_EQ(points->size(), 3U);
    EXPECT_NE(points->at(0).unwrap<GPSPoint>(), nullptr);
    EXPECT_EQ(points->at(1).number()->doubleValue(), INFINITY);
    EXPECT_NE(points->at(2).array(), nullptr);
}

TEST(CallLogReader, ADictionaryOfOtherSpellingIsNoPoint) {
    for (const char *object : {
             R"({"longitude":8.5,"latitude":47.1,"altitude":0.0,"time":1,"test":0})",
             R"({"latitude":47,"longitude":8.5,"altitude":0.0,"time":1,"test":0})",
             R"({"latitude":47.1,"longitude":8.5,"altitude":0.0,"time":1.0,"test":0})",
             R"({"latitude":47.1,"longitude":8.5,"altitude":0.0,"time":1})",
             R"({"latitude":47.1,"longitude":8.5,"altitude":0.0,"time":1,"test":0,"x":0})",
         }) {
        const SpyReceiver receiver =
            readAll(R"({"call":"newTrack:","extra":{"a":)" + std::string(object) + "}}");
        EXPECT_NE(receiver.seen.at(0).extra->find(Key("a")).dictionary(), nullptr) << object;
    }
}

TEST(CallLogReader, ReadsErrorObjectsWithTheErrorsBelow) {
    const SpyReceiver receiver =
        readAll(R"({"call":"error:","error":{"domain":"d","code":-3,"userInfo":{)"
                R"("NSLocalizedDescription":"text","line":12,"real":"NaN",)"
                R"("NSUnderlyingError":{"domain":"inner","code":1,"userInfo":{"real":"NaN"}}}}})");
    const auto *error = std::get_if<ErrorPtr>(&receiver.seen.at(0).report);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ((*error)->domain(), "d");
    EXPECT_EQ((*error)->code(), -3);
    EXPECT_EQ((*error)->localizedDescription(), "text");
    EXPECT_EQ((*error)->integer("line"), 12);
    ASSERT_NE((*error)->underlyingError(), nullptr);
    EXPECT_EQ((*error)->underlyingError()->domain(), "inner");
    EXPECT_NE((*error)->underlyingError()->find("real"), nullptr);
}

TEST(CallLogReader, PassesOverLinesOfWhiteSpace) {
    const SpyReceiver receiver =
        readAll("\n  \t\r\n{\"call\":\"newTrackSegment\"}\r\n\n{\"call\":\"newTrackSegment\"}");
    EXPECT_THAT(receiver.names(), ElementsAre("newTrackSegment", "newTrackSegment"));
}

TEST(CallLogReader, CallsInAnyOrderAreMade) {
    EXPECT_THAT(readAll("{\"call\":\"endTransfer:\",\"kind\":9}\n"
                        "{\"call\":\"gpsStateChange:\",\"state\":0}\n"
                        "{\"call\":\"newTrackSegment\"}\n")
                    .names(),
                ElementsAre("endTransfer 9", "gpsStateChange 0", "newTrackSegment"));
}

std::string nested(std::size_t depth) {
    // The line and "extra" are two of them.
    return R"({"call":"newTrack:","extra":{"a":)" + std::string(depth - 2, '[') +
           std::string(depth - 2, ']') + "}}";
}

std::string withKeys(std::size_t count) {
    std::string line = R"({"call":"newTrack:","extra":{)";
    for (std::size_t i = 0; i < count; ++i) {
        line += (i == 0 ? "\"k" : ",\"k") + std::to_string(i) + "\":1";
    }
    return line + "}}";
}

TEST(CallLogReader, ReadsUpToItsLimits) {
    EXPECT_THAT(readAll(nested(callLogLimits::depth)).names(), ElementsAre("newTrack"));
    EXPECT_EQ(readAll(withKeys(callLogLimits::keys)).seen.at(0).extra->size(), callLogLimits::keys);
}

struct Reject {
    std::string line;
    const char *reason;
};

void PrintTo(const Reject &reject, std::ostream *out) {
    *out << reject.line.substr(0, 100);
}

class RejectedLine : public ::testing::TestWithParam<Reject> {};

TEST_P(RejectedLine, EndsTheReadingThere) {
    SpyReceiver receiver;
    const auto fault = readLog("{\"call\":\"newTrackSegment\"}\n\n" + GetParam().line +
                                   "\n{\"call\":\"endTransfer:\",\"kind\":1}\n",
                               receiver);
    ASSERT_NE(fault, nullptr);
    EXPECT_EQ(fault->integer(callLogErrorLine), 3);
    EXPECT_THAT(fault->localizedDescription(), HasSubstr(GetParam().reason));
    EXPECT_LT(fault->localizedDescription().size(), 400U);
    EXPECT_THAT(receiver.names(), ElementsAre("newTrackSegment"));
}

INSTANTIATE_TEST_SUITE_P(
    OfItsForm, RejectedLine,
    ::testing::Values(Reject{"x", "invalid literal"}, Reject{"{", "unexpected end of input"},
                      Reject{R"({"call":"newTrackSegment"}{})", "expected end of input"},
                      Reject{R"({"call":"newTrackSegment"} x)", "invalid literal"},
                      Reject{R"({"call":"newTrackSegment",})", "expected string literal"},
                      Reject{R"({'call':'newTrackSegment'})", "invalid literal"},
                      Reject{R"([])", "a line must be a JSON object"},
                      Reject{R"("newTrackSegment")", "a line must be a JSON object"},
                      Reject{R"(null)", "a line must be a JSON object"},
                      Reject{R"({})", "no field \"call\""},
                      Reject{"{\"call\":\"\xFF\"}", "ill-formed UTF-8"},
                      Reject{"{\"call\":\"newTrack:\",\"extra\":{\"a\":\"\xED\xA0\x80\"}}",
                             "ill-formed UTF-8"},
                      Reject{R"({"call":"newTrack:","extra":{"a":"\ud800"}})", "surrogate"},
                      Reject{"{\"call\":\"a\tb\"}", "control character"},
                      Reject{"{\"call\":\"" + std::string(1000, 'x') + "\"}", "unknown call"},
                      Reject{"{\"" + std::string(1000, 'x') + "\":1}", "unknown field"},
                      Reject{std::string(1000, 'x'), "invalid literal"}));

INSTANTIATE_TEST_SUITE_P(
    OfItsFields, RejectedLine,
    ::testing::Values(
        Reject{R"({"call":1})", "\"call\" must be a string"},
        Reject{R"({"call":null})", "\"call\" must be a string"},
        Reject{R"({"call":"newTrack"})", "unknown call \"newTrack\""},
        Reject{R"({"call":"newTrackSegment","extra":null})",
               "newTrackSegment has no field \"extra\""},
        Reject{R"({"call":"newTrackSegment","colour":1})", "unknown field \"colour\""},
        Reject{R"({"call":"newTrackSegment","call":"newTrackSegment"})",
               "the field \"call\" stands twice"},
        Reject{R"({"call":"newTrack:"})", "\"extra\" of newTrack: is missing"},
        Reject{R"({"call":"newTrack:","extra":[]})", "must be an object or null"},
        Reject{R"({"call":"newTrack:","extra":"x"})", "must be an object or null"},
        Reject{R"({"call":"endTransfer:","kind":null})", "must be a 32-bit integer"},
        Reject{R"({"call":"endTransfer:","kind":1.0})", "must be a 32-bit integer"},
        Reject{R"({"call":"endTransfer:","kind":"1"})", "must be a 32-bit integer"},
        Reject{R"({"call":"endTransfer:","kind":2147483648})", "must be a 32-bit integer"},
        Reject{R"({"call":"gpsStateChange:","state":-2147483649})", "must be a 32-bit integer"},
        Reject{R"({"call":"sendProgress:","count":2147483648})", "must be a 32-bit integer"},
        Reject{R"({"call":"endTransfer:","count":1})", "\"kind\" of endTransfer: is missing"},
        Reject{R"({"call":"poiPoint:extra:","extra":null})", "\"point\" of poiPoint:extra: is"},
        Reject{R"({"call":"poiPoint:extra:","point":null,"extra":null})", "latitude, longitude"},
        Reject{R"({"call":"poiPoint:extra:","point":{},"extra":null})", "latitude, longitude"},
        Reject{R"({"call":"poiPoint:extra:","point":[47.1,8.5],"extra":null})", "latitude"},
        Reject{R"({"call":"poiPoint:extra:","point":{"latitude":1,"longitude":2,"altitude":3,)"
               R"("time":4,"test":5,"more":6},"extra":null})",
               "and nothing else"},
        Reject{R"({"call":"poiPoint:extra:","point":{"latitude":1,"longitude":2,"altitude":3,)"
               R"("time":4.0,"test":5},"extra":null})",
               "integers time and test"},
        Reject{R"({"call":"poiPoint:extra:","point":{"latitude":"1","longitude":2,"altitude":3,)"
               R"("time":4,"test":5},"extra":null})",
               "the numbers latitude"},
        Reject{R"({"call":"currentPosition:accuracy:","point":)" POINT R"(,"accuracy":0.5})",
               "must be a 32-bit integer"}));

INSTANTIATE_TEST_SUITE_P(
    OfItsValues, RejectedLine,
    ::testing::Values(
        Reject{R"({"call":"newTrack:","extra":{"a":null}})", "null is not a value"},
        Reject{R"({"call":"newTrack:","extra":{"a":[null]}})", "null is not a value"},
        Reject{R"({"call":"newTrack:","extra":{"a":true}})", "true and false"},
        Reject{R"({"call":false})", "true and false"},
        Reject{R"({"call":"newTrack:","extra":{"a":1,"a":1}})", "the key \"a\" stands twice"},
        Reject{R"({"call":"newTrack:","extra":{"a":[{"b":1,"b":1}]}})", "the key \"b\" stands"},
        Reject{R"({"call":"newTrack:","extra":{"a":9223372036854775808}})", "64 bits"},
        Reject{R"({"call":"newTrack:","extra":{"a":-9223372036854775809}})", "64 bits"},
        Reject{R"({"call":"newTrack:","extra":{"a":99999999999999999999999}})", "64 bits"},
        Reject{R"({"call":"newTrack:","extra":{"a":1e400}})", "number overflow"},
        Reject{R"({"call":"newTrack:","extra":{"a":NaN}})", "invalid literal"},
        Reject{R"({"call":"newTrack:","extra":{"a":01}})", "unexpected number literal"},
        Reject{nested(callLogLimits::depth + 1), "nest more than 64 deep"},
        Reject{nested(100'000), "nest more than 64 deep"},
        Reject{withKeys(callLogLimits::keys + 1), "more than 1000 keys"}));

INSTANTIATE_TEST_SUITE_P(
    OfItsErrors, RejectedLine,
    ::testing::Values(
        Reject{R"({"call":"error:","object":null})", "\"error\" of error: is missing"},
        Reject{R"({"call":"warning:","object":1})", "must be a string, null or an error"},
        Reject{R"({"call":"warning:","object":[]})", "must be a string, null or an error"},
        Reject{R"({"call":"error:","error":{}})", "must be a string, null or an error"},
        Reject{R"({"call":"error:","error":{"domain":"d","code":1}})", "an error"},
        Reject{R"({"call":"error:","error":{"domain":"d","code":1,"userInfo":null}})", "null"},
        Reject{R"({"call":"error:","error":{"domain":"d","code":1.5,"userInfo":{}}})", "code"},
        Reject{R"({"call":"error:","error":{"domain":1,"code":1,"userInfo":{}}})", "domain"},
        Reject{R"({"call":"error:","error":{"domain":"d","code":1,"userInfo":{"a":1.5}}})",
               "userInfo"},
        Reject{R"({"call":"error:","error":{"domain":"d","code":1,"userInfo":{"a":{}}}})",
               "userInfo"},
        Reject{R"({"call":"error:","error":{"domain":"d","code":1,"userInfo":{},"x":1}})",
               "an error"}));

TEST(CallLogReader, TellsTheColumnOfBadJSON) {
    SpyReceiver receiver;
    const auto fault = readLog(R"({"call":newTrackSegment})", receiver);
    ASSERT_NE(fault, nullptr);
    EXPECT_EQ(fault->integer(callLogErrorLine), 1);
    EXPECT_EQ(fault->integer(callLogErrorColumn), 10);
}

TEST(CallLogReader, ALineBeyondTheLimitIsAFault) {
    SpyReceiver receiver;
    const auto fault = readLog("{\"call\":\"newTrackSegment\"}\n" +
                                   std::string(callLogLimits::lineSize + 1, ' ') + "\n",
                               receiver);
    ASSERT_NE(fault, nullptr);
    EXPECT_EQ(fault->integer(callLogErrorLine), 2);
    EXPECT_THAT(fault->localizedDescription(), HasSubstr("longer than 16777216 bytes"));
    EXPECT_THAT(receiver.names(), ElementsAre("newTrackSegment"));
}

TEST(CallLogReader, AnErrorTellsTheWholeStory) {
    const testing::TemporaryFolder folder;
    const std::string path = folder.write("bad.jsonl", "\n{\"call\":nothing}\n");
    SpyReceiver receiver;
    const ErrorPtr error = CallLogReader(receiver).processFile(path);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error->code(), NSFileReadCorruptFileError);
    EXPECT_EQ(std::get<std::string>(*error->find(NSFilePathErrorKey)), path);
    EXPECT_EQ(error->integer(callLogErrorLine), 2);
    EXPECT_EQ(error->integer(callLogErrorColumn), 10);
}

TEST(CallLogReader, ReadsALogInMemory) {
    const std::string log =
        "\n{\"call\":\"newTrackSegment\"}\n{\"call\":\"endTransfer:\",\"kind\":1}";
    SpyReceiver receiver;
    CallLogReader reader(receiver);
    EXPECT_EQ(reader.processText(log), nullptr);
    EXPECT_THAT(receiver.names(), ElementsAre("newTrackSegment", "endTransfer 1"));
    EXPECT_EQ(reader.readingProgress().position, log.size());
    EXPECT_EQ(reader.readingProgress().size, log.size());

    const ErrorPtr error = reader.processText(log + "\nx");
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->integer(callLogErrorLine), 4);
    const std::string longLine(callLogLimits::lineSize + 1, ' ');
    EXPECT_NE(reader.processText(longLine), nullptr);
}

TEST(CallLogReader, RefusesAPathThatHoldsANUL) {
    const testing::TemporaryFolder folder;
    std::string path = folder.write("log", "{\"call\":\"newTrackSegment\"}\n");
    path.append("\0.jsonl", 7);
    SpyReceiver receiver;
    const ErrorPtr error = CallLogReader(receiver).processFile(path);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), EINVAL);
    EXPECT_THAT(receiver.names(), IsEmpty());
}

TEST(CallLogReader, TellsHowFarItHasRead) {
    /// Looks at each call how far the reader is.
    class Watch : public NullReceiver {
      public:
        CallLogReader *reader = nullptr;
        std::uint64_t before = 0;
        int calls = 0;
        void newTrackSegment() override {
            const ReadingProgress progress = reader->readingProgress();
            EXPECT_GE(progress.position, before);
            EXPECT_LE(progress.position, *progress.size);
            before = progress.position;
            ++calls;
        }
    } receiver;
    std::string log;
    for (int i = 0; i < 20'000; ++i) {
        log += "{\"call\":\"newTrackSegment\"}\n";
    }
    const testing::OpenText file(log);
    CallLogReader reader(receiver);
    receiver.reader = &reader;
    EXPECT_EQ(reader.processDescriptor(file.descriptor()), nullptr);
    EXPECT_EQ(receiver.calls, 20'000);
    EXPECT_EQ(reader.readingProgress().size, log.size());
    EXPECT_EQ(reader.readingProgress().position, log.size());
}

/// Requests a stop at a call.
class StoppingReceiver : public SpyReceiver {
  public:
    std::stop_source stop;
    void newTrackSegment() override {
        SpyReceiver::newTrackSegment();
        stop.request_stop();
    }
};

TEST(CallLogReader, MakesNoCallBehindAStopButTheEndOfTheTransfer) {
    StoppingReceiver receiver;
    CallLogReader reader(receiver);
    reader.setStopToken(receiver.stop.get_token());
    const ErrorPtr error =
        reader.processText("{\"call\":\"startTransfer:kind:extra:\",\"kind\":1,\"extra\":null}\n"
                           "{\"call\":\"newTrackSegment\"}\n{\"call\":\"newTrackSegment\"}\nbad\n");
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error->code(), NSUserCancelledError);
    EXPECT_THAT(receiver.names(),
                ElementsAre("startTransfer 1", "newTrackSegment", "endTransfer 1"));
}

TEST(CallLogReader, AStopOutsideATransferEndsNone) {
    StoppingReceiver receiver;
    CallLogReader reader(receiver);
    reader.setStopToken(receiver.stop.get_token());
    EXPECT_NE(
        reader.processText("{\"call\":\"endTransfer:\",\"kind\":1}\n"
                           "{\"call\":\"newTrackSegment\"}\n{\"call\":\"newTrackSegment\"}\n"),
        nullptr);
    EXPECT_THAT(receiver.names(), ElementsAre("endTransfer 1", "newTrackSegment"));
}

TEST(CallLogReader, AStopEndsTheWaitingForAPipe) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
    SpyReceiver receiver;
    std::stop_source stop;
    std::thread stopping;
    CallLogReader reader(receiver);
    reader.setStopToken(stop.get_token());
    reader.setSourcePaused([&] { stopping = std::thread([&] { stop.request_stop(); }); });
    const ErrorPtr error = reader.processDescriptor(pipe[0]);
    stopping.join();
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), NSUserCancelledError);
    ::close(pipe[0]);
    ::close(pipe[1]);
}

TEST(CallLogReader, TellsWhenAPipePauses) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
    const std::string line = "{\"call\":\"newTrackSegment\"}\n";
    SpyReceiver receiver;
    std::vector<std::size_t> calls; // that were made at each pause
    CallLogReader reader(receiver);
    reader.setSourcePaused([&] {
        calls.push_back(receiver.calls.size());
        if (calls.size() < 4) {
            EXPECT_EQ(::write(pipe[1], line.data(), line.size()),
                      static_cast<ssize_t>(line.size()));
        } else {
            ::close(pipe[1]);
        }
    });
    EXPECT_EQ(reader.processDescriptor(pipe[0]), nullptr);
    ::close(pipe[0]);
    EXPECT_THAT(calls, ElementsAre(0U, 1U, 2U, 3U));
}

TEST(LooksLikeCallLog, IsTrueOfLogs) {
    EXPECT_TRUE(looksLikeCallLog("{\"call\":\"newTrackSegment\"}\n"));
    EXPECT_TRUE(looksLikeCallLog("\n \t\r\n{ \"kind\":1, \"call\" : \"endTransfer:\"}"));
    EXPECT_TRUE(looksLikeCallLog("\xEF\xBB\xBF{\"call\":\"newTr"));
}

TEST(LooksLikeCallLog, IsFalseOfOthers) {
    for (const char *text :
         {"", "\n", "{", "{}", "{\"call\"}", "{\n\"call\":1}", "[{\"call\":\"newTrackSegment\"}]",
          "{\"type\":\"FeatureCollection\"}", "<gpx/>", "$GPGLL,4916.45,N,12311.12,W",
          "{\"type\":1}\n{\"call\":\"newTrackSegment\"}\n"}) {
        EXPECT_FALSE(looksLikeCallLog(text)) << text;
    }
}

TEST(CallLogReader, AFileThatCannotBeReadIsAFault) {
    SpyReceiver receiver;
    const auto fault = CallLogReader(receiver).processDescriptor(-1);
    ASSERT_NE(fault, nullptr);
    EXPECT_THAT(fault->localizedDescription(), HasSubstr("Bad file descriptor"));
    EXPECT_THAT(receiver.calls, IsEmpty());
}

} // namespace
} // namespace pelluvia
