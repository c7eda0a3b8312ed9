// SPDX-License-Identifier: MIT
#include <ZRUIKit/KitVersion.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include <dlfcn.h>

// Found by name only: a program that used them itself would get a copy of its own.
static_assert(std::is_same_v<decltype(ZRUIKitVersionNumber), const double>);
static_assert(std::is_same_v<std::remove_extent_t<decltype(ZRUIKitVersionString)>, const unsigned char>);

TEST(KitVersion, TheSymbolsAreExportedFromTheSharedLibrary) {
    for (const auto* name : {"ZRUIKitVersionNumber", "ZRUIKitVersionString"}) {
        const void* symbol = dlsym(RTLD_DEFAULT, name);
        ASSERT_TRUE(symbol) << name;
        Dl_info info{};
        ASSERT_TRUE(dladdr(symbol, &info)) << name;
        EXPECT_NE(std::string(info.dli_fname).find("libZRUIKit.so"), std::string::npos) << info.dli_fname;
    }
}

TEST(KitVersion, TheNumberIsOne) {
    const auto* number = static_cast<const double*>(dlsym(RTLD_DEFAULT, "ZRUIKitVersionNumber"));
    ASSERT_TRUE(number);
    EXPECT_EQ(*number, 1.0);
}

TEST(KitVersion, TheTextNamesTheFramework) {
    const auto* text = static_cast<const char*>(dlsym(RTLD_DEFAULT, "ZRUIKitVersionString"));
    ASSERT_TRUE(text);
    EXPECT_NE(std::string(text).find("ZRUIKit"), std::string::npos) << text;
}
