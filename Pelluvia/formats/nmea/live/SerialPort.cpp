// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/live/SerialPort.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace pelluvia::nmea {

namespace {

struct Rate {
    long bitsPerSecond;
    speed_t code;
};

constexpr std::array rates = {
    Rate{300, B300},       Rate{600, B600},       Rate{1200, B1200},     Rate{2400, B2400},
    Rate{4800, B4800},     Rate{9600, B9600},     Rate{19200, B19200},   Rate{38400, B38400},
    Rate{57600, B57600},   Rate{115200, B115200}, Rate{230400, B230400}, Rate{460800, B460800},
    Rate{921600, B921600},
};

const Rate *find(long rate) noexcept {
    const auto *const found = std::find_if(
        rates.begin(), rates.end(), [&](const Rate &each) { return each.bitsPerSecond == rate; });
    return found != rates.end() ? found : nullptr;
}

std::error_code lastError() noexcept {
    return {errno, std::generic_category()};
}

} // namespace

bool isBaudRate(long rate) noexcept {
    return find(rate) != nullptr;
}

std::unique_ptr<SerialPort> SerialPort::setUp(int descriptor, long rate, std::error_code &error) {
    const Rate *const known = find(rate);
    if (known == nullptr) {
        error = std::make_error_code(std::errc::invalid_argument);
        return nullptr;
    }
    termios former{};
    if (::tcgetattr(descriptor, &former) != 0) {
        error = lastError();
        return nullptr;
    }
    termios raw = former;
    ::cfmakeraw(&raw);
    // Receivers do not drive the modem lines.
    raw.c_cflag |= CLOCAL | CREAD;
    raw.c_cflag &= ~(static_cast<tcflag_t>(CRTSCTS) | CSTOPB);
    raw.c_cc[VMIN] = 1;
    raw.c_cc[VTIME] = 0;
    if (::cfsetispeed(&raw, known->code) != 0 || ::cfsetospeed(&raw, known->code) != 0 ||
        ::tcsetattr(descriptor, TCSANOW, &raw) != 0) {
        error = lastError();
        return nullptr;
    }
    error.clear();
    return std::unique_ptr<SerialPort>(new SerialPort(descriptor, former));
}

SerialPort::~SerialPort() {
    // A device that is gone has no settings to bring back.
    ::tcsetattr(descriptor_, TCSANOW, &former_);
}

} // namespace pelluvia::nmea
