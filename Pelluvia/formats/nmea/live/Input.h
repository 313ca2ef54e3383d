// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/internal/OpenSource.h>
#include <Pelluvia/formats/internal/SourceWait.h>
#include <Pelluvia/formats/nmea/live/SerialPort.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <system_error>

namespace pelluvia::nmea {

/// Where sentences come from: a file, a pipe, or a receiver on a serial device.
///
/// Threads: one at a time.
class Input {
  public:
    /// How an attempt to read ended.
    enum class Result {
        Bytes,       ///< there are some
        End,         ///< of the file, or the writer of the pipe has closed it
        Interrupted, ///< the host has had enough
        Stopped,     ///< a stop was requested
        Lost,        ///< the device has hung up, or is not there any more
        Failed       ///< it cannot be read; see `failure`
    };

    /// Opens the path. A device must be a serial line, which is set to `baud` bits a second; for
    /// files and pipes the rate has no meaning. `wait` is borrowed.
    ///
    /// Null when it cannot be opened; `error` then says why. Opening never waits: not for the
    /// writer of a named pipe, nor for a modem.
    [[nodiscard]] static std::unique_ptr<Input> open(const std::string &path, long baud,
                                                     const formats::SourceWait &wait,
                                                     std::error_code &error);
    /// Reads an open descriptor as it is. Both arguments are borrowed.
    [[nodiscard]] static std::unique_ptr<Input> borrow(int descriptor,
                                                       const formats::SourceWait &wait);

    Input(const Input &) = delete;
    Input &operator=(const Input &) = delete;
    ~Input() = default;

    /// Waits for bytes and reads some. On `Bytes`, `size` of them stand at the front of `buffer`.
    [[nodiscard]] Result read(std::span<char> buffer, std::size_t &size);

    /// Why reading ended with `Lost` or `Failed`.
    [[nodiscard]] std::error_code failure() const noexcept { return failure_; }

    /// Whether bytes come as they are made: from anything but a regular file.
    [[nodiscard]] bool isLive() const noexcept { return isLive_; }
    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

  private:
    Input(int descriptor, const formats::SourceWait &wait) noexcept;
    [[nodiscard]] Result waitForBytes();
    [[nodiscard]] Result fail(const std::error_code &error);

    std::optional<formats::OpenSource> source_; ///< nothing where the descriptor is borrowed
    int descriptor_;
    bool isLive_ = true;
    const formats::SourceWait &wait_;
    std::unique_ptr<SerialPort> port_; ///< of a serial device; goes before the source is closed
    std::error_code failure_;
};

} // namespace pelluvia::nmea
