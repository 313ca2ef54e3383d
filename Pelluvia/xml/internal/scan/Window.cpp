// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/Bytes.h>
#include <Pelluvia/xml/internal/scan/Window.h>

#include <cstring>

namespace pelluvia::xml::scan {

namespace {

// What the input asks for at least, see there.
constexpr std::size_t leastRoom = 16;

} // namespace

// Not value-initialised: a small file should not pay for touching the whole buffer.
Window::Window(Input &input, std::size_t size)
    : input_(input),
      size_(size),
      buffer_(new char[size + padding]),
      cursor_(buffer_.get()),
      end_(cursor_) {
    std::memset(end_, 0, padding);
}

bool Window::more() {
    char *const begin = buffer_.get();
    const auto kept = static_cast<std::size_t>(end_ - cursor_);
    passed_ += static_cast<std::uint64_t>(cursor_ - begin);
    std::memmove(begin, cursor_, kept);
    const std::size_t room = size_ - kept;
    const std::size_t added = room >= leastRoom && !atEnd_ ? input_.read(begin + kept, room) : 0;
    atEnd_ = atEnd_ || (room >= leastRoom && added == 0);
    cursor_ = begin;
    end_ = begin + kept + added;
    std::memset(end_, 0, padding);
    return added != 0;
}

} // namespace pelluvia::xml::scan
