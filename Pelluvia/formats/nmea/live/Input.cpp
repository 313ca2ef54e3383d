#include <Pelluvia/formats/nmea/live/Input.h>

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pelluvia::nmea {

namespace {

std::error_code errorOf(int number) noexcept {
    return {number, std::generic_category()};
}

/// The descriptor, or -1 and the reason. Without blocking: the writer of a named pipe is waited for
/// in `poll`, where an interrupt is seen, and a serial line must neither wait for a modem nor
/// become the terminal that controls us.
int openForReading(const std::string &path, std::error_code &error) {
    int descriptor = -1;
    do {
        descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) {
        error = errorOf(errno);
    }
    return descriptor;
}

bool isCharacterDevice(int descriptor) noexcept {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISCHR(status.st_mode);
}

} // namespace

std::unique_ptr<Input> Input::open(const std::string &path, long baud, int wakeUp,
                                   std::error_code &error) {
    error.clear();
    if (path == "-") {
        return std::unique_ptr<Input>(new Input(STDIN_FILENO, false, wakeUp));
    }
    const int descriptor = openForReading(path, error);
    if (descriptor < 0) {
        return nullptr;
    }
    std::unique_ptr<Input> input(new Input(descriptor, true, wakeUp));
    if (isCharacterDevice(descriptor)) {
        // Any other than a terminal may give bytes without end, and none that a receiver sent.
        input->port_ = SerialPort::setUp(descriptor, baud, error);
        if (input->port_ == nullptr) {
            return nullptr;
        }
    }
    return input;
}

Input::Input(int descriptor, bool isOwned, int wakeUp) noexcept
    : descriptor_(descriptor), isOwned_(isOwned), wakeUp_(wakeUp) {
    struct stat status {};
    isLive_ = ::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode);
}

Input::~Input() {
    port_.reset(); // needs the descriptor
    if (isOwned_) {
        ::close(descriptor_);
    }
}

Input::Result Input::read(std::span<char> buffer, std::size_t &size) {
    for (;;) {
        Result result = Result::Bytes;
        if (!wait(result)) {
            return result;
        }
        const ssize_t count = ::read(descriptor_, buffer.data(), buffer.size());
        if (count > 0) {
            size = static_cast<std::size_t>(count);
            return Result::Bytes;
        }
        if (count == 0) {
            // A file ends; a receiver does not, its line was cut.
            return port_ != nullptr ? fail(EIO) : Result::End;
        }
        if (errno != EINTR && errno != EAGAIN) {
            return fail(errno);
        }
    }
}

/// Until there is something to read. False when there never will be; `result` then says why.
bool Input::wait(Result &result) {
    std::array<pollfd, 2> asked = {pollfd{.fd = descriptor_, .events = POLLIN, .revents = 0},
                                   pollfd{.fd = wakeUp_, .events = POLLIN, .revents = 0}};
    while (::poll(asked.data(), asked.size(), -1) < 0) {
        if (errno != EINTR && errno != EAGAIN) {
            result = fail(errno);
            return false;
        }
    }
    if (asked[1].revents != 0) {
        result = Result::Interrupted;
        return false;
    }
    // A line that has hung up, or is broken, says so when it is read.
    return true;
}

Input::Result Input::fail(int number) {
    failure_ = errorOf(number);
    return port_ != nullptr ? Result::Lost : Result::Failed;
}

} // namespace pelluvia::nmea
