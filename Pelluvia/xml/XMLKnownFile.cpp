// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/XMLKnownFile.h>

#include <Pelluvia/xml/internal/KnownContent.h>

#include <utility>

namespace pelluvia {

XMLKnownFile::XMLKnownFile(std::shared_ptr<const xml::KnownContent> content) noexcept
    : content_(std::move(content)) {}

bool XMLKnownFile::isUsual() const noexcept {
    return content_ != nullptr && content_->isUsual;
}

const std::shared_ptr<const xml::KnownContent> &XMLKnownFile::content() const noexcept {
    return content_;
}

} // namespace pelluvia
