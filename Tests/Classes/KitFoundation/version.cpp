// SPDX-License-Identifier: MIT
#include <ZRUIKit/KitVersion.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

// That the library exports them is looked at in the installed one.
static_assert(std::is_same_v<decltype(ZRUIKitVersionNumber), const double>);
static_assert(std::is_same_v<std::remove_extent_t<decltype(ZRUIKitVersionString)>, const unsigned char>);

TEST(KitVersion, TheNumberIsOne) { EXPECT_EQ(ZRUIKitVersionNumber, 1.0); }

TEST(KitVersion, TheTextNamesTheFramework) {
    const std::string text = reinterpret_cast<const char*>(ZRUIKitVersionString);
    EXPECT_NE(text.find("ZRUIKit"), std::string::npos) << text;
}
