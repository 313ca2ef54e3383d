// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/calllog/internal/LineReader.h>

#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace pelluvia {

namespace {

constexpr std::size_t chunkSize = std::size_t{64} * 1024;

} // namespace

LineReader::LineReader(int descriptor, std::size_t longestLine, const formats::SourceWait &wait,
                       formats::SourceProgress &progress)
    : descriptor_(descriptor),
      longestLine_(longestLine),
      wait_(wait),
      progress_(progress),
      buffer_(chunkSize, '\0') {}

LineReader::Result LineReader::next(std::string_view &line) {
    for (;;) {
        const std::string_view unsearched(buffer_.data() + searched_, end_ - searched_);
        const std::size_t lineEnd = unsearched.find('\n');
        searched_ = lineEnd != std::string_view::npos ? searched_ + lineEnd : end_;
        if (searched_ - begin_ > longestLine_) {
            return Result::TooLong;
        }
        line = std::string_view(buffer_.data() + begin_, searched_ - begin_);
        if (lineEnd != std::string_view::npos) {
            begin_ = ++searched_;
            return Result::Line;
        }
        const Result result = readMore();
        if (result == Result::End && !line.empty()) {
            begin_ = searched_;
            return Result::Line;
        }
        if (result != Result::Line) {
            return result;
        }
    }
}

/// `Line` means that there is more to search.
LineReader::Result LineReader::readMore() {
    makeRoom();
    ssize_t got = 0;
    do {
        const auto waited = wait_.wait(descriptor_, failure_);
        if (waited != formats::SourceWait::Result::Readable) {
            return waited == formats::SourceWait::Result::Failed ? Result::Failed : Result::Stopped;
        }
        got = ::read(descriptor_, buffer_.data() + end_, buffer_.size() - end_);
    } while (got < 0 && (errno == EINTR || errno == EAGAIN));
    if (got < 0) {
        failure_ = {errno, std::generic_category()};
        return Result::Failed;
    }
    end_ += static_cast<std::size_t>(got);
    progress_.add(static_cast<std::size_t>(got));
    return got > 0 ? Result::Line : Result::End;
}

void LineReader::makeRoom() {
    if (begin_ == end_) {
        begin_ = searched_ = end_ = 0;
    } else if (end_ == buffer_.size()) {
        if (begin_ == 0) {
            buffer_.resize(std::min(2 * buffer_.size(), longestLine_ + chunkSize));
        } else {
            std::copy(buffer_.data() + begin_, buffer_.data() + end_, buffer_.data());
            searched_ -= begin_;
            end_ -= begin_;
            begin_ = 0;
        }
    }
}

} // namespace pelluvia
