// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/internal/BookmarkRecord.h>

#include <Pelluvia/storage/internal/GLibPointers.h>

#include <charconv>
#include <optional>
#include <system_error>

namespace pelluvia::storage {

namespace {

constexpr std::string_view versionMark = "Pelluvia bookmark ";
constexpr std::string_view version = "1";

// The reasons why data are refused.
constexpr std::string_view missing = "There is no bookmark";
constexpr std::string_view foreign = "This is not a bookmark";
constexpr std::string_view otherVersion = "The bookmark is of a version that is not known";
constexpr std::string_view truncated = "The bookmark is cut off";
constexpr std::string_view damaged = "The bookmark is damaged";

std::string checksumOf(std::string_view text) {
    const GMemory<gchar> sum(
        g_compute_checksum_for_data(G_CHECKSUM_SHA256,
                                    reinterpret_cast<const guchar *>(text.data()), // NOLINT
                                    text.size()));
    return sum.get();
}

/// Takes "name value" and its line end from the front; the value is not empty.
std::optional<std::string> takeLine(std::string_view &text, std::string_view name) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    if (end == std::string_view::npos || line.size() < name.size() + 2 || !line.starts_with(name) ||
        line[name.size()] != ' ') {
        return std::nullopt;
    }
    text.remove_prefix(end + 1);
    return std::string(line.substr(name.size() + 1));
}

bool readNumber(const std::optional<std::string> &text, std::uint64_t &number) {
    if (!text) {
        return false;
    }
    const char *const last = text->data() + text->size();
    const auto [end, error] = std::from_chars(text->data(), last, number);
    return error == std::errc() && end == last;
}

/// The path of a URI of a file on this machine.
std::optional<std::string> pathOf(const std::string &uri) {
    gchar *host = nullptr;
    const GMemory<gchar> path(g_filename_from_uri(uri.c_str(), &host, nullptr));
    const GMemory<gchar> hostName(host);
    return path != nullptr && host == nullptr ? std::optional<std::string>(path.get())
                                              : std::nullopt;
}

bool readFields(std::string_view fields, BookmarkRecord &record) {
    const auto uri = takeLine(fields, "folder");
    const auto path = uri ? pathOf(*uri) : std::nullopt;
    if (!path || !readNumber(takeLine(fields, "device"), record.identity.device) ||
        !readNumber(takeLine(fields, "inode"), record.identity.inode)) {
        return false;
    }
    record.path = *path;
    record.identity.born = takeLine(fields, "born").value_or("");
    record.document = takeLine(fields, "document").value_or("");
    return fields.empty();
}

} // namespace

Data encoded(const BookmarkRecord &record) {
    const GMemory<gchar> uri(g_filename_to_uri(record.path.c_str(), nullptr, nullptr));
    std::string text = std::string(versionMark).append(version) + "\nfolder " + uri.get() +
                       "\ndevice " + std::to_string(record.identity.device) + "\ninode " +
                       std::to_string(record.identity.inode) + "\n";
    if (!record.identity.born.empty()) {
        text += "born " + record.identity.born + "\n";
    }
    if (!record.document.empty()) {
        text += "document " + record.document + "\n";
    }
    text += "sum " + checksumOf(text) + "\n";
    return {text.begin(), text.end()};
}

std::string_view decode(const Data &data, BookmarkRecord &record) {
    const std::string text(data.begin(), data.end());
    const std::string_view all = text;
    if (all.empty()) {
        return missing;
    }
    // Of data of another version nothing but the first line is known.
    const std::size_t firstEnd = all.find('\n');
    const std::string_view first = all.substr(0, firstEnd);
    const bool isWholeLine = firstEnd != std::string_view::npos;
    if (!isWholeLine && (first.starts_with(versionMark) || versionMark.starts_with(first))) {
        return truncated;
    }
    if (!first.starts_with(versionMark)) {
        return foreign;
    }
    if (first.substr(versionMark.size()) != version) {
        return otherVersion;
    }
    const std::size_t sumAt = all.rfind("\nsum ");
    if (sumAt == std::string_view::npos || all.back() != '\n') {
        return truncated;
    }
    std::string_view sumLine = all.substr(sumAt + 1);
    if (takeLine(sumLine, "sum") != checksumOf(all.substr(0, sumAt + 1)) || !sumLine.empty()) {
        return damaged;
    }
    // An empty field list, too, ends with the line end before the sum.
    return readFields(all.substr(firstEnd + 1, sumAt - firstEnd), record) ? "" : damaged;
}

} // namespace pelluvia::storage
