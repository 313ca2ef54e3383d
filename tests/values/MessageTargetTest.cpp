// SPDX-License-Identifier: MIT

#include <Pelluvia/values/MessageTarget.h>

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace pelluvia {
namespace {

struct Listener {
    virtual ~Listener() = default;
    virtual void take(std::string text) { heard += "take " + text; }
    std::string heard;
};

struct Named {
    virtual ~Named() = default;
    std::string name = "Named";
    void sign(const std::string &text) { signedText = name + " " + text; }
    std::string signedText;
};

/// Has the methods of two bases; `Named` does not lie at its start.
struct Host : Listener, Named {
    void quietly(std::string text) noexcept { heard += "quietly " + text; }
    void only(const std::string &text) const { *log += "const " + text; }
    int counting(const std::string &text) {
        heard += "counting " + text;
        return 1;
    }
    std::shared_ptr<std::string> log = std::make_shared<std::string>();
};

using TextTarget = MessageTarget<std::string>;

TEST(MessageTarget, SendsMethodsOfEveryKind) {
    const auto host = std::make_shared<Host>();
    TextTarget(host, &Host::quietly).perform("a ");
    TextTarget(host, &Host::counting).perform("b ");
    EXPECT_EQ(host->heard, "quietly a counting b ");
    TextTarget(host, &Host::only).perform("c");
    EXPECT_EQ(*host->log, "const c");
}

TEST(MessageTarget, SendsMethodsOfBaseClasses) {
    const auto host = std::make_shared<Host>();
    TextTarget(host, &Listener::take).perform("a");
    TextTarget(host, &Named::sign).perform("b");
    EXPECT_EQ(host->heard, "take a");
    EXPECT_EQ(host->signedText, "Named b"); // the base was found, though it lies further behind
}

TEST(MessageTarget, MayBeConstant) {
    const auto host = std::make_shared<const Host>();
    TextTarget(host, &Host::only).perform("a ");
    TextTarget(std::weak_ptr<const Host>(host), &Host::only).perform("b");
    EXPECT_EQ(*host->log, "const a const b");
}

TEST(MessageTarget, CallsLambdasWithTheObjectOrWithout) {
    const auto host = std::make_shared<Host>();
    TextTarget(host, [](Host &object, const std::string &text) {
        object.heard += text;
    }).perform("a");
    std::string heard;
    TextTarget(host, [&heard](std::string text) { heard += text; }).perform("b");
    TextTarget([&heard](const std::string &text) { heard += text; }).perform("c");
    EXPECT_EQ(host->heard, "a");
    EXPECT_EQ(heard, "bc");
}

TEST(MessageTarget, IsNobodyForNullObjectsAndNullSelectors) {
    const auto host = std::make_shared<Host>();
    void (Host::*const none)(std::string) = nullptr;
    const TextTarget nobodies[] = {
        TextTarget(),
        TextTarget(nullptr),
        TextTarget(nullptr, nullptr),
        TextTarget(nullptr, &Host::quietly),
        TextTarget(std::shared_ptr<Host>(), &Host::quietly),
        TextTarget(std::weak_ptr<Host>(), &Host::quietly),
        TextTarget(host, nullptr),
        TextTarget(host, none),
        TextTarget(host, std::function<void(std::string)>()),
        TextTarget(std::function<void(std::string)>()),
    };
    for (const TextTarget &nobody : nobodies) {
        EXPECT_FALSE(nobody);
        EXPECT_EQ(nobody.object(), nullptr);
        nobody.perform("a");
    }
    EXPECT_EQ(host->heard, "");
    EXPECT_EQ(host.use_count(), 1); // what is told nothing is not kept either
}

TEST(MessageTarget, KeepsItsObjectAliveUnlessHeldWeakly) {
    auto host = std::make_shared<Host>();
    const auto log = host->log;
    const std::weak_ptr<Host> watched = host;
    TextTarget strong(host, &Host::only);
    const TextTarget weak(watched, &Host::only);
    host = nullptr;
    strong.perform("strong ");
    weak.perform("weak ");
    EXPECT_TRUE(weak);
    strong = nullptr;
    EXPECT_TRUE(watched.expired());
    EXPECT_FALSE(weak);
    weak.perform("gone ");
    EXPECT_EQ(*log, "const strong const weak ");
}

TEST(MessageTarget, MayReplaceItselfWhileItIsSent) {
    struct Leaver {
        void take(const std::string &text) {
            *target = nullptr;
            *log += text; // the object lives until the message returns
        }
        TextTarget *target = nullptr;
        std::shared_ptr<std::string> log = std::make_shared<std::string>();
    };
    auto leaver = std::make_shared<Leaver>();
    const auto log = leaver->log;
    const std::weak_ptr<Leaver> watched = leaver;
    TextTarget target(leaver, &Leaver::take);
    leaver->target = &target;
    leaver = nullptr;
    target.perform("last");
    EXPECT_EQ(*log, "last");
    EXPECT_TRUE(watched.expired());
}

TEST(MessageTarget, TakesOnlyWhatCanBeCalled) {
    using Object = std::shared_ptr<Host>;
    static_assert(!std::is_constructible_v<TextTarget, Object, void (Host::*)(int)>);
    static_assert(!std::is_constructible_v<TextTarget, Object, void (Host::*)(std::string &)>);
    static_assert(!std::is_constructible_v<TextTarget, std::shared_ptr<Listener>,
                                           void (Host::*)(std::string)>);
    static_assert(!std::is_constructible_v<TextTarget, std::shared_ptr<const Host>,
                                           void (Host::*)(std::string)>);
    static_assert(!std::is_constructible_v<TextTarget, Host *, void (Host::*)(std::string)>);
    SUCCEED();
}

} // namespace
} // namespace pelluvia
