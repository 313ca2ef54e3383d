#include <Pelluvia/platform/Key.h>

#include <deque>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace pelluvia {

namespace {

/// The names that are not known at compile time, each for as long as somebody uses it.
class KeyPool {
  public:
    std::uint32_t acquire(std::string_view name) {
        const std::scoped_lock lock(mutex_);
        if (const auto found = positions_.find(name); found != positions_.end()) {
            ++names_[found->second].owners;
            return id(found->second);
        }
        std::uint32_t position = 0;
        if (free_.empty()) {
            position = static_cast<std::uint32_t>(names_.size());
            names_.emplace_back();
        } else {
            position = free_.back();
            free_.pop_back();
        }
        names_[position].text = name;
        names_[position].owners = 1;
        positions_.emplace(names_[position].text, position);
        return id(position);
    }

    void retain(std::uint32_t id) {
        const std::scoped_lock lock(mutex_);
        ++names_[position(id)].owners;
    }

    void release(std::uint32_t id) {
        const std::scoped_lock lock(mutex_);
        Name &name = names_[position(id)];
        if (--name.owners == 0) {
            positions_.erase(name.text);
            name.text = {};
            free_.push_back(position(id));
        }
    }

    std::string_view name(std::uint32_t id) {
        const std::scoped_lock lock(mutex_);
        return names_[position(id)].text;
    }

  private:
    struct Name {
        std::string text;
        std::size_t owners = 0;
    };

    static std::uint32_t id(std::uint32_t position) {
        return position + static_cast<std::uint32_t>(knownKeyNames.size());
    }
    static std::uint32_t position(std::uint32_t id) {
        return id - static_cast<std::uint32_t>(knownKeyNames.size());
    }

    std::mutex mutex_;
    std::deque<Name> names_; // a deque: the texts that `positions_` refers to never move
    std::vector<std::uint32_t> free_;
    std::unordered_map<std::string_view, std::uint32_t> positions_;
};

/// Never destroyed: keys of static objects may outlive every other static object.
KeyPool &pool() {
    static auto &instance = *new KeyPool; // NOLINT(cppcoreguidelines-owning-memory)
    return instance;
}

} // namespace

Key::Key(std::string_view name) : id_(0) {
    for (std::uint32_t id = 0; id < knownKeyNames.size(); ++id) {
        if (knownKeyNames[id] == name) {
            id_ = id;
            return;
        }
    }
    id_ = pool().acquire(name);
}

std::string_view Key::name() const {
    return isPooled() ? pool().name(id_) : knownKeyNames[id_];
}

void Key::retainPooled() const noexcept {
    pool().retain(id_);
}

void Key::releasePooled() const noexcept {
    pool().release(id_);
}

} // namespace pelluvia
