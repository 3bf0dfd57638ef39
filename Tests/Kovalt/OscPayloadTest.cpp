// What stands in operating-system commands, read before the terminal acts on it.

#include "Kovalt/Base64.h"
#include "Kovalt/BuildInfo.h"
#include "Kovalt/ClipboardRequest.h"
#include "Kovalt/HyperlinkPayload.h"
#include "Kovalt/Notification.h"
#include "Kovalt/ProgressReport.h"
#include "Kovalt/SemanticPromptOptions.h"

#include "Kovalt/Ascii.h"

#include <gtest/gtest.h>

using namespace Kovalt;

namespace {

using State = ProgressReportState;
using Mode = SemanticPromptClickMode;

std::string decoded(std::string_view base64)
{
    const auto data = Base64::decode(base64);
    return data ? std::string(data->begin(), data->end()) : "none";
}

} // namespace

TEST(ProgressReport, EveryStateIsReadWithAndWithoutAPercentage)
{
    EXPECT_EQ(parseProgressReport("4;0"), (ProgressReport{State::Remove, std::nullopt}));
    EXPECT_EQ(parseProgressReport("4;1;50"), (ProgressReport{State::Set, 50}));
    EXPECT_EQ(parseProgressReport("4;2;7"), (ProgressReport{State::Error, 7}));
    EXPECT_EQ(parseProgressReport("4;3"), (ProgressReport{State::Indeterminate, std::nullopt}));
    EXPECT_EQ(parseProgressReport("4;4;100"), (ProgressReport{State::Pause, 100}));
}

TEST(ProgressReport, ThePercentageEndsAtAHundred)
{
    EXPECT_EQ(parseProgressReport("4;1;101")->progress, 100);
    EXPECT_EQ(parseProgressReport("4;1;99999999999999999999999")->progress, 100);
    EXPECT_EQ(parseProgressReport("4;1;0")->progress, 0);
}

TEST(ProgressReport, APercentageThatIsNoNumberIsNone)
{
    for (const char* const text : {"4;1;", "4;1;x", "4;1;-5", "4;1;5%", "4;1; 5"})
        EXPECT_EQ(parseProgressReport(text), (ProgressReport{State::Set, std::nullopt})) << text;
    EXPECT_EQ(parseProgressReport("4;1;5;more")->progress, 5);
}

TEST(ProgressReport, AnythingElseIsNoReport)
{
    for (const char* const text : {"", "4", "4;", "4;5", "4;11", "4;x", "4;;1", "5;1;1", "44;1",
                                   "Build is done", "4;1;\xc3\xa4", " 4;1"})
        EXPECT_FALSE(parseProgressReport(text)) << text;
}

TEST(Notification, TheBodyKeepsItsSemicolons)
{
    EXPECT_EQ(parseNotification("notify;Title;one;two;"), (Notification{"Title", "one;two;"}));
    EXPECT_EQ(parseNotification("notify;;"), (Notification{"", ""}));
    EXPECT_EQ(parseNotification("notify;Titel;ä"), (Notification{"Titel", "ä"}));
}

TEST(Notification, AnythingElseIsNone)
{
    for (const char* const text : {"", "notify", "notify;title", "other;title;body", "Notify;a;b"})
        EXPECT_FALSE(parseNotification(text)) << text;
}

TEST(Base64, KnownTextsDecodeAndEncode)
{
    const std::pair<const char*, const char*> pairs[] = {{"", ""},
                                                         {"f", "Zg=="},
                                                         {"fo", "Zm8="},
                                                         {"foo", "Zm9v"},
                                                         {"foob", "Zm9vYg=="},
                                                         {"fooba", "Zm9vYmE="},
                                                         {"foobar", "Zm9vYmFy"}};
    for (const auto& [text, base64] : pairs) {
        EXPECT_EQ(decoded(base64), text);
        EXPECT_EQ(Base64::encode(Ascii::bytes(text)), base64);
    }
    EXPECT_EQ(Base64::encode(Ascii::bytes("\xff\xfe\xfd>?")), "//79Pj8=");
}

TEST(Base64, WhatIsNotWellFormedIsNone)
{
    for (const char* const text : {"Z", "Zg", "Zg=", "Zg===", "====", "Zm 9", "Zm9v\n", "Zm-_",
                                   "Z===", "Zg==Zg==", "=Zg=", "Zm9\xff"})
        EXPECT_EQ(decoded(text), "none") << text;
}

TEST(Base64, EveryByteComesBack)
{
    std::vector<std::uint8_t> data;
    for (int i = 0; i < 1000; ++i) {
        data.push_back(std::uint8_t(i * 7));

        EXPECT_EQ(Base64::decode(Base64::encode(data)), data);
    }
}

TEST(ClipboardRequest, TheSelectionIsCUnlessItIsNamed)
{
    EXPECT_EQ(parseClipboardRequest("c;?"), (ClipboardRequest{"c", std::nullopt}));
    EXPECT_EQ(parseClipboardRequest(";?"), (ClipboardRequest{"c", std::nullopt}));
    EXPECT_EQ(parseClipboardRequest("\xc3\xa4;?"), (ClipboardRequest{"c", std::nullopt}));
    EXPECT_EQ(parseClipboardRequest("ps0;?"), (ClipboardRequest{"ps0", std::nullopt}));
}

TEST(ClipboardRequest, DataIsDecoded)
{
    EXPECT_EQ(parseClipboardRequest("p;Zm9v"),
              (ClipboardRequest{"p", std::vector<std::uint8_t>{'f', 'o', 'o'}}));
    EXPECT_EQ(parseClipboardRequest("c;"), (ClipboardRequest{"c", std::vector<std::uint8_t>{}}));
}

