#include "Kovalt/CircularBufferLineList.h"

#include <gtest/gtest.h>

#include <deque>
#include <random>
#include <string>

namespace Kovalt {

namespace {

class Picture : public TerminalImage {
public:
    int col() const override { return 0; }
    int columns() const override { return 1; }
    int rows() const override { return 1; }
};

class Ring : public testing::Test, public CircularBufferLineList::Owner {
protected:
    std::unique_ptr<BufferLine> makeEmpty() override
    {
        ++made;
        return std::make_unique<BufferLine>(4);
    }
    void linePushed(bool hasImages) override { images += hasImages ? 1 : 0; }
    void lineRecycled(bool hadImages) override { images -= hadImages ? 1 : 0; }

    static std::unique_ptr<BufferLine> named(char name)
    {
        auto line = std::make_unique<BufferLine>(4);
        CharData cell;
        cell.code = name;
        line->set(0, cell);
        return line;
    }
    static std::unique_ptr<BufferLine> pictured(char name)
    {
        auto line = named(name);
        line->attach(std::make_shared<Picture>());
        return line;
    }
    static void push(CircularBufferLineList& ring, std::string_view names)
    {
        for (const char name : names)
            ring.push(named(name));
    }
    static std::string names(const CircularBufferLineList& ring)
    {
        std::string text;
        for (int i = 0; i < ring.count(); ++i)
            text += ring[i][0].code == 0 ? '.' : char(ring[i][0].code);
        return text;
    }

    int made = 0;
    int images = 0;
};

using RingDeath = Ring;

} // namespace

TEST_F(Ring, APushToAFullRingLosesTheOldest)
{
    CircularBufferLineList ring(3, *this);

    push(ring, "abcde");

    EXPECT_EQ(names(ring), "cde");
    EXPECT_EQ(ring.count(), 3);
    EXPECT_TRUE(ring.isFull());
}

TEST_F(Ring, ARowIsMadeWhenItIsFirstRead)
{
    CircularBufferLineList ring(3, *this);
    ring.push(nullptr);
    ring.push(nullptr);
    EXPECT_EQ(ring.peek(1), nullptr);
    EXPECT_EQ(made, 0);

    EXPECT_EQ(ring[1].size(), 4);
    EXPECT_EQ(ring[1].size(), 4);

    EXPECT_EQ(made, 1);
    EXPECT_EQ(ring.peek(0), nullptr);
}

TEST_F(Ring, RecyclingMakesTheOldestTheNewestWithoutMakingARow)
{
    CircularBufferLineList ring(3, *this);
    push(ring, "abc");
    const BufferLine* const oldest = &ring[0];
    ring[0].setWrapped(true);
    ring[0].setSemanticMark({});
    ring[0].setRenderMode(RenderLineMode::DoubleWidth);
    const auto generation = ring[0].generation();

    BufferLine& line = ring.recycle({});

    EXPECT_EQ(names(ring), "bc.");
    EXPECT_EQ(&line, oldest);
    EXPECT_EQ(&ring[2], oldest);
    EXPECT_FALSE(line.isWrapped());
    EXPECT_TRUE(line.semanticMarks().empty());
    EXPECT_EQ(line.renderMode(), RenderLineMode::Single);
    EXPECT_GT(line.generation(), generation + 2);
    EXPECT_EQ(line.recycleGeneration(), 1u);
    EXPECT_EQ(made, 0);
}

TEST_F(Ring, TheOwnerCountsLinesWithImages)
{
    CircularBufferLineList ring(3, *this);
    ring.push(pictured('a'));
    ring.push(pictured('b'));
    ring.push(named('c'));
    EXPECT_EQ(images, 2);

    (void)ring.recycle({});
    EXPECT_EQ(images, 1);
    ring.push(named('d'));
    EXPECT_EQ(images, 0);
    ring.push(pictured('e'));
    ring.pop();
    EXPECT_EQ(images, 0);
    ring.push(pictured('f'));
    ring.setMaxLength(1);
    EXPECT_EQ(images, 0);
}

TEST_F(Ring, AnotherLengthKeepsTheFirstRowsInOrder)
{
    CircularBufferLineList ring(3, *this);
    push(ring, "abcd");

    ring.setMaxLength(5);
    push(ring, "ef");
    EXPECT_EQ(names(ring), "bcdef");
    ring.setMaxLength(2);

    EXPECT_EQ(names(ring), "bc");
    EXPECT_EQ(ring.maxLength(), 2);
    push(ring, "x");
    EXPECT_EQ(names(ring), "cx");
}

TEST_F(Ring, AnEnormousLengthCostsNothing)
{
    CircularBufferLineList ring(0x7FFFFFFF, *this);

    push(ring, "ab");

    EXPECT_EQ(names(ring), "ab");
}

TEST_F(Ring, ShiftedRowsLeaveEmptyOnes)
{
    CircularBufferLineList ring(6, *this);
    push(ring, "xabcdef");

    ring.shiftElements(2, 3, -2);
    EXPECT_EQ(names(ring), "cde..f");
    ring.shiftElements(0, 2, 1);
    EXPECT_EQ(names(ring), ".cd..f");
    ring.shiftElements(1, 2, 0);
    EXPECT_EQ(names(ring), ".cd..f");
}

TEST_F(Ring, RowsShiftedPastTheEndMakeTheRingGrowOrLoseItsOldest)
{
    CircularBufferLineList ring(5, *this);
    push(ring, "abc");

    ring.shiftElements(1, 2, 2);
    EXPECT_EQ(names(ring), "a..bc");
    ring.shiftElements(3, 2, 1);
    EXPECT_EQ(names(ring), "...bc");
}

TEST_F(Ring, SplicingDeletesAndInserts)
{
    CircularBufferLineList ring(5, *this);
    push(ring, "abcd");
    std::vector<std::unique_ptr<BufferLine>> items;
    items.push_back(named('x'));
    items.push_back(pictured('y'));

    ring.splice(1, 1, std::move(items));
    EXPECT_EQ(names(ring), "axycd");
    EXPECT_EQ(images, 1);
    ring.splice(0, 3, {});
    EXPECT_EQ(names(ring), "cd");
    EXPECT_EQ(images, 0);
}

TEST_F(Ring, RotatingMovesTheFirstRowsBehindTheRest)
{
    CircularBufferLineList ring(5, *this);
    push(ring, "zzabcde");

    ring.rotate(0, 5, 2);
    EXPECT_EQ(names(ring), "cdeab");
    ring.rotate(1, 3, 1);
    EXPECT_EQ(names(ring), "ceadb");
    ring.rotate(4, 1, 1);
    EXPECT_EQ(names(ring), "ceadb");
}

TEST_F(RingDeath, ImpossibleOperationsAbortWithTheirNumbers)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    CircularBufferLineList ring(5, *this);
    push(ring, "abc");

