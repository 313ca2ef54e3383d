// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/internal/Base64.h>

#include <glib.h>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <tests/support/Chance.h>

namespace pelluvia::storage {
namespace {

TEST(Base64, IsThatOfTheStandard) {
    // The examples of RFC 4648.
    EXPECT_EQ(base64Of({}), "");
    EXPECT_EQ(base64Of({'f'}), "Zg==");
    EXPECT_EQ(base64Of({'f', 'o'}), "Zm8=");
    EXPECT_EQ(base64Of({'f', 'o', 'o'}), "Zm9v");
    EXPECT_EQ(base64Of({'f', 'o', 'o', 'b'}), "Zm9vYg==");
    EXPECT_EQ(base64Of({0xFB, 0xFF}), "+/8=");
}

TEST(Base64, IsReadBackAndAgreesWithAnotherOne) {
    testing::Chance random(1);
    std::uniform_int_distribution<unsigned> byte(0, 255);
    for (std::size_t size = 0; size < 300; ++size) {
        Data bytes(size);
        for (auto &each : bytes) {
            each = static_cast<std::uint8_t>(byte(random));
        }
        const std::unique_ptr<gchar, decltype(&g_free)> other(
            g_base64_encode(bytes.data(), bytes.size()), g_free);
        EXPECT_EQ(base64Of(bytes), other.get());
        EXPECT_EQ(bytesOfBase64(other.get()), bytes);
    }
}

TEST(Base64, AnyOtherTextIsRefused) {
    for (const char *text : {"Z", "Zg", "Zg=", "Zg===", "Zh==", "Zm9=", "Zm9v=", "Zm 9v", "Zm9v\n",
                             "=", "====", "Zg==Zg==", "Zm-_"}) {
        EXPECT_EQ(bytesOfBase64(text), std::nullopt) << text;
    }
}

} // namespace
} // namespace pelluvia::storage
