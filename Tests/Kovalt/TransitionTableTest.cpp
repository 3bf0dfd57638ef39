#include "Kovalt/TransitionTable.h"

#include "Tests/Support/ReferenceParser.h"

#include <gtest/gtest.h>

#include <map>

using namespace Kovalt;

namespace {

ParserAction actionNamed(const std::string& name)
{
    static const std::map<std::string, ParserAction> actions = {
        {"ignore", ParserAction::Ignore},    {"error", ParserAction::Error},
        {"print", ParserAction::Print},      {"execute", ParserAction::Execute},
        {"begin", ParserAction::OscStart},   {"put", ParserAction::OscPut},
        {"end", ParserAction::OscEnd},       {"csi", ParserAction::CsiDispatch},
        {"param", ParserAction::Param},      {"collect", ParserAction::Collect},
        {"esc", ParserAction::EscDispatch},  {"clear", ParserAction::Clear},
        {"hook", ParserAction::DcsHook},     {"dcsput", ParserAction::DcsPut},
        {"unhook", ParserAction::DcsUnhook},
    };
    return actions.at(name);
}

} // namespace

TEST(TransitionTable, EveryByteOfEveryStateDoesWhatItsRowSays)
{
    for (int number = 0; number < 15; ++number) {
        const auto state = static_cast<ParserState>(number);
        for (int code = 0; code <= 0xFF; ++code) {
            const auto expected = referenceEntry(state, std::min(code, 0xA0));
            const auto entry = sharedVt500Table().entry(state, static_cast<std::uint8_t>(code));
            EXPECT_EQ(entry.action, actionNamed(expected.action)) << number << " " << code;
            EXPECT_EQ(static_cast<int>(entry.next), expected.next) << number << " " << code;
        }
    }
}

TEST(TransitionTable, IsOneArrayOfBytesWithNothingBehindTheLastColumn)
{
    const auto& bytes = sharedVt500Table().bytes();

    EXPECT_EQ(bytes.size(), 4095U);
    EXPECT_EQ(bytes[0x00U << 8U | 0x41U], 0x20); // Ground prints "A".
    EXPECT_EQ(bytes[0x00U << 8U | 0x1BU], 0xB1); // ESC clears and leads to the escape state.
    EXPECT_EQ(bytes[0x03U << 8U | 0x3AU], 0x10); // A leading colon is an error.
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        if ((index & 0xFFU) > 0xA0) {
            ASSERT_EQ(bytes[index], 0) << index;
        }
    }
}

TEST(TransitionTable, IsBuiltOnce)
{
    EXPECT_EQ(&sharedVt500Table(), &sharedVt500Table());
    EXPECT_EQ(buildVt500TransitionTable().bytes(), sharedVt500Table().bytes());
}
