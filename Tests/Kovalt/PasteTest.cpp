#include "Kovalt/Paste.h"

#include <gtest/gtest.h>

using namespace Kovalt;

namespace {

const std::string Begin = "\x1b[200~";
const std::string End = "\x1b[201~";

std::string inBrackets(std::string_view text)
{
    const auto bytes = encodePaste(text, BracketedPaste::On);
    EXPECT_TRUE(bytes.starts_with(Begin) && bytes.ends_with(End));
    return bytes.substr(Begin.size(), bytes.size() - Begin.size() - End.size());
}

} // namespace

TEST(Paste, LineEndsBecomeReturns)
{
    EXPECT_EQ(encodePaste("one\ntwo\r\nthree\rfour\n\n", BracketedPaste::Off),
              "one\rtwo\rthree\rfour\r\r");
    EXPECT_EQ(inBrackets("one\ntwo"), "one\rtwo");
}

TEST(Paste, BracketsStandAroundTheTextWhenTheyAreAskedFor)
{
    EXPECT_EQ(encodePaste("text", BracketedPaste::On), "\x1b[200~text\x1b[201~");
    EXPECT_EQ(encodePaste("text", BracketedPaste::Off), "text");
    EXPECT_EQ(encodePaste("", BracketedPaste::On), "\x1b[200~\x1b[201~");
}

TEST(Paste, AnEndMarkerInTheTextIsDropped)
{
    EXPECT_EQ(inBrackets("a\x1b[201~rm -rf\n"), "arm -rf\r");
    EXPECT_EQ(inBrackets(End + End + "x" + End), "x");
    EXPECT_EQ(inBrackets("a\xc2\x9b"
                         "201~b"),
              "ab");
    EXPECT_EQ(inBrackets("a\x9b"
                         "201~b"),
              "ab");
}

TEST(Paste, AnEndMarkerThatArisesFromTheDroppingIsDroppedToo)
{
    EXPECT_EQ(inBrackets("\x1b[2\x1b[201~01~x"), "x");
    EXPECT_EQ(inBrackets("\x1b\x1b[\x1b[201~201~[201~x"), "x");
    for (int depth = 0; depth < 5; ++depth) {
        std::string nested = End;
        for (int level = 0; level < depth; ++level)
            nested = "\x1b[20" + nested + "1~";
        EXPECT_EQ(inBrackets(nested + "x"), "x") << depth;
    }
}

TEST(Paste, WhatOnlyLooksLikeAMarkerStays)
{
    EXPECT_EQ(inBrackets("[201~ 201~ \x1b[20~ \x1b[200~"), "[201~ 201~ \x1b[20~ \x1b[200~");
    // The last byte of this character is the introducer of one byte.
    EXPECT_EQ(inBrackets("\xe2\x82\x9b"
                         "201~"),
              "\xe2\x82\x9b"
              "201~");
}

TEST(Paste, OutsideBracketsAMarkerIsText)
{
    EXPECT_EQ(encodePaste(End, BracketedPaste::Off), End);
}
