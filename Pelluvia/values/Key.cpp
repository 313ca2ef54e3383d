#include <Pelluvia/values/Key.h>

#include <deque>
#include <limits>
#include <map>
#include <mutex>
#include <string>

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
        // Where memory runs out here the place is still the first free one.
        const std::uint32_t position = firstFreePosition();
        Name &place = names_[position];
        place.text = name;
        positions_.emplace(place.text, position);
        place.owners = 1;
        firstFree_ = place.nextFree;
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
            std::string().swap(name.text); // an assignment would keep the memory
            name.nextFree = firstFree_;
            firstFree_ = position(id);
        }
    }

    std::string_view name(std::uint32_t id) {
        const std::scoped_lock lock(mutex_);
        return names_[position(id)].text;
    }

  private:
    static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

    struct Name {
        std::string text;
        std::size_t owners = 0;
        std::uint32_t nextFree = none; // without owners: the next place that has none
    };

    std::uint32_t firstFreePosition() {
        if (firstFree_ == none) {
            names_.emplace_back();
            firstFree_ = static_cast<std::uint32_t>(names_.size() - 1);
        }
        return firstFree_;
    }

    static std::uint32_t id(std::uint32_t position) {
        return position + static_cast<std::uint32_t>(knownKeyNames.size());
    }
    static std::uint32_t position(std::uint32_t id) {
        return id - static_cast<std::uint32_t>(knownKeyNames.size());
    }

    std::mutex mutex_;
    std::deque<Name> names_; // a deque: the texts that `positions_` refers to never move
    std::uint32_t firstFree_ = none;
    // Ordered, since names come from files: whoever writes one can choose names of equal hash, and
    // then each would be compared with all others.
    std::map<std::string_view, std::uint32_t> positions_;
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
