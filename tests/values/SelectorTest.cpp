// SPDX-License-Identifier: MIT

#include <Pelluvia/values/Selector.h>

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace pelluvia {
namespace {

struct Target {
    void byValue(std::string text) { heard = "value " + text; }
    void byReference(const std::string &text) { heard = "reference " + text; }
    void quietly(std::string text) noexcept { heard = "quiet " + text; }

    std::string heard;
};

TEST(Selector, CallsTheMethodWithTheArgument) {
    Target target;
    Selector<std::string>(&Target::byValue).perform(&target, "a");
    EXPECT_EQ(target.heard, "value a");
    Selector<std::string>(&Target::byReference).perform(&target, "b");
    EXPECT_EQ(target.heard, "reference b");
    Selector<std::string>(&Target::quietly).perform(&target, "c");
    EXPECT_EQ(target.heard, "quiet c");
}

TEST(Selector, CallsConstantMethodsAndFunctionsForTheObjectThatItIsMadeFor) {
    struct Reader {
        void read(const std::string &text) const { *heard += text; }
        std::string *heard;
    };
    std::string heard;
    Reader reader{&heard};
    Selector<std::string>(&Reader::read).perform(&reader, "a");
    Selector<std::string>::forObject<Reader>([](Reader &object, const std::string &text) {
        *object.heard += text;
    }).perform(&reader, "b");
    EXPECT_EQ(heard, "ab");
    EXPECT_TRUE(Selector<std::string>(&Reader::read));
    EXPECT_FALSE(Selector<std::string>::forObject<Reader>(nullptr));
}

TEST(Selector, CallsTheOverriddenMethod) {
    struct Base {
        virtual ~Base() = default;
        virtual void take(int) { which = "base"; }
        std::string which;
    };
    struct Derived : Base {
        void take(int) override { which = "derived"; }
    };
    const std::shared_ptr<Base> target = std::make_shared<Derived>();
    const std::shared_ptr<void> erased = target;
    Selector<int>(&Base::take).perform(erased.get(), 1);
    EXPECT_EQ(target->which, "derived");
}

TEST(Selector, DoesNothingWithoutMethodOrTarget) {
    Target target;
    Selector<std::string>().perform(&target, "a");
    Selector<std::string>(static_cast<void (Target::*)(std::string)>(nullptr))
        .perform(&target, "a");
    Selector<std::string>(&Target::byValue).perform(nullptr, "a");
    EXPECT_EQ(target.heard, "");
}

} // namespace
} // namespace pelluvia
