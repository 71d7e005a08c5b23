#include "softd3d11/egl/WordList.h"

#include <gtest/gtest.h>

namespace softegl {
namespace {

TEST(WordListTest, FindsWholeWordsAlone)
{
    EXPECT_TRUE(HasWord("one", "one"));
    EXPECT_TRUE(HasWord("one two three", "one"));
    EXPECT_TRUE(HasWord("one two three", "two"));
    EXPECT_TRUE(HasWord("one two three", "three"));
    EXPECT_TRUE(HasWord("two_more two", "two"));
    EXPECT_TRUE(HasWord("twotwo two ", "two"));
    EXPECT_FALSE(HasWord("two_more", "two"));
    EXPECT_FALSE(HasWord("_two", "two"));
    EXPECT_FALSE(HasWord("twotwo", "two"));
    EXPECT_FALSE(HasWord("", "two"));
    EXPECT_FALSE(HasWord(nullptr, "two"));
}

} // namespace
} // namespace softegl
