#include "Base/Graphemes.h"

#include <gtest/gtest.h>

namespace Bralto {
namespace {

TEST(Graphemes, APrefixCountsWhatAReaderSees)
{
    EXPECT_EQ(Graphemes::prefix("abc", 2), "ab");
    EXPECT_EQ(Graphemes::prefix("👩‍💻👍🏽x", 2), "👩‍💻👍🏽");
    EXPECT_EQ(Graphemes::prefix(QString("e") + QChar(0x0301) + "x", 1),
              QString("e") + QChar(0x0301));
    EXPECT_EQ(Graphemes::prefix("ab", 5), "ab");
    EXPECT_EQ(Graphemes::prefix("ab", 0), "");
    EXPECT_EQ(Graphemes::prefix("", 3), "");
}

TEST(Graphemes, APrefixInBytesNeverCutsACharacter)
{
    EXPECT_EQ(Graphemes::prefixInBytes("aä日", 6), "aä日");
    EXPECT_EQ(Graphemes::prefixInBytes("aä日", 5), "aä");
    EXPECT_EQ(Graphemes::prefixInBytes("aä日", 2), "a");
    EXPECT_EQ(Graphemes::prefixInBytes("👩‍💻x", 10), "");
    EXPECT_EQ(Graphemes::prefixInBytes("", 10), "");
}

} // namespace
} // namespace Bralto
