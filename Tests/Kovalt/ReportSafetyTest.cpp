// Reports reach a program as if they had been typed: nothing that was said to the terminal may come
// back in them as a key.

#include "Tests/Kovalt/ReplyForms.h"

#include <algorithm>
#include <utility>

using namespace Kovalt;
using namespace Kovalt::Testing;

namespace {

std::string hexOf(std::string_view text)
{
    constexpr std::string_view Digits = "0123456789abcdef";
    std::string hex;
    for (const char c : text) {
        hex += Digits[static_cast<unsigned char>(c) >> 4U];
        hex += Digits[static_cast<unsigned char>(c) & 15U];
    }
    return hex;
}

/// What a report consists of: an introducer of two bytes, text, and ST behind a string.
bool isReport(std::string_view bytes)
{
    const auto isText = [](std::string_view text) {
        bool isClean = true;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const auto byte = static_cast<unsigned char>(text[i]);
            const bool isUpperControl = byte == 0xC2 && i + 1 < text.size() &&
                                        static_cast<unsigned char>(text[i + 1]) < 0xA0;
            isClean = isClean && byte >= 0x20 && byte != 0x7F && !isUpperControl;
        }
        return isClean;
    };
    while (!bytes.empty()) {
        if (bytes.size() < 3 || bytes[0] != '\x1b')
            return false;
        const bool isString = bytes[1] == 'P' || bytes[1] == ']';
        if (!isString && bytes[1] != '[')
            return false;
        const auto end = isString ? bytes.find("\x1b\\", 2) : bytes.find('\x1b', 2);
        if ((isString && end == bytes.npos) || !isText(bytes.substr(2, end - 2)))
            return false;
        bytes.remove_prefix(std::min(bytes.size(), isString ? end + 2 : end));
    }
    return true;
}

/// Without any byte that ends a line or that a shell takes for a key.
bool holdsNoKey(std::string_view bytes)
{
    return std::none_of(bytes.begin(), bytes.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return (byte < 0x20 && byte != 0x1B) || byte == 0x7F;
    });
}

/// Texts that would run a command, end a paste or a report, or be keys.
const std::vector<std::string>& hostileTexts()
{
    static const std::vector<std::string> texts = {
        "a\nrm -rf ~\n",
        "a\rrm -rf ~\r",
        "\x03\x04\x15 id\x0d\x0a",
        "\x1b[201~\nid\n",
        "\x1b\\\nid\n",
        "\x1b]0;x\x07\nid\n",
        "\x7f\x7f id",
        "\xc2\x85 id\xc2\x9b"
        "201~\xc2\x9c",
        "$(id)`id`;id|id&\n",
        std::string("\0id\n", 4),
    };
    return texts;
}

/// Everything that a program can say in which its text might be kept or sent back.
std::vector<std::string> statements(const std::string& text)
{
    const auto hex = hexOf(text);
    return {
        osc("0;" + text),
        osc("1;" + text),
        osc("2;" + text) + "\x1b[22;0t",
        "\x1b[>0t" + osc("1;" + hex) + osc("2;" + hex) + "\x1b[>0T",
        osc("4;1;" + text),
        osc("10;" + text),
        osc("6;" + text),
        osc("7;" + text),
        osc("8;id=" + text + ";" + text) + "x" + osc("8;;"),
        osc("9;" + text),
        osc("133;A;aid=" + text),
        osc("777;notify;" + text + ";" + text),
        osc("1337;" + text),
        text,
    };
}

/// Everything that a program can ask, with its text where the question holds one.
std::vector<std::string> questions(const std::string& text)
{
    std::vector<std::string> all = {
        "\x1b[c",
        "\x1b[>c",
        "\x1bZ",
        "\x1b[>q",
        "\x1b[?u",
        "\x1b[5n",
        "\x1b[6n",
        "\x1b[?6n",
        "\x1b[?63;9n",
        "\x1b[4$p",
        "\x1b[?25$p",
        "\x1b[1;1;1;1;6;20*y",
        osc("4;1;?"),
        osc("10;?;?;?"),
        osc("52;c;?"),
        osc("52;" + text + ";?"),
        osc("4;" + text + ";?"),
        "\x1bP$q" + text + "\x1b\\",
        "\x1bP$qm\x1b\\",
        "\x1bP+q" + text + "\x1b\\",
        "\x1bP+q" + hexOf(text) + "\x1b\\",
        "\x1bP+q" + hexOf(text) + ";" + text + ";436f\x1b\\",
        "\x1b[23;0t\x1b[20t\x1b[21t",
        "\x1b[>1t\x1b[20t\x1b[21t\x1b[>1T",
    };
    for (int operation = 11; operation <= 21; ++operation)
        all.push_back("\x1b[" + std::to_string(operation) + 't');
    return all;
}

} // namespace

TEST(ReportSafety, NothingThatWasSaidComesBackAsAKey)
{
    for (const auto& text : hostileTexts()) {
        TerminalHarness harness;
        harness.prepare([&](RecordingDelegate& delegate) {
            delegate.clipboard = std::vector<std::uint8_t>(text.begin(), text.end());
        });
        for (const auto& statement : statements(text)) {
            ASSERT_TRUE(isReport(harness.replyTo(statement))) << testing::PrintToString(statement);
            for (const auto& question : questions(text)) {
                SCOPED_TRACE(testing::PrintToString(statement) + " and " +
                             testing::PrintToString(question));
                const auto reply = harness.replyTo(question);
                ASSERT_TRUE(isReport(reply)) << testing::PrintToString(reply);
            }
        }
        harness.feed("\x1b G");
        for (const auto& question : questions(text))
            ASSERT_TRUE(holdsNoKey(harness.replyTo(question))) << testing::PrintToString(question);
    }
}

