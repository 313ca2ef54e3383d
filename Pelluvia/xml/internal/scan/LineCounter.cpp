// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/LineCounter.h>

#include <algorithm>
#include <utility>

namespace pelluvia::xml::scan {

LineCounter::LineCounter(std::unique_ptr<Source> source)
    : source_(std::move(source)), input_(*source_) {
    static_cast<void>(input_.begin()); // without success nothing is read
}

Position LineCounter::at(std::uint64_t offset) {
    while (passed_ < offset) {
        if (unread_.empty()) {
            unread_ = {block_.data(), input_.read(block_.data(), block_.size())};
            if (unread_.empty()) {
                break; // the file has become shorter
            }
        }
        const auto size =
            static_cast<std::size_t>(std::min<std::uint64_t>(unread_.size(), offset - passed_));
        for (const char c : unread_.substr(0, size)) {
            if (c == '\n') {
                ++position_.line;
                position_.column = 1;
            } else {
                const bool continues = (static_cast<unsigned char>(c) & 0xC0U) == 0x80;
                position_.column += continues ? 0 : 1;
            }
        }
        unread_.remove_prefix(size);
        passed_ += size;
    }
    return position_;
}

} // namespace pelluvia::xml::scan
