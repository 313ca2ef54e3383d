#pragma once

#include <Pelluvia/formats/nmea/live/SerialPort.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <system_error>

namespace pelluvia::nmea {

/// Where sentences come from: a file, a pipe, standard input, or a receiver on a serial device.
///
/// Threads: one at a time; whoever interrupts it writes to the wake-up descriptor from anywhere, a
/// signal handler too.
class Input {
  public:
    /// How an attempt to read ended.
    enum class Result {
        Bytes,       ///< there are some
        End,         ///< of the file, or the writer of the pipe has closed it
        Interrupted, ///< the wake-up descriptor is readable
        Lost,        ///< the device has hung up, or is not there any more
        Failed       ///< it cannot be read; see `failure`
    };

    /// Opens the path; "-" is standard input, as it is. A device must be a serial line, which is
    /// set to `baud` bits a second; for files and pipes the rate has no meaning. `wakeUp` is
    /// borrowed: a descriptor that becomes, and stays, readable when reading is to stop, or -1.
    ///
    /// Null when it cannot be opened; `error` then says why. Opening never waits: not for the
    /// writer of a named pipe, nor for a modem.
    [[nodiscard]] static std::unique_ptr<Input> open(const std::string &path, long baud, int wakeUp,
                                                     std::error_code &error);

    Input(const Input &) = delete;
    Input &operator=(const Input &) = delete;
    ~Input();

    /// Waits for bytes and reads some. On `Bytes`, `size` of them stand at the front of `buffer`.
    [[nodiscard]] Result read(std::span<char> buffer, std::size_t &size);

    /// Why reading ended with `Lost` or `Failed`.
    [[nodiscard]] std::error_code failure() const noexcept { return failure_; }

    /// Whether bytes come as they are made: from anything but a regular file.
    [[nodiscard]] bool isLive() const noexcept { return isLive_; }

  private:
    Input(int descriptor, bool isOwned, int wakeUp) noexcept;
    [[nodiscard]] bool wait(Result &result);
    [[nodiscard]] Result fail(int number);

    int descriptor_;
    bool isOwned_;
    int wakeUp_;
    bool isLive_ = true;
    std::unique_ptr<SerialPort> port_; ///< of a serial device
    std::error_code failure_;
};

} // namespace pelluvia::nmea
