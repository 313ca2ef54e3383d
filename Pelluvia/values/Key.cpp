// SPDX-License-Identifier: MIT

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
            return number(found->second);
        }
        // Where memory runs out here the place is still the first free one.
        const std::uint32_t position = firstFreePosition();
        Name &place = names_[position];
        place.text = name;
        positions_.emplace(place.text, position);
        place.owners = 1;
        firstFree_ = place.nextFree;
        return number(position);
    }

    void retain(std::uint32_t number) {
        const std::scoped_lock lock(mutex_);
        ++names_[position(number)].owners;
    }

    void release(std::uint32_t number) {
        const std::scoped_lock lock(mutex_);
        Name &name = names_[position(number)];
        if (--name.owners == 0) {
            positions_.erase(name.text);
            std::string().swap(name.text); // an assignment would keep the memory
            name.nextFree = firstFree_;
            firstFree_ = position(number);
        }
    }

    std::string_view name(std::uint32_t number) {
        const std::scoped_lock lock(mutex_);
        return names_[position(number)].text;
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

    static std::uint32_t number(std::uint32_t position) {
        return position + Key::firstPooledNumber;
    }
    static std::uint32_t position(std::uint32_t number) { return number - Key::firstPooledNumber; }

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

Key::Key(std::string_view name) : number_(0) {
    for (std::uint32_t number = 0; number < knownKeyNames.size(); ++number) {
        if (knownKeyNames[number] == name) {
            number_ = number;
            return;
        }
    }
    number_ = pool().acquire(name);
}

std::string_view Key::name() const {
    if (isPooled()) {
        return pool().name(number_);
    }
    return number_ < knownKeyNames.size() ? knownKeyNames[number_] : std::string_view();
}

void Key::retainPooled() const noexcept {
    pool().retain(number_);
}

void Key::releasePooled() const noexcept {
    pool().release(number_);
}

} // namespace pelluvia
