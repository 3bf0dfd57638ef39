// However much a program writes, a terminal's memory stays bounded.

#include "Kovalt/Terminal.h"
#include "Tests/Support/CountedMemory.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace Kovalt {

namespace {

using namespace Testing::CountedMemory;

constexpr std::size_t MiB = 1U << 20U;

class TerminalMemory : public testing::Test {
protected:
    TerminalMemory() { m_terminal.setSilentLog(true); }

    void feed(std::string_view bytes) { m_terminal.feed(bytes); }
    /// More than before the terminal was made.
    [[nodiscard]] std::size_t grown() const { return heldBytes - m_start; }
    [[nodiscard]] std::size_t mostGrown() const { return mostBytes - m_start; }

private:
    const std::size_t m_start = mostBytes = heldBytes.load();

protected:
    Terminal m_terminal{nullptr, {}};
};

TEST_F(TerminalMemory, RandomBytesDontFillIt)
{
    constexpr std::size_t Total = 24'000'000;
    constexpr std::size_t Slice = 65536;
    std::mt19937_64 random(7);
    std::string bytes(Slice, ' ');

    for (std::size_t fed = 0; fed < Total; fed += Slice) {
        std::generate(bytes.begin(), bytes.end(), [&random] { return char(random()); });
        feed(bytes);
    }

    EXPECT_LT(mostGrown(), 96 * MiB);
}

TEST_F(TerminalMemory, AStringWithoutEndIsDropped)
{
    const std::string megabyte(MiB, 'x');

    for (const char* start : {"\x1B]2;", "\x1B_G", "\x1B]52;c;"}) {
        SCOPED_TRACE(testing::PrintToString(start));
        feed(start);
        for (int i = 0; i < 150; ++i)
            feed(megabyte);
        // A buffer that doubles holds the old and the new text for a moment.
        EXPECT_LT(mostGrown(), 3 * EscapeSequenceParser::DefaultStringLimit + 16 * MiB);
        EXPECT_LT(grown(), 8 * MiB);
        feed("\x1B\\");
    }
    EXPECT_EQ(m_terminal.titles().terminalTitle, "");
}

TEST_F(TerminalMemory, StacksLinksClustersAndMarksDontFillIt)
{
    for (int i = 0; i < 40000; ++i) {
        const std::string number = std::to_string(i);
        feed("\x1B]2;title " + number + "\x1B\\\x1B[22t\x1B[22;0t\x1B[>1u\x1B[?2026h");
        feed("\x1B]8;id=" + number + ";http://a.b/" + number + "\x1B\\x\x1B]8;;\x1B\\");
        feed("\x1B]133;A\x1B\\\x1B]133;B\x1B\\\x1B]133;C\x1B\\\x1B]133;D\x1B\\");
        feed("e\u0301\u0302\u0303" + std::string(std::size_t(i % 7), 'y'));
        if (i % 5 == 0)
            feed("\r\n");
    }
    std::string marks = "a";
    for (int i = 0; i < 100000; ++i)
        marks += "\u0301";
    feed(marks);

    EXPECT_LT(grown(), 32 * MiB);
    EXPECT_LE(m_terminal.titles().terminalTitleStack.size(), TitleState::MaximumStack);
    EXPECT_LE(m_terminal.keyboardMode().stack().size(), KeyboardModeState::MaximumStack);
}

} // namespace

} // namespace Kovalt
