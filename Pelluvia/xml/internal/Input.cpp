// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/Input.h>

#include <Pelluvia/xml/XMLErrors.h>

#include <algorithm>
#include <cstring>

namespace pelluvia::xml {

namespace {

// Large enough that system calls do not show, small enough to stay in the cache.
constexpr std::size_t bufferSize = 64 * 1024;
// An XML declaration that says its encoding later than this is not found.
constexpr std::size_t declarationSize = 1024;
// No character, and nothing that a conversion may hold back, takes more than this.
constexpr std::size_t leastRoom = 16;

} // namespace

// Not value-initialised: a small file should not pay for touching the whole buffer.
Input::Input(Source &source) : source_(source), buffer_(new char[bufferSize]) {}

bool Input::begin() {
    while (unread_.size() < declarationSize && fill()) {
    }
    encoding_ = detectEncoding(unread_);
    unread_.remove_prefix(encoding_.markSize);
    if (!encoding_.name.empty() && !encoding_.failure) {
        converter_ = Converter::open(encoding_.name);
        if (!converter_) {
            encoding_.failure =
                Failure{xmlErrors::unknownEncoding, "Unsupported encoding " + encoding_.name};
        }
    }
    if (encoding_.failure) {
        failure_ = encoding_.failure;
    }
    return !encoding_.failure;
}

/// Reads once behind what is unread. False when nothing was added.
bool Input::fill() {
    if (sourceEnded_) {
        return false;
    }
    if (!unread_.empty()) {
        std::memmove(buffer_.get(), unread_.data(), unread_.size());
    }
    const std::size_t kept = unread_.size();
    const std::size_t added = readSource(buffer_.get() + kept, bufferSize - kept);
    unread_ = std::string_view(buffer_.get(), kept + added);
    return added != 0;
}

std::size_t Input::readSource(char *to, std::size_t room) {
    const ssize_t count = sourceEnded_ ? 0 : source_.read(to, room);
    sourceEnded_ = count <= 0;
    if (count < 0) {
        failure_ = Failure{xmlErrors::unreadable,
                           "The file cannot be read: " + systemReason(static_cast<int>(-count))};
    }
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::size_t Input::read(char *to, std::size_t room) {
    std::size_t size = 0;
    while (room - size >= leastRoom && !finished_) {
        char *const piece = to + size;
        const std::size_t added =
            converter_ ? convert(piece, room - size) : copy(piece, room - size);
        size += unifyLineEnds(piece, added);
    }
    delivered_ += size;
    return size;
}

std::size_t Input::copy(char *to, std::size_t room) {
    if (unread_.empty()) {
        const std::size_t size = readSource(to, room);
        finished_ = size == 0;
        return size;
    }
    const std::size_t size = std::min(room, unread_.size());
    std::memcpy(to, unread_.data(), size);
    unread_.remove_prefix(size);
    return size;
}

std::size_t Input::convert(char *to, std::size_t room) {
    std::size_t size = 0;
    auto outcome = Converter::Outcome::done;
    if (!unread_.empty()) {
        outcome = converter_->convert(unread_, to, room, size);
    }
    if (outcome == Converter::Outcome::invalid) {
        finished_ = true;
        failure_ = Failure{xmlErrors::notInEncoding, "Input is not proper " + encoding_.name};
    } else if (outcome != Converter::Outcome::full && !fill()) {
        if (!unread_.empty()) {
            finished_ = true;
            failure_ = failure_.value_or(Failure{
                xmlErrors::notInEncoding, "Input ends within a character of " + encoding_.name});
        } else if (room - size >= leastRoom) {
            finished_ = true;
            static_cast<void>(converter_->finish(to, room, size));
        }
    }
    return size;
}

std::size_t Input::unifyLineEnds(char *text, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    char *const end = text + size;
    char *from = text;
    if (endedWithReturn_ && *from == '\n') {
        ++from;
    }
    endedWithReturn_ = end[-1] == '\r';
    char *to = text;
    while (from != end) {
        auto *found =
            static_cast<char *>(std::memchr(from, '\r', static_cast<std::size_t>(end - from)));
        char *const stop = found != nullptr ? found : end;
        if (to != from) {
            std::memmove(to, from, static_cast<std::size_t>(stop - from));
        }
        to += stop - from;
        from = stop;
        if (from != end) {
            *to++ = '\n';
            from += from + 1 != end && from[1] == '\n' ? 2 : 1;
        }
    }
    return static_cast<std::size_t>(to - text);
}

} // namespace pelluvia::xml
