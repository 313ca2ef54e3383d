// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/internal/DocumentStore.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace pelluvia::storage {

namespace {

/// The store of a runtime folder, which may be named by way of symbolic links: bookmarks hold paths
/// without any.
std::string storeIn(const std::string &runtimeFolder) {
    std::error_code error;
    const std::filesystem::path real = std::filesystem::canonical(runtimeFolder, error);
    return (error ? runtimeFolder : real.string()) + "/doc/";
}

/// Where the store is mounted. Some sandboxes give the program a runtime folder of its own, with
/// the store left in the user's.
std::vector<std::string> mountPoints() {
    std::vector<std::string> result;
    const char *const runtime = std::getenv("XDG_RUNTIME_DIR"); // NOLINT(concurrency-mt-unsafe)
    if (runtime != nullptr && *runtime == '/') {
        result.push_back(storeIn(runtime));
    }
    const std::string usual = storeIn("/run/user/" + std::to_string(::getuid()));
    if (result.empty() || result.front() != usual) {
        result.push_back(usual);
    }
    return result;
}

bool isOnePart(std::string_view name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos;
}

} // namespace

std::optional<Document> documentAt(std::string_view path) {
    for (const std::string &mountPoint : mountPoints()) {
        if (path.starts_with(mountPoint)) {
            const std::string_view inside = path.substr(mountPoint.size());
            const std::size_t slash = inside.find('/');
            Document document{.identifier = std::string(inside.substr(0, slash)),
                              .name = std::string(inside.substr(
                                  slash == std::string_view::npos ? inside.size() : slash + 1))};
            // The identifier is written on a line of its own.
            if (isOnePart(document.identifier) && isOnePart(document.name) &&
                document.identifier.find('\n') == std::string::npos) {
                return document;
            }
        }
    }
    return std::nullopt;
}

std::vector<std::string> placesOf(const Document &document) {
    if (!isOnePart(document.identifier) || !isOnePart(document.name)) {
        return {};
    }
    std::vector<std::string> places = mountPoints();
    for (std::string &each : places) {
        each += document.identifier + "/" + document.name;
    }
    return places;
}

} // namespace pelluvia::storage