TEST(ReportSafety, ControlsOfOneByteComeBackNeitherInAStringNorBehindIt)
{
    // What such a byte does in a string depends on where the bytes were cut.
    for (int code = 0x80; code < 0xA0; ++code) {
        const auto text = "a" + std::string(1, char(code)) + "\nid\n";
        for (const bool isCut : {false, true}) {
            TerminalHarness harness;
            const auto feed = [&](const std::string& bytes) {
                for (std::size_t at = 0; at < bytes.size(); at += isCut ? 1 : bytes.size())
                    harness.terminal.feed(std::string_view(bytes).substr(at, isCut ? 1 : 4096));
            };
            for (const auto& statement : statements(text)) {
                feed(statement + "\x1b\\");
                for (const auto& question : questions(text))
                    feed(question + "\x1b\\");
            }
            EXPECT_TRUE(isReport(harness.delegate.sent)) << code;
        }
    }
}

TEST(ReportSafety, ADeniedRequestDoesNotRepeatWhatWasAsked)
{
    TerminalHarness harness;

    for (const auto& text : hostileTexts()) {
        // Up to what would end the question.
        const auto question =
            "\x1bP$qz" + text.substr(0, text.find_first_of("\x1b\xc2")) + "\x1b\\";
        expectReport(harness, question, Introducer::Dcs, "0$r");
    }
    EXPECT_EQ(harness.replyTo("\x1bP+q72\n6D\x1b\\"), "\x1bP0+r\x1b\\");
    EXPECT_EQ(harness.replyTo("\x1bP+q0d726d0A\x1b\\"), "\x1bP0+r0D726D0A\x1b\\");
}

TEST(ReportSafety, WhatIsKeptForTheHostIsNotReported)
{
    TerminalHarness harness;

    EXPECT_EQ(harness.replyTo(osc("7;file:///secret") + osc("6;file:///secret") +
                              osc("8;;http://secret") + osc("777;notify;secret;secret") +
                              osc("9;4;1;50") + osc("133;A") + osc("1337;secret") +
                              osc("52;c;c2VjcmV0")),
              "");
}

TEST(ReportSafety, WithoutTrustNothingOfTheDesktopIsReadOrMoved)
{
    TerminalHarness harness;
    harness.prepare([](RecordingDelegate& delegate) {
        delegate.trusted = false;
        delegate.clipboard = std::vector<std::uint8_t>{'x'};
    });

    for (const char* const file :
         {"L2V0Yy9wYXNzd2Q=", "file:///etc/passwd", "/etc/passwd", "name=L2V0Yy9wYXNzd2Q="}) {
        for (const char* const command : {"6;", "7;", "52;c;?;", "1337;File="})
            EXPECT_EQ(harness.replyTo(osc(command + std::string(file))), "");
        for (const char* const medium : {"f", "t", "s"})
            EXPECT_EQ(harness.replyTo("\x1b_Ga=T,t=" + std::string(medium) + ";" + file + "\x1b\\"),
                      "");
    }
    for (const char* const selection : {"", "c", "p", "s", "0"})
        EXPECT_EQ(harness.replyTo(osc("52;" + std::string(selection) + ";?")), "");

    EXPECT_EQ(harness.delegate.events, std::vector<std::string>{});
    EXPECT_EQ(harness.terminal.hostCurrentDirectory(), std::nullopt);
    EXPECT_EQ(harness.terminal.hostCurrentDocument(), std::nullopt);
}

TEST(ReportSafety, TrustIsAskedForAnewEachTime)
{
    TerminalHarness harness;
    const auto setTrusted = [&](bool trusted) {
        harness.prepare([trusted](RecordingDelegate& delegate) {
            delegate.trusted = trusted;
            delegate.clipboard = std::vector<std::uint8_t>{'x'};
        });
    };

    setTrusted(false);
    EXPECT_EQ(harness.replyTo(osc("7;/a") + osc("52;c;?")), "");
    setTrusted(true);
    EXPECT_EQ(harness.replyTo(osc("7;/b") + osc("52;c;?")), osc("52;c;eA=="));
    setTrusted(false);
    EXPECT_EQ(harness.replyTo(osc("7;/c") + osc("52;c;?")), "");

    EXPECT_EQ(harness.terminal.hostCurrentDirectory(), "/b");
}

TEST(ReportSafety, FeedingThrowsNothing)
{
    static_assert(noexcept(std::declval<Terminal&>().feed(std::string_view())));
    static_assert(noexcept(std::declval<Terminal&>().feed(std::span<const std::uint8_t>())));
    TerminalHarness harness(2, 1, std::nullopt);
    const std::string digits(400, '9');

    // Numbers, texts and sizes beyond every limit.
    for (int code = 0x20; code < 0x7F; ++code) {
        for (const char* const marks : {"", "?", ">", "=", "<", "!", "$", "'", "*", "\"", "#", " "})
            for (const auto& number : {std::string(), digits, digits + ";" + digits})
                harness.terminal.feed(
                    "\x1b[" + (marks[0] >= '<' ? marks + number : number + marks) + char(code));
        harness.terminal.feed("\x1b" + std::string(1, char(code)) + digits + "\x1b\\");
    }
    for (int command = 0; command < 1400; ++command)
        harness.terminal.feed(osc(std::to_string(command) + ";" + digits) +
                              osc(std::to_string(command) + ";?;;\xff;" + digits) +
                              osc(std::to_string(command)));

    harness.terminal.feed("\x1b"
                          "cx");
    EXPECT_EQ(harness.row(0), "x");
}
