// SPDX-License-Identifier: MIT

#include <Pelluvia/values/Ref.h>

#include <gtest/gtest.h>
#include <thread>
#include <utility>
#include <vector>

namespace pelluvia {
namespace {

/// An object that counts how many of its kind live.
struct Counted : RefCounted<Counted> {
    explicit Counted(int &liveCount) : live(&liveCount) { ++*live; }
    Counted(const Counted &other) : RefCounted(other), live(other.live) { ++*live; }
    Counted &operator=(const Counted &) = default;
    ~Counted() { --*live; }

    int *live;
    Ref<Counted> next;
};

TEST(Ref, DeletesTheObjectWithItsLastOwner) {
    int live = 0;
    {
        const auto first = Ref<Counted>::make(live);
        EXPECT_TRUE(first->hasOneOwner());
        {
            const Ref<Counted> second = first;
            EXPECT_EQ(second.get(), first.get());
            EXPECT_FALSE(first->hasOneOwner());
        }
        EXPECT_TRUE(first->hasOneOwner());
        EXPECT_EQ(live, 1);
    }
    EXPECT_EQ(live, 0);
}

TEST(Ref, IsNilByDefaultAndWhenMovedFrom) {
    int live = 0;
    Ref<Counted> nil;
    EXPECT_FALSE(nil);
    EXPECT_EQ(Ref<Counted>(nullptr).get(), nullptr);
    Ref<Counted> full = Ref<Counted>::make(live);
    const Ref<Counted> target = std::move(full);
    EXPECT_FALSE(full); // NOLINT(bugprone-use-after-move): that is what is documented
    EXPECT_TRUE(target);
    EXPECT_EQ(live, 1);
}

TEST(Ref, CanBeAssignedItselfAndWhatItsObjectHolds) {
    int live = 0;
    Ref<Counted> ref = Ref<Counted>::make(live);
    const Ref<Counted> &alias = ref;
    ref = alias;
    EXPECT_EQ(live, 1);
    ref->next = Ref<Counted>::make(live);
    ref = ref->next; // the object that holds the new one goes
    EXPECT_TRUE(ref);
    EXPECT_EQ(live, 1);
    ref = nullptr;
    EXPECT_EQ(live, 0);
}

TEST(Ref, AnObjectsCopyHasOwnersOfItsOwn) {
    int live = 0;
    const auto original = Ref<Counted>::make(live);
    auto copy = Ref<Counted>::make(*original);
    EXPECT_TRUE(copy->hasOneOwner());
    *copy = *original;
    EXPECT_TRUE(copy->hasOneOwner());
    copy = nullptr;
    EXPECT_EQ(live, 1);
}

TEST(Ref, LeakAndAdoptPassTheOwnershipOn) {
    int live = 0;
    auto ref = Ref<Counted>::make(live);
    Counted *bare = ref.leak();
    EXPECT_FALSE(ref);
    EXPECT_EQ(live, 1);
    EXPECT_TRUE(bare->hasOneOwner());
    { const auto adopted = Ref<Counted>::adopt(bare); }
    EXPECT_EQ(live, 0);
}

TEST(Ref, CountsOnManyThreads) {
    int live = 0;
    {
        const auto shared = Ref<Counted>::make(live);
        std::vector<std::thread> threads;
        for (int number = 0; number < 4; ++number) {
            threads.emplace_back([shared] {
                for (int i = 0; i < 20'000; ++i) {
                    const Ref<Counted> copy = shared;
                }
            });
        }
        for (std::thread &thread : threads) {
            thread.join();
        }
        threads.clear();
        EXPECT_TRUE(shared->hasOneOwner());
    }
    EXPECT_EQ(live, 0);
}

/// Whether `*reference` compiles for what a `Reference` expression is.
template <class Reference>
concept Dereferenceable = requires(Reference reference) {
    *static_cast<Reference>(reference);
};

// A loop over what a temporary reference refers to would run over an object that is gone.
TEST(Ref, OfATemporaryCannotBeDereferenced) {
    static_assert(Dereferenceable<Ref<Counted> &>);
    static_assert(Dereferenceable<const Ref<Counted> &>);
    static_assert(!Dereferenceable<Ref<Counted> &&>);
    static_assert(!Dereferenceable<const Ref<Counted> &&>);
    int live = 0;
    const Ref<Counted> named = Ref<Counted>::make(live);
    EXPECT_EQ(&*named, named.get());
}

} // namespace
} // namespace pelluvia
