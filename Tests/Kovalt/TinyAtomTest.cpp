#include "Kovalt/TinyAtom.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace Kovalt {

TEST(TinyAtom, CodesBeginAtOneAndRise)
{
    TinyAtomTable table;

    EXPECT_EQ(table.lookup("a"), 1);
    EXPECT_EQ(table.lookup("b"), 2);
    EXPECT_EQ(table.lookup("a"), 3);
    EXPECT_EQ(table.target(2), "b");
    EXPECT_EQ(table.target(0), std::nullopt);
    EXPECT_EQ(table.target(4), std::nullopt);
}

TEST(TinyAtom, The65535thTextFindsTheTableFull)
{
    TinyAtomTable table;
    for (int i = 1; i <= 65534; ++i)
        ASSERT_EQ(table.lookup(std::to_string(i)), i);

    EXPECT_EQ(table.lookup("one more"), std::nullopt);
    EXPECT_EQ(table.target(65534), "65534");
    EXPECT_EQ(table.target(65535), std::nullopt);
}

TEST(TinyAtom, AReleasedCodeIsNeverGivenAgain)
{
    TinyAtomTable table;
    const std::uint16_t first = *table.lookup("first");
    const std::uint16_t unknown = 999;

    table.release(std::vector<std::uint16_t>{first, first, 0, unknown});

    EXPECT_EQ(table.target(first), std::nullopt);
    EXPECT_EQ(table.count(), 0u);
    EXPECT_EQ(table.lookup("second"), 2);
}

TEST(TinyAtom, AFullTableStaysFullAfterARelease)
{
    TinyAtomTable table;
    std::vector<std::uint16_t> codes;
    while (const auto code = table.lookup("x"))
        codes.push_back(*code);

    table.release(codes);

    EXPECT_EQ(table.count(), 0u);
    EXPECT_EQ(table.lookup("x"), std::nullopt);
}

TEST(TinyAtom, TextsBeyondTheBudgetAreRefusedAndReleasedOnesMakeRoom)
{
    TinyAtomTable table(10);

    const auto first = table.lookup("12345678");
    EXPECT_EQ(table.lookup("123"), std::nullopt);
    EXPECT_EQ(table.lookup("12"), 2);
    table.release(std::vector<std::uint16_t>{*first});

    EXPECT_EQ(table.lookup("123"), 3);
}

TEST(TinyAtom, ThreadsNeverShareACode)
{
    TinyAtomTable table;
    std::vector<std::vector<std::uint16_t>> codes(4);
    std::vector<std::thread> threads;
    for (auto& own : codes) {
        threads.emplace_back([&table, &own] {
            for (int i = 0; i < 2000; ++i)
                own.push_back(*table.lookup("x"));
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    std::vector<bool> seen(8001);
    for (const auto& own : codes) {
        for (const std::uint16_t code : own) {
            ASSERT_FALSE(seen.at(code));
            seen[code] = true;
        }
    }
}

TEST(TinyAtom, AllOfTheProcessShareOneTable)
{
    const auto code = TinyAtom::lookup("https://example.org");
    ASSERT_TRUE(code);

    EXPECT_EQ(TinyAtom::table().target(*code), "https://example.org");
    TinyAtom::release(std::vector<std::uint16_t>{*code});
    EXPECT_EQ(TinyAtom::target(*code), std::nullopt);
}

} // namespace Kovalt
