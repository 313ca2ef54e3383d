// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/ExternalEntities.h>

#include <Pelluvia/system/Log.h>
#include <Pelluvia/xml/XMLLimits.h>
#include <Pelluvia/xml/internal/FileSource.h>
#include <Pelluvia/xml/internal/Input.h>

#include <algorithm>

namespace pelluvia::xml {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n';
}

/// Cuts off `<?xml version="1.0" encoding="..."?>`.
void removeTextDeclaration(std::string &text) {
    if (text.starts_with("<?xml") && text.size() > 5 && isBlank(text[5])) {
        const std::size_t end = text.find("?>");
        if (end != std::string::npos) {
            text.erase(0, end + 2);
        }
    }
}

/// Whether more attributes stand in one tag than a tag may have. The parser compares each with all
/// others, so that this has to be known before it starts. (Counted are the `=` behind each `<`,
/// which may be more than the attributes, never fewer.)
bool hasOverlongTag(std::string_view text) {
    std::size_t count = 0;
    for (const char c : text) {
        count = c == '<' ? 0 : count + (c == '=' ? 1 : 0);
        if (count > 4 * xmlLimits::attributes) {
            return true;
        }
    }
    return false;
}

/// Reads at most `limit` bytes of text; returns why not, or nothing.
std::string readAll(Source &source, std::size_t limit, std::string &text) {
    Input input(source);
    constexpr std::size_t step = 16 * 1024;
    bool more = input.begin();
    while (more && text.size() <= limit) {
        const std::size_t size = text.size();
        text.resize(size + step);
        const std::size_t added = input.read(text.data() + size, step);
        text.resize(size + added);
        more = added != 0;
    }
    if (input.failure()) {
        return input.failure()->message;
    }
    if (text.size() > limit) {
        return "too large";
    }
    if (text.find('\0') != std::string::npos) {
        return "not a text";
    }
    return hasOverlongTag(text) ? "a tag with too many attributes" : std::string();
}

} // namespace

void logUnread(std::string_view systemIdentifier, std::string_view reason) {
    logLine(std::string("External entity \"")
                .append(systemIdentifier)
                .append("\" was not read: ")
                .append(reason));
}

EntityFile ExternalEntities::open(std::string_view systemIdentifier,
                                  const std::string &declaringPath) {
    if (!soughtFolder_) {
        soughtFolder_ = true;
        if (!document_.path().empty()) {
            folder_ = EntityFolder::holding(document_.path(), document_.descriptor());
        }
    }
    if (!folder_) {
        return {-1, {}, "the document is in no folder"};
    }
    return folder_->open(systemIdentifier,
                         declaringPath.empty() ? folder_->path() : folderOf(declaringPath));
}

std::optional<EntityText> ExternalEntities::load(std::string_view systemIdentifier,
                                                 const std::string &declaringPath) {
    EntityFile file = open(systemIdentifier, declaringPath);
    EntityText entity;
    if (file.descriptor >= 0) {
        FileSource source(file.descriptor, Ownership::owned);
        file.reason = readAll(source, xmlLimits::externalEntitySize - loadedSize_, entity.text);
    }
    if (!file.reason.empty()) {
        logUnread(systemIdentifier, file.reason);
        return std::nullopt;
    }
    loadedSize_ += entity.text.size();
    removeTextDeclaration(entity.text);
    entity.path = std::move(file.path);
    return entity;
}

} // namespace pelluvia::xml
