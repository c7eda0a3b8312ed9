// SPDX-License-Identifier: MIT
// What the address sanitizer sees of objects; there is nothing to see without it.
#if defined(__SANITIZE_ADDRESS__)
#define ZR_SEES_MEMORY
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZR_SEES_MEMORY
#endif
#endif

#ifdef ZR_SEES_MEMORY
#include <Foundation/NSObject.h>

#include <gtest/gtest.h>

#include <sanitizer/asan_interface.h>

namespace zr {

namespace {

class Box : public NSObject {
public:
    double content = 1;
};

} // namespace

TEST(ObjectMemory, IsGivenBackWithTheLastReferenceThoughWeakOnesAreLeft) {
    auto box = make<Box>();
    const std::weak_ptr<Box> weak = box;
    const void* const start = box.get();
    const void* const content = &box->content;
    ASSERT_FALSE(__asan_address_is_poisoned(start));
    box.reset();
    EXPECT_TRUE(__asan_address_is_poisoned(start));
    EXPECT_TRUE(__asan_address_is_poisoned(content));
    EXPECT_TRUE(weak.expired());
}

} // namespace zr
#endif
