// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/live/Input.h>

#include <cerrno>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace pelluvia::nmea {

namespace {

std::error_code errorOf(int number) noexcept {
    return {number, std::generic_category()};
}

bool isCharacterDevice(int descriptor) noexcept {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISCHR(status.st_mode);
}

} // namespace

std::unique_ptr<Input> Input::open(const std::string &path, long baud,
                                   const formats::SourceWait &wait, std::error_code &error) {
    formats::OpenSource source(path, error);
    if (error) {
        return nullptr;
    }
    const int descriptor = source.descriptor();
    std::unique_ptr<Input> input(new Input(descriptor, wait));
    input->source_.emplace(std::move(source));
    if (isCharacterDevice(descriptor)) {
        // Any other than a terminal may give bytes without end, and none that a receiver sent.
        input->port_ = SerialPort::setUp(descriptor, baud, error);
        if (input->port_ == nullptr) {
            return nullptr;
        }
    }
    return input;
}

std::unique_ptr<Input> Input::borrow(int descriptor, const formats::SourceWait &wait) {
    return std::unique_ptr<Input>(new Input(descriptor, wait));
}

Input::Input(int descriptor, const formats::SourceWait &wait) noexcept
    : descriptor_(descriptor), wait_(wait) {
    struct stat status {};
    isLive_ = ::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode);
}

Input::Result Input::read(std::span<char> buffer, std::size_t &size) {
    for (;;) {
        const Result result = waitForBytes();
        if (result != Result::Bytes) {
            return result;
        }
        // A line that has hung up, or is broken, says so when it is read.
        const ssize_t count = ::read(descriptor_, buffer.data(), buffer.size());
        if (count > 0) {
            size = static_cast<std::size_t>(count);
            return Result::Bytes;
        }
        if (count == 0) {
            // A file ends; a receiver does not, its line was cut.
            return port_ != nullptr ? fail(errorOf(EIO)) : Result::End;
        }
        if (errno != EINTR && errno != EAGAIN) {
            return fail(errorOf(errno));
        }
    }
}

Input::Result Input::waitForBytes() {
    std::error_code error;
    switch (wait_.wait(descriptor_, error)) {
    case formats::SourceWait::Result::Ended:
        return Result::Interrupted;
    case formats::SourceWait::Result::Stopped:
        return Result::Stopped;
    case formats::SourceWait::Result::Failed:
        return fail(error);
    case formats::SourceWait::Result::Readable:
        break;
    }
    return Result::Bytes;
}

Input::Result Input::fail(const std::error_code &error) {
    failure_ = error;
    return port_ != nullptr ? Result::Lost : Result::Failed;
}

} // namespace pelluvia::nmea
