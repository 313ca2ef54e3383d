#include <Pelluvia/formats/nmea/Driver.h>

#include <Pelluvia/formats/nmea/live/Input.h>
#include <Pelluvia/formats/nmea/read/Fields.h>
#include <Pelluvia/formats/nmea/read/LineSplitter.h>

#include <Pelluvia/values/Error.h>

#include <span>
#include <vector>

namespace pelluvia::nmea {

namespace {

constexpr std::size_t bufferSize = std::size_t{64} * 1024;

/// In the domain of the system's own error numbers.
constexpr std::string_view posixErrorDomain = "NSPOSIXErrorDomain";

Ending endingOf(Input::Result result) noexcept {
    switch (result) {
    case Input::Result::Interrupted:
        return Ending::Interrupted;
    case Input::Result::Lost:
        return Ending::Lost;
    case Input::Result::Failed:
        return Ending::Unreadable;
    case Input::Result::Bytes:
    case Input::Result::End:
        break;
    }
    return Ending::Complete;
}

/// Decodes until nothing comes any more; says why.
Input::Result decode(Input &input, LineSplitter &splitter, Decoder &decoder,
                     const Control &control) {
    const auto use = [&](std::string_view line, LineEnd end) { decoder.addLine(line, end); };
    std::vector<char> buffer(bufferSize);
    for (;;) {
        std::size_t size = 0;
        const Input::Result result = input.read(buffer, size);
        if (result != Input::Result::Bytes) {
            return result;
        }
        splitter.feed({buffer.data(), size}, use);
        if (control.view != nullptr && input.isLive()) {
            control.view->show(decoder.tally(), decoder.current());
        }
        if (control.stop && control.stop()) {
            return Input::Result::Interrupted;
        }
    }
}

std::string problemOf(const Outcome &outcome) {
    if (outcome.error == std::errc::inappropriate_io_control_operation) {
        return "cannot be opened: a device, but not a serial line";
    }
    const std::string_view what = outcome.ending == Ending::Lost        ? "the receiver was lost: "
                                  : outcome.ending == Ending::NotOpened ? "cannot be opened: "
                                                                        : "cannot be read: ";
    return std::string(what) + outcome.error.message();
}

void report(GPSOutputReceiver &receiver, const std::string &path, const Outcome &outcome) {
    receiver.error(Error::make(posixErrorDomain, outcome.error.value(),
                               {{std::string(NSLocalizedDescriptionKey), outcome.problem},
                                {std::string(NSFilePathErrorKey), path}}));
}

} // namespace

Outcome readNMEA(const std::string &path, const DriverOptions &options, GPSOutputReceiver &receiver,
                 const Control &control) {
    Outcome outcome;
    const auto input = Input::open(path, options.baud, control.wakeUp, outcome.error);
    if (input == nullptr) {
        outcome.ending = Ending::NotOpened;
        outcome.problem = problemOf(outcome);
        return outcome;
    }
    LineSplitter splitter;
    Decoder decoder(receiver, options.decoder);
    outcome.ending = endingOf(decode(*input, splitter, decoder, control));
    // A line that was interrupted is only half there.
    if (outcome.ending == Ending::Complete) {
        splitter.finish([&](std::string_view line, LineEnd end) { decoder.addLine(line, end); });
    }
    if (input->failure()) {
        outcome.error = input->failure();
        outcome.problem = problemOf(outcome);
        report(receiver, path, outcome);
    }
    decoder.finish();
    outcome.tally = decoder.tally();
    outcome.tally.tooLong = splitter.droppedLines();
    return outcome;
}

std::optional<std::int64_t> dayOfOption(std::string_view text) noexcept {
    constexpr std::size_t length = 10; // YYYY-MM-DD
    if (text.size() != length || text[4] != '-' || text[7] != '-') {
        return std::nullopt;
    }
    return readDate(text.substr(8), text.substr(5, 2), text.substr(0, 4));
}

} // namespace pelluvia::nmea