TEST(ClipboardRequest, AnythingElseIsNone)
{
    for (const char* const text : {"", "c", "?", "c;???", "c;!", "c;Zm9v;Zm9v"})
        EXPECT_FALSE(parseClipboardRequest(text)) << text;
}

TEST(HyperlinkPayload, ThePayloadIsCutAtItsFirstSemicolon)
{
    const auto payload = parseHyperlinkPayload("id=1:x=y;http://a/b;c");

    ASSERT_TRUE(payload);
    EXPECT_EQ(payload->parameters, "id=1:x=y");
    EXPECT_EQ(payload->uri, "http://a/b;c");
    EXPECT_EQ(payload->id(), "1");
    EXPECT_EQ(parseHyperlinkPayload(";u")->uri, "u");
    EXPECT_EQ(parseHyperlinkPayload(";u")->id(), "");
    EXPECT_EQ(parseHyperlinkPayload("xid=3:id=2;u")->id(), "2");
}

TEST(HyperlinkPayload, WithoutAUriThereIsNoLink)
{
    for (const char* const text : {"", ";", "id=1;", "http://a"})
        EXPECT_FALSE(parseHyperlinkPayload(text)) << text;
}

TEST(SemanticPromptOptions, EveryValueIsRead)
{
    using Kind = SemanticPromptKind;
    EXPECT_EQ(parseSemanticPromptOptions(""), SemanticPromptOptions{});
    EXPECT_EQ(parseSemanticPromptOptions("k=i")->kind, Kind::Initial);
    EXPECT_EQ(parseSemanticPromptOptions("k=r")->kind, Kind::Right);
    EXPECT_EQ(parseSemanticPromptOptions("k=c")->kind, Kind::Continuation);
    EXPECT_EQ(parseSemanticPromptOptions("k=s")->kind, Kind::Secondary);
    EXPECT_EQ(parseSemanticPromptOptions("cl=line")->clickMode, Mode::CursorKeysLine);
    EXPECT_EQ(parseSemanticPromptOptions("cl=m")->clickMode, Mode::CursorKeysMultiple);
    EXPECT_EQ(parseSemanticPromptOptions("cl=v")->clickMode, Mode::CursorKeysConservativeVertical);
    EXPECT_EQ(parseSemanticPromptOptions("cl=w")->clickMode, Mode::CursorKeysSmartVertical);
    EXPECT_EQ(parseSemanticPromptOptions("click_events=0")->clickMode, Mode::None);
    EXPECT_EQ(parseSemanticPromptOptions("click_events=1")->clickMode, Mode::ClickEventsAbsolute);
    EXPECT_EQ(parseSemanticPromptOptions("click_events=2")->clickMode, Mode::ClickEventsRelative);
    EXPECT_EQ(parseSemanticPromptOptions("special_key=0")->usesSpecialCursorKeys, false);
    EXPECT_EQ(parseSemanticPromptOptions("special_key=1")->usesSpecialCursorKeys, true);
}

TEST(SemanticPromptOptions, WhatIsNotKnownIsPassedOver)
{
    const auto options = parseSemanticPromptOptions("0;aid=7;;k=s;redraw=0;err=a=b");

    ASSERT_TRUE(options);
    EXPECT_EQ(options->kind, SemanticPromptKind::Secondary);
    EXPECT_EQ(options->clickMode, std::nullopt);
}

TEST(SemanticPromptOptions, ClickEventsWinOverKeys)
{
    EXPECT_EQ(parseSemanticPromptOptions("click_events=1;cl=m")->clickMode,
              Mode::ClickEventsAbsolute);
    EXPECT_EQ(parseSemanticPromptOptions("click_events=0;cl=m")->clickMode,
              Mode::CursorKeysMultiple);
}

TEST(SemanticPromptOptions, AValueOutsideTheListMakesAllInvalid)
{
    for (const char* const text :
         {"k=", "k=x", "k=ii", "cl=", "cl=x", "cl=Line", "click_events=3",
          "click_events=", "special_key=2", "k=i;special_key=yes", "k=i=i"})
        EXPECT_FALSE(parseSemanticPromptOptions(text)) << text;
}

TEST(BuildInfo, TheIdentityNamesTagBranchAndCommit)
{
    EXPECT_EQ(xtVersionIdentity("v1.20.0", "", "unknown"), "Kovalt 1.20.0:");
    EXPECT_EQ(xtVersionIdentity("1.20.0", "main", "abc123"), "Kovalt 1.20.0-main+abc123:");
    EXPECT_EQ(xtVersionIdentity("", "", ""), "Kovalt:");
    EXPECT_EQ(xtVersionIdentity("v", "b", "unknown"), "Kovalt-b:");
    const KovaltBuildInfo info;
    EXPECT_EQ(xtVersionIdentity(info.tag, info.branch, info.commit), "Kovalt 1.20.0:");
}

TEST(BuildInfo, TheIdentityHoldsNothingButPrintableAscii)
{
    EXPECT_EQ(xtVersionIdentity("v1\x1b[2J\n", "\x07\x9c", "a\xc3\xa4\x7f"), "Kovalt 1[2J+a:");
}

TEST(BuildInfo, TheIdentityHasAtMost256Bytes)
{
    const auto of = [](std::size_t length) {
        return xtVersionIdentity(std::string(length, '1'), "", "unknown");
    };
    EXPECT_EQ(of(248).size(), 256U);
    EXPECT_EQ(of(248), "Kovalt " + std::string(248, '1') + ":");
    EXPECT_EQ(of(249), "Kovalt " + std::string(248, '1') + ":");
    EXPECT_EQ(of(249).size(), 256U);
}
