#include <tools/pelluvia/files/TemporaryFile.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <random>

namespace pelluvia::host {

namespace {

constexpr std::array<int, 3> endingSignals = {SIGHUP, SIGINT, SIGTERM};

/// The paths that the signal handler removes; empty for none. A signal handler has nothing else to
/// find them by. Changed only while the signals are blocked.
using PathToRemove = std::array<char, PATH_MAX>;
std::array<PathToRemove, TemporaryFile::most> pathsToRemove{};

extern "C" void removeAndEnd(int signal) {
    for (const PathToRemove &path : pathsToRemove) {
        if (path[0] != '\0') {
            ::unlink(path.data());
        }
    }
    // The handler was installed to run once; this time the signal does what it always does.
    static_cast<void>(::raise(signal));
}

sigset_t endingSignalSet() {
    sigset_t set;
    ::sigemptyset(&set);
    for (const int signal : endingSignals) {
        ::sigaddset(&set, signal);
    }
    return set;
}

/// Holds the ending signals back while it lives.
class SignalsBlocked {
  public:
    SignalsBlocked() {
        const sigset_t set = endingSignalSet();
        ::pthread_sigmask(SIG_BLOCK, &set, &before_);
    }
    SignalsBlocked(const SignalsBlocked &) = delete;
    SignalsBlocked &operator=(const SignalsBlocked &) = delete;
    ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

  private:
    sigset_t before_{};
};

/// Signals that are ignored stay ignored, as `nohup` wants it.
void handleEndingSignals() {
    struct sigaction action = {};
    action.sa_handler = removeAndEnd;
    action.sa_mask = endingSignalSet();
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : endingSignals) {
        struct sigaction before = {};
        ::sigaction(signal, nullptr, &before);
        if (before.sa_handler == SIG_DFL) {
            ::sigaction(signal, &action, nullptr);
        }
    }
}

/// Where a path can be put for the signal handler; null when all places are taken.
char *freePlace() {
    for (PathToRemove &path : pathsToRemove) {
        if (path[0] == '\0') {
            return path.data();
        }
    }
    return nullptr;
}

/// A name that nobody else is likely to have, beside the path.
std::string nameBeside(const std::string &path, std::random_device &random) {
    constexpr std::string_view characters = "0123456789abcdefghijklmnopqrstuvwxyz";
    constexpr std::size_t longestPart = 200; // of the name; a file name has at most 255 bytes
    const std::size_t slash = path.rfind('/');
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    std::string name = path.substr(0, start) + '.' + path.substr(start, longestPart) + '.';
    for (int i = 0; i < 6; ++i) {
        name += characters[random() % characters.size()];
    }
    return name;
}

/// A new file that nobody else has made; takes another name where somebody was faster.
Descriptor openNewFile(const std::string &path, std::string &name) {
    constexpr mode_t newFile = 0666; // less the umask
    constexpr int tries = 100;
    std::random_device random;
    Descriptor file;
    for (int i = 0; i < tries && !file.isOpen(); ++i) {
        name = nameBeside(path, random);
        errno = 0;
        file = Descriptor(::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, newFile));
        if (!file.isOpen() && errno != EEXIST) {
            break;
        }
    }
    return file;
}

} // namespace

std::unique_ptr<TemporaryFile> TemporaryFile::makeBeside(const std::string &path,
                                                         const struct stat *model,
                                                         std::error_code &error) {
    constexpr mode_t permissions = 0777;
    const SignalsBlocked blocked;
    char *place = freePlace();
    if (place == nullptr) {
        error = std::make_error_code(std::errc::too_many_files_open);
        return nullptr;
    }
    std::string name;
    Descriptor file = openNewFile(path, name);
    if (!file.isOpen() || name.size() >= PATH_MAX) {
        error = {file.isOpen() ? ENAMETOOLONG : errno, std::generic_category()};
        return nullptr;
    }
    if (model != nullptr) {
        // Only who may give files away can; for anybody else the file stays their own.
        [[maybe_unused]] const int owned = ::fchown(file.number(), model->st_uid, model->st_gid);
        ::fchmod(file.number(), model->st_mode & permissions);
    }
    error.clear();
    return std::unique_ptr<TemporaryFile>(
        new TemporaryFile(std::move(name), std::move(file), place));
}

TemporaryFile::TemporaryFile(std::string path, Descriptor descriptor, char *pathToRemove) noexcept
    : path_(std::move(path)), descriptor_(std::move(descriptor)), pathToRemove_(pathToRemove) {
    std::memcpy(pathToRemove_, path_.c_str(), path_.size() + 1);
    handleEndingSignals();
}

TemporaryFile::~TemporaryFile() {
    if (!path_.empty()) {
        const SignalsBlocked blocked;
        ::unlink(path_.c_str());
        *pathToRemove_ = '\0';
    }
}

std::error_code TemporaryFile::sync() const {
    // Some file systems cannot; that is no reason to give up what has been written.
    if (::fsync(descriptor_.number()) != 0 && errno != EINVAL && errno != ENOSYS) {
        return {errno, std::generic_category()};
    }
    return {};
}

std::error_code TemporaryFile::rename(const std::string &name) {
    const SignalsBlocked blocked;
    if (std::rename(path_.c_str(), name.c_str()) != 0) {
        return {errno, std::generic_category()};
    }
    *pathToRemove_ = '\0';
    path_.clear();
    return {};
}

} // namespace pelluvia::host
