// SPDX-License-Identifier: MIT

#pragma once

#include <memory>
#include <string>
#include <system_error>

#include <termios.h>

namespace pelluvia::nmea {

/// Whether serial ports can be set to so many bits a second: one of the usual rates, 300 to 921600.
[[nodiscard]] bool isBaudRate(long rate) noexcept;

/// The rate that NMEA 0183 prescribes.
inline constexpr long standardBaudRate = 4800;

/// A terminal set up to pass on the bytes of a receiver unchanged: eight bits, no parity, no echo,
/// no signals, no flow control. Its former settings come back when this object goes.
///
/// Threads: one at a time.
class SerialPort {
  public:
    /// Sets up an open terminal, which is borrowed and must stay open. Null when that fails;
    /// `error` then says why. `rate` must be one that `isBaudRate` knows.
    [[nodiscard]] static std::unique_ptr<SerialPort> setUp(int descriptor, long rate,
                                                           std::error_code &error);

    SerialPort(const SerialPort &) = delete;
    SerialPort &operator=(const SerialPort &) = delete;
    ~SerialPort();

  private:
    SerialPort(int descriptor, const termios &former) noexcept
        : descriptor_(descriptor), former_(former) {}

    int descriptor_;
    termios former_;
};

} // namespace pelluvia::nmea
