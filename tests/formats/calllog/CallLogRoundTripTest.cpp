// SPDX-License-Identifier: MIT

#include <tests/formats/calllog/CallLogs.h>
#include <tests/support/ExpectOrdered.h>

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/values/Array.h>

#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <tests/support/Chance.h>

namespace pelluvia {
namespace {

using testing::rewrittenLog;
using testing::writtenLog;

/// Makes calls with arguments of every kind that a log can show.
class RandomCalls {
  public:
    explicit RandomCalls(std::uint32_t seed) : random_(seed) {}

    void make(GPSOutputReceiver &receiver) {
        const Dictionary extra = dictionary(0);
        const Dictionary *argument = below(5) == 0 ? nullptr : &extra;
        switch (below(17)) {
        case 0:
            return receiver.newTrackSegment();
        case 1:
            return receiver.newTrack(argument);
        case 2:
            return receiver.newRoute(argument);
        case 3:
            return receiver.trackPoint(point(), argument);
        case 4:
            return receiver.wayPoint(point(), argument);
        case 5:
            return receiver.routePoint(point(), argument);
        case 6:
            return receiver.poiPoint(point(), argument);
        case 7:
            return receiver.lapInfoStart(point(), point(), argument);
        case 8:
            return receiver.startTransfer(nullptr, int32(), argument);
        case 9:
            return receiver.endTransfer(int32());
        case 10:
            return receiver.currentPosition(point(), int32());
        case 11:
            return receiver.warning(report());
        case 12:
            return receiver.error(report());
        case 13:
            return receiver.gpsStateChange(int32());
        case 14:
            return receiver.startSending(nullptr, int32(), argument);
        case 15:
            return receiver.sendProgress(int32());
        default:
            return receiver.endSending(int32());
        }
    }

  private:
    std::size_t below(std::size_t limit) { return random_() % limit; }
    int int32() { return std::bit_cast<int>(static_cast<std::uint32_t>(random_())); }
    std::int64_t int64() {
        return std::bit_cast<std::int64_t>(random_()) >> static_cast<int>(below(64));
    }

    double real() {
        switch (below(4)) {
        case 0:
            return std::bit_cast<double>(random_()); // all exponents, NaN and infinity among them
        case 1:
            return static_cast<double>(int64());
        case 2:
            return std::ldexp(1.0, static_cast<int>(below(200)) - 100);
        default:
            return static_cast<double>(int64()) / 1e6;
        }
    }
    float single() {
        return below(2) == 0 ? std::bit_cast<float>(static_cast<std::uint32_t>(random_()))
                             : static_cast<float>(real());
    }

    std::string text() {
        constexpr auto pieces = std::to_array<std::string_view>(
            {"a", "real", "NaN", "latitude", "\"", "\\", "/", "\n", "\x01", "\x7F", "\xC3\xBC",
             "\xE2\x80\xA8", "\xF0\x9F\x9A\xB2", "\xEF\xBF\xBD", "{}", ","});
        std::string result;
        for (std::size_t count = below(4); count > 0; --count) {
            result += pieces[below(pieces.size())];
        }
        return below(20) == 0 ? result + std::string(1, '\0') : result;
    }

    GPSPoint point() { return {real(), real(), real(), int64(), int64()}; }

    Value value(std::size_t depth) {
        switch (below(depth < 6 ? 9 : 6)) {
        case 0:
            return Value(int64());
        case 1:
            return Value(int32());
        case 2:
            return Value(real());
        case 3:
            return Value(single());
        case 4:
            return Value(std::string_view(text()));
        case 5:
            return Value::wrapping(point());
        case 6:
            return lookAlike();
        case 7: {
            const auto array = Ref<Array>::make();
            for (std::size_t count = below(4); count > 0; --count) {
                array->append(value(depth + 1));
            }
            return Value(array);
        }
        default:
            return Value(Ref<Dictionary>::make(dictionary(depth + 1)));
        }
    }

    /// Dictionaries that look like the texts of other values.
    Value lookAlike() {
        const auto object = Ref<Dictionary>::make();
        if (below(2) == 0) {
            object->set(Key("real"), Value(below(2) == 0 ? "NaN" : "Infinite"));
            return Value(object);
        }
        for (const char *name : {"latitude", "longitude", "altitude", "time", "test"}) {
            object->set(Key(name), below(6) == 0 ? Value(int64()) : Value(0.5));
        }
        return Value(object);
    }

    Dictionary dictionary(std::size_t depth) {
        Dictionary result;
        if (below(10) == 0) {
            result.set(Key("real"), Value("NaN")); // also where an argument looks like a number
            return result;
        }
        for (std::size_t count = below(6); count > 0; --count) {
            result.set(below(2) == 0 ? extras::name : Key(text()), value(depth + 1));
        }
        return result;
    }

    ErrorPtr error(std::size_t depth) {
        ErrorInfo info;
        for (std::size_t count = below(4); count > 0; --count) {
            switch (below(depth < 4 ? 3 : 2)) {
            case 0:
                info.emplace_back(text(), text());
                break;
            case 1:
                info.emplace_back(text(), int64());
                break;
            default:
                info.emplace_back(std::string(NSUnderlyingErrorKey), error(depth + 1));
            }
        }
        return Error::make(text(), int64(), std::move(info));
    }

    Report report() {
        switch (below(3)) {
        case 0:
            return {};
        case 1:
            return text();
        default:
            return error(0);
        }
    }

    testing::Chance random_;
};

TEST(CallLogRoundTrip, WhatWasWrittenIsWrittenAgainByteForByte) {
    for (std::uint32_t seed = 1; seed <= 50; ++seed) {
        const std::string log = writtenLog([seed](CallLogWriter &writer) {
            RandomCalls calls(seed);
            for (int i = 0; i < 400; ++i) {
                calls.make(writer);
            }
        });
        ASSERT_EQ(rewrittenLog(log), log) << "seed " << seed;
    }
}

TEST(CallLogRoundTrip, A32BitFloatComesBackAsTheSameDigits) {
    testing::Chance random(7);
    const std::string log = writtenLog([&random](CallLogWriter &writer) {
        Dictionary extra;
        for (int i = 0; i < 20'000; ++i) {
            extra.set(extras::speed,
                      Value(std::bit_cast<float>(static_cast<std::uint32_t>(random()))));
            writer.newTrack(&extra);
        }
    });
    EXPECT_EQ(rewrittenLog(log), log);
}

TEST(CallLogRoundTrip, CallsThatCameInOrderAreReadInOrder) {
    const std::string log = writtenLog([](CallLogWriter &writer) {
        writer.startTransfer(nullptr, transferKind::routes, nullptr);
        writer.newRoute(nullptr);
        writer.routePoint({}, nullptr);
        writer.endTransfer(transferKind::routes);
        writer.startTransfer(nullptr, transferKind::tracks, nullptr);
        writer.newTrack(nullptr);
        writer.newTrackSegment();
        writer.trackPoint({}, nullptr);
        writer.endTransfer(transferKind::tracks);
        writer.gpsStateChange(gpsState::finished);
    });
    OrderChecker checker;
    EXPECT_FALSE(testing::readLog(log, checker));
    testing::expectOrdered(checker);
    EXPECT_EQ(checker.calls(), 10U);
}

} // namespace
} // namespace pelluvia
