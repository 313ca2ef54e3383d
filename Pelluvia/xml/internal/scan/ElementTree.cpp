// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/XMLLimits.h>
#include <Pelluvia/xml/internal/scan/Bytes.h>
#include <Pelluvia/xml/internal/scan/ElementTree.h>

#include <algorithm>
#include <functional>
#include <optional>

namespace pelluvia::xml::scan {

namespace {

constexpr std::string_view xmlURI = "http://www.w3.org/XML/1998/namespace";
constexpr std::string_view xmlnsURI = "http://www.w3.org/2000/xmlns/";

/// The prefix that an attribute declares.
std::string_view declaredPrefix(const StartTag::Attribute &declaration) noexcept {
    return declaration.name.prefix.empty() ? std::string_view() : declaration.name.local;
}

/// No rule of its own applies to the declaration.
bool isUsual(const StartTag::Attribute &declaration) noexcept {
    const std::string_view prefix = declaredPrefix(declaration);
    const std::string_view uri = declaration.text();
    return prefix != "xml" && prefix != "xmlns" && uri != xmlURI && uri != xmlnsURI &&
           (!uri.empty() || prefix.empty()) && declaration.isPlain &&
           uri.find(' ') == std::string_view::npos && uri.size() <= ElementTree::longestURI;
}

bool isUsual(const StartTag &tag) noexcept {
    return tag.name.prefix != "xml" && tag.name.prefix != "xmlns" &&
           std::all_of(tag.declarations.begin(), tag.declarations.end(),
                       [](const StartTag::Attribute &each) { return isUsual(each); });
}

/// The URI that the prefix stands for within the element; empty for none.
std::string_view uriOf(std::string_view prefix, const Element &element) noexcept {
    const Element *scope = element.scope;
    while (scope != nullptr) {
        for (const Declaration &each : scope->declarations) {
            if (each.prefix == prefix) {
                return each.uri;
            }
        }
        scope = scope->parent != nullptr ? scope->parent->scope : nullptr;
    }
    return {};
}

/// The name and the declarations, with bytes between them that neither can hold.
void writeText(const StartTag &tag, std::string &text) {
    text.assign(tag.name.whole);
    for (const StartTag::Attribute &each : tag.declarations) {
        text.append("\n").append(declaredPrefix(each)).append("=").append(each.text());
    }
}

} // namespace

std::size_t ElementTree::Hash::operator()(const Key &key) const {
    return std::hash<std::string_view>()(key.text) ^
           (std::hash<const void *>()(key.parent) * 0x9E3779B97F4A7C15U);
}

Element *ElementTree::child(Element *parent, const StartTag &tag) {
    // Before anything is looked up: the text of an unusual tag may be that of another one.
    if (!isUsual(tag)) {
        return nullptr;
    }
    std::string_view text = tag.name.whole;
    if (!tag.declarations.empty()) {
        writeText(tag, key_);
        text = key_;
    }
    if (const auto found = elements_.find({parent, text}); found != elements_.end()) {
        return found->second.get();
    }
    const std::size_t depth = parent != nullptr ? parent->depth + 1 : 1;
    const std::size_t declared =
        (parent != nullptr ? parent->declared : 0) + tag.declarations.size();
    if (depth > xmlLimits::depth || declared > mostDeclarations) {
        return nullptr;
    }
    auto element = make(parent, tag);
    element->declared = declared;
    textSize_ += element->text.size();
    const Key key = {parent, element->text};
    return elements_.emplace(key, std::move(element)).first->second.get();
}

std::unique_ptr<Element> ElementTree::make(Element *parent, const StartTag &tag) {
    auto element = std::make_unique<Element>();
    element->parent = parent;
    element->depth = parent != nullptr ? parent->depth + 1 : 1;
    writeText(tag, element->text);
    const std::string_view text = element->text;
    element->qualifiedName = text.substr(0, tag.name.whole.size());
    std::size_t at = tag.name.whole.size();
    for (const StartTag::Attribute &each : tag.declarations) {
        const std::string_view prefix = text.substr(at + 1, declaredPrefix(each).size());
        at += prefix.size() + 2;
        const std::string_view uri = text.substr(at, each.text().size());
        at += uri.size();
        element->declarations.push_back({prefix, uri});
    }
    const Element *const outerScope = parent != nullptr ? parent->scope : nullptr;
    element->scope = element->declarations.empty() ? outerScope : element.get();
    XMLElement &name = element->name;
    name.prefix = element->qualifiedName.substr(0, tag.name.prefix.size());
    name.localName = element->qualifiedName.substr(tag.name.whole.size() - tag.name.local.size());
    name.namespaceURI = uriOf(name.prefix, *element);
    name.nameNumber = vocabulary_.name(name.localName);
    name.namespaceNumber = vocabulary_.uri(name.namespaceURI);
    element->interest = interestIn(*element);
    element->wantsText = hasText_ && element->interest == XMLInterest::all;
    return element;
}

XMLInterest ElementTree::interestIn(const Element &element) {
    const Element *const parent = element.parent;
    if (parent != nullptr && parent->interest == XMLInterest::all) {
        return XMLInterest::all;
    }
    lookAround(element);
    return delegate_.interestIn(element.name, around_);
}

/// Brings `branch_` and `around_` up to date, from the inside as far as they differ: all at once
/// would be slow where the elements are nested deep.
void ElementTree::lookAround(const Element &element) {
    branch_.resize(element.depth - 1);
    around_.resize(element.depth - 1);
    for (const Element *each = element.parent; each != nullptr; each = each->parent) {
        const std::size_t place = each->depth - 1;
        if (branch_[place] == each) {
            break;
        }
        branch_[place] = each;
        around_[place] = each->name;
    }
}

bool ElementTree::isFull() const noexcept {
    return elements_.size() >= mostElements || textSize_ >= mostText;
}

void ElementTree::keepOnly(const Element *branch) {
    branch_.assign(branch != nullptr ? branch->depth : 0, nullptr);
    for (; branch != nullptr; branch = branch->parent) {
        branch_[branch->depth - 1] = branch;
    }
    textSize_ = 0;
    std::erase_if(elements_, [&](const auto &entry) {
        const Element &element = *entry.second;
        const bool stays =
            element.depth <= branch_.size() && branch_[element.depth - 1] == &element;
        textSize_ += stays ? element.text.size() : 0;
        return !stays;
    });
    branch_.clear(); // `around_` has not followed it
}

} // namespace pelluvia::xml::scan
