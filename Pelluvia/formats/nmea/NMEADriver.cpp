// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/NMEADriver.h>

#include <Pelluvia/formats/internal/Errors.h>
#include <Pelluvia/formats/internal/SourceProgress.h>
#include <Pelluvia/formats/internal/StoppableReceiver.h>
#include <Pelluvia/formats/nmea/live/Input.h>
#include <Pelluvia/formats/nmea/live/LiveView.h>
#include <Pelluvia/formats/nmea/live/SerialPort.h>
#include <Pelluvia/formats/nmea/read/Decoder.h>
#include <Pelluvia/formats/nmea/read/Fields.h>
#include <Pelluvia/formats/nmea/read/LineSplitter.h>
#include <Pelluvia/formats/nmea/read/Sentence.h>

#include <Pelluvia/nmea/NMEAUtils.h>
#include <Pelluvia/text/Text.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace pelluvia {

namespace {

using formats::SourceProgress;
using formats::StoppableReceiver;
using nmea::Input;

constexpr std::size_t blockSize = std::size_t{64} * 1024;

/// One source on its way from bytes to calls.
class Run {
  public:
    Run(GPSOutputReceiver &receiver, const std::stop_token &token,
        const nmea::DecoderOptions &options)
        : calls_(receiver, token), decoder_(calls_, options) {}

    /// The next bytes of the source.
    void take(std::string_view bytes) {
        splitter_.feed(bytes, [this](std::string_view line, nmea::LineEnd end) { use(line, end); });
    }
    /// What there is of the last line is a line.
    void takeRest() {
        splitter_.finish([this](std::string_view line, nmea::LineEnd end) { use(line, end); });
    }
    /// Sends what is still under way.
    void finish() {
        if (!calls_.hasStopped()) {
            decoder_.finish();
        }
    }

    [[nodiscard]] StoppableReceiver &calls() noexcept { return calls_; }
    [[nodiscard]] const nmea::Epoch &current() const noexcept { return decoder_.current(); }
    [[nodiscard]] NMEATally tally() const {
        NMEATally tally = decoder_.tally();
        tally.tooLong = splitter_.droppedLines();
        return tally;
    }

  private:
    void use(std::string_view line, nmea::LineEnd end) {
        // What comes behind a stop must not be counted either.
        if (!calls_.wasStopped()) {
            decoder_.addLine(line, end);
        }
    }

    StoppableReceiver calls_;
    nmea::LineSplitter splitter_;
    nmea::Decoder decoder_;
};

NMEAEnding endingOf(Input::Result result) noexcept {
    switch (result) {
    case Input::Result::Interrupted:
        return NMEAEnding::Interrupted;
    case Input::Result::Stopped:
        return NMEAEnding::Stopped;
    case Input::Result::Lost:
        return NMEAEnding::Lost;
    case Input::Result::Failed:
        return NMEAEnding::Unreadable;
    case Input::Result::Bytes:
    case Input::Result::End:
        break;
    }
    return NMEAEnding::Complete;
}

std::string problemOf(NMEAEnding ending, const std::error_code &error) {
    if (error == std::errc::inappropriate_io_control_operation) {
        return "cannot be opened: a device, but not a serial line";
    }
    const std::string_view what = ending == NMEAEnding::Lost        ? "the receiver was lost: "
                                  : ending == NMEAEnding::NotOpened ? "cannot be opened: "
                                                                    : "cannot be read: ";
    return std::string(what) + error.message();
}

/// Whether nothing but a sentence looks like this line.
bool isSurelySentence(std::string_view line) {
    line.remove_prefix(leadingWhiteSpace(line));
    line.remove_suffix(trailingWhiteSpace(line));
    // Longer ones are rare, and would be logged.
    if (line.size() > NMEAUtils::longestSentence) {
        return false;
    }
    nmea::Sentence sentence;
    if (sentence.read(line) != nmea::LineKind::Sentence) {
        return false;
    }
    constexpr std::size_t shortest = std::string_view("$GPGGA*00").size();
    const bool hasChecksum = line.size() >= shortest && line[line.size() - 3] == '*';
    return hasChecksum || sentence.type() != nmea::SentenceType::Other;
}

} // namespace

struct NMEADriverState {
    explicit NMEADriverState(GPSOutputReceiver &target) noexcept : receiver(target) {}

    GPSOutputReceiver &receiver;
    nmea::DecoderOptions options;
    long baudRate = NMEADriver::standardBaudRate;
    std::stop_token stopToken;
    int endDescriptor = -1;
    std::function<void()> sourcePaused;
    std::function<void(std::string_view)> writeStatus;

    NMEAEnding ending = NMEAEnding::Complete;
    NMEATally tally;
    SourceProgress progress;

    ErrorPtr process(Input &input, const std::string &path);
    NMEAEnding decode(Input &input, Run &run);
    ErrorPtr finish(Run &run, NMEAEnding how);
};

NMEADriver::NMEADriver(GPSOutputReceiver &receiver)
    : state_(std::make_unique<NMEADriverState>(receiver)) {}