    EXPECT_DEATH((void)ring[3], "start >= self.count\nAssertion at start=3 count=3 offset=0");
    EXPECT_DEATH((void)ring[-1], "start < 0");
    EXPECT_DEATH(ring.shiftElements(3, 1, 1),
                 "start >= self.count\nAssertion at start=3 count=1 offset=1");
    EXPECT_DEATH(ring.shiftElements(0, -1, 1), "count < 0\nAssertion at start=0 count=-1");
    EXPECT_DEATH(ring.shiftElements(-1, 1, 1), "start < 0\nAssertion at start=-1");
    EXPECT_DEATH(ring.shiftElements(1, 1, -2),
                 "start\\+offset <= 0\nAssertion at start=1 count=1 offset=-2");
    EXPECT_DEATH(ring.rotate(0, 4, 1), "start >= self.count");
    EXPECT_DEATH((void)ring.recycle({}), "count < ");
}

TEST(CircularList, BehavesAsAQueueUnderRandomOperations)
{
    std::mt19937 random(7);
    CircularList<int> ring(10);
    std::deque<int> model;
    for (int step = 0; step < 200000; ++step) {
        switch (random() % 16) {
        case 0:
            ring.trimStart(2);
            model.erase(model.begin(), model.begin() + std::min<int>(2, int(model.size())));
            break;
        case 1:
            if (!model.empty()) {
                ASSERT_EQ(ring.pop(), model.back());
                model.pop_back();
            }
            break;
        case 2: {
            const int length = int(random() % 100) + 1;
            ring.setMaxLength(length);
            model.resize(std::min<std::size_t>(model.size(), std::size_t(length)));
            break;
        }
        case 3:
            if (ring.isFull()) {
                ring.recycle() = step;
                model.pop_front();
                model.push_back(step);
            }
            break;
        case 4:
            if (!model.empty()) {
                const int start = int(random() % model.size());
                const int count = int(random() % (model.size() - std::size_t(start))) + 1;
                const int by = int(random() % unsigned(count + 1));
                ring.rotate(start, count, by);
                const auto first = model.begin() + start;
                std::rotate(first, first + by, first + count);
            }
            break;
        default:
            ring.push(step);
            model.push_back(step);
            if (int(model.size()) > ring.maxLength())
                model.pop_front();
        }
        ASSERT_EQ(ring.count(), int(model.size()));
        for (int i = 0; i < ring.count(); ++i)
            ASSERT_EQ(ring[i], model[std::size_t(i)]);
    }
}

} // namespace Kovalt
