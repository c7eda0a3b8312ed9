// SPDX-License-Identifier: MIT
#include <Foundation/NSIndexSet.h>

#include <gmock/gmock.h>

#include <memory>
#include <string>

namespace zr {

using testing::ElementsAre;
using Texts = std::vector<std::string>;

TEST(IndexSets, AreInOrderWithoutDuplicates) {
    EXPECT_THAT((NSIndexSet{3, 1, 3, 2}), ElementsAre(1, 2, 3));
    EXPECT_EQ(firstIndex({7, 4}), 4u);
    EXPECT_EQ(firstIndex({}), NSNotFound);
    EXPECT_EQ(NSNotFound, 9223372036854775807u);
}

TEST(IndexSets, WhatStaysAfterARemovalKeepsItsOrder) {
    const auto without = [](const NSIndexSet& indexes) {
        Texts list = {"a", "b", "c", "d", "e"};
        removeObjectsAtIndexes(list, indexes);
        return list;
    };
    EXPECT_THAT(without({}), ElementsAre("a", "b", "c", "d", "e"));
    EXPECT_THAT(without({0}), ElementsAre("b", "c", "d", "e"));
    EXPECT_THAT(without({4}), ElementsAre("a", "b", "c", "d"));
    EXPECT_THAT(without({1, 3}), ElementsAre("a", "c", "e"));
    EXPECT_THAT(without({0, 1, 4}), ElementsAre("c", "d"));
    EXPECT_THAT(without({0, 1, 2, 3, 4}), ElementsAre());
}

TEST(IndexSets, AnIndexBeyondTheEndRemovesNothing) {
    Texts list = {"a", "b"};
    EXPECT_THROW(removeObjectsAtIndexes(list, {0, 2}), std::out_of_range);
    EXPECT_THAT(list, ElementsAre("a", "b"));
    Texts none;
    EXPECT_THROW(removeObjectsAtIndexes(none, {0}), std::out_of_range);
    EXPECT_NO_THROW(removeObjectsAtIndexes(none, {}));
}

TEST(IndexSets, WhatIsRemovedIsLetGo) {
    const auto shared = std::make_shared<int>(1);
    std::vector<std::shared_ptr<int>> list = {shared, nullptr, shared};
    removeObjectsAtIndexes(list, {0, 2});
    EXPECT_EQ(shared.use_count(), 1);
}

} // namespace zr