NMEADriver::~NMEADriver() = default;

void NMEADriver::setDay(std::optional<std::int64_t> day) noexcept {
    state_->options.day = day;
}
void NMEADriver::setLongestGap(std::int64_t seconds) noexcept {
    state_->options.longestGap = seconds;
}
void NMEADriver::setBaudRate(long rate) noexcept {
    state_->baudRate = rate;
}
void NMEADriver::setStopToken(std::stop_token token) {
    state_->stopToken = std::move(token);
}
void NMEADriver::setEndDescriptor(int descriptor) noexcept {
    state_->endDescriptor = descriptor;
}
void NMEADriver::setSourcePaused(std::function<void()> sourcePaused) {
    state_->sourcePaused = std::move(sourcePaused);
}
void NMEADriver::setStatusLine(std::function<void(std::string_view)> write) {
    state_->writeStatus = std::move(write);
}

NMEAEnding NMEADriver::ending() const noexcept {
    return state_->ending;
}
const NMEATally &NMEADriver::tally() const noexcept {
    return state_->tally;
}
ReadingProgress NMEADriver::readingProgress() const {
    return state_->progress.progress();
}

bool NMEADriver::isBaudRate(long rate) noexcept {
    return nmea::isBaudRate(rate);
}

std::optional<std::int64_t> NMEADriver::dayOf(std::string_view text) noexcept {
    constexpr std::size_t length = 10; // YYYY-MM-DD
    if (text.size() != length || text[4] != '-' || text[7] != '-') {
        return std::nullopt;
    }
    return nmea::readDate(text.substr(8), text.substr(5, 2), text.substr(0, 4));
}

ErrorPtr NMEADriver::processFile(const std::string &path) {
    formats::SourceWait wait(state_->endDescriptor, state_->stopToken, state_->sourcePaused);
    std::error_code error;
    const auto input = Input::open(path, state_->baudRate, wait, error);
    if (input == nullptr) {
        state_->ending = NMEAEnding::NotOpened;
        state_->tally = {};
        state_->progress = {};
        return formats::systemError(error, problemOf(state_->ending, error), path);
    }
    return state_->process(*input, path);
}

ErrorPtr NMEADriver::processDescriptor(int descriptor) {
    formats::SourceWait wait(state_->endDescriptor, state_->stopToken, state_->sourcePaused);
    return state_->process(*Input::borrow(descriptor, wait), "");
}

ErrorPtr NMEADriver::processText(std::string_view log) {
    Run run(state_->receiver, state_->stopToken, state_->options);
    state_->progress = SourceProgress(log.size());
    while (!log.empty() && !run.calls().hasStopped()) {
        const std::string_view block = log.substr(0, blockSize);
        log.remove_prefix(block.size());
        state_->progress.add(block.size());
        run.take(block);
        state_->tally = run.tally();
    }
    run.takeRest();
    return state_->finish(run, NMEAEnding::Complete);
}

ErrorPtr NMEADriverState::process(Input &input, const std::string &path) {
    Run run(receiver, stopToken, options);
    progress = SourceProgress(input.descriptor());
    const NMEAEnding how = decode(input, run);
    // A line that was interrupted is only half there.
    if (how == NMEAEnding::Complete) {
        run.takeRest();
    }
    ErrorPtr error;
    if (input.failure()) {
        error = formats::systemError(input.failure(), problemOf(how, input.failure()), path);
        run.calls().error(error);
    }
    const ErrorPtr stopped = finish(run, how);
    return stopped != nullptr ? stopped : error;
}

/// Decodes until nothing comes any more; says why.
NMEAEnding NMEADriverState::decode(Input &input, Run &run) {
    std::optional<nmea::LiveView> view;
    if (writeStatus && input.isLive()) {
        view.emplace(writeStatus);
    }
    std::vector<char> buffer(blockSize);
    Input::Result result = Input::Result::Bytes;
    while (result == Input::Result::Bytes && !run.calls().hasStopped()) {
        std::size_t size = 0;
        result = input.read(buffer, size);
        if (result == Input::Result::Bytes) {
            progress.add(size);
            run.take({buffer.data(), size});
            tally = run.tally();
            if (view) {
                view->show(tally, run.current());
            }
        }
    }
    if (view) {
        view->clear();
    }
    return endingOf(result);
}

/// The error of a stop, or null.
ErrorPtr NMEADriverState::finish(Run &run, NMEAEnding how) {
    run.finish();
    tally = run.tally();
    const bool wasStopped = run.calls().wasStopped();
    ending = wasStopped ? NMEAEnding::Stopped : how;
    return wasStopped ? formats::stopError() : nullptr;
}

bool looksLikeNMEA(std::string_view beginning) {
    while (!beginning.empty()) {
        const std::size_t length = std::min(beginning.find_first_of("\r\n"), beginning.size());
        if (isSurelySentence(beginning.substr(0, length))) {
            return true;
        }
        beginning.remove_prefix(std::min(length + 1, beginning.size()));
    }
    return false;
}

} // namespace pelluvia
