#include "Kovalt/LinkDetection.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

using namespace Kovalt;

namespace {

std::vector<std::string> links(std::string_view text)
{
    std::vector<std::string> found;
    for (const auto& match : LinkDetection::findAll(text))
        found.emplace_back(text.substr(match.begin, match.end - match.begin));
    return found;
}

using Texts = std::vector<std::string>;

} // namespace

TEST(LinkDetection, EverySchemeMakesALink)
{
    for (const std::string scheme :
         {"http://", "https://", "mailto:", "ftp://", "file:", "ssh:", "git://", "ssh://",
          "tel:", "magnet:", "ipfs://", "ipns://", "gemini://", "gopher://", "news:"})
        EXPECT_EQ(links("see " + scheme + "a.b/c now"), Texts{scheme + "a.b/c"}) << scheme;
}

TEST(LinkDetection, PunctuationBehindAnAddressIsNotPartOfIt)
{
    EXPECT_EQ(links("Look at https://example.org/a?b=c#d, please."),
              Texts{"https://example.org/a?b=c#d"});
    EXPECT_EQ(links("https://example.org."), Texts{"https://example.org"});
    EXPECT_EQ(links("(https://example.org/x)"), Texts{"https://example.org/x"});
    EXPECT_EQ(links("https://example.org/a_(b)"), Texts{"https://example.org/a_(b)"});
    EXPECT_EQ(links("<https://example.org>"), Texts{"https://example.org"});
}

TEST(LinkDetection, AnAddressInBracketsMayHaveAPort)
{
    EXPECT_EQ(links("http://[::1]:8080/x"), Texts{"http://[::1]:8080/x"});
}

TEST(LinkDetection, PathsAreLinks)
{
    for (const std::string path : {"/usr/lib", "./run.sh", "../a/b", "~/notes.txt", "$HOME/x",
                                   ".config/app.toml", "src/main.cpp", "src/main.cpp:12:3"})
        EXPECT_EQ(links(path), Texts{path}) << path;
    EXPECT_TRUE(links("and/or").empty());
    EXPECT_TRUE(links("plain words, no link").empty());
}

TEST(LinkDetection, TwoLinksAreTwo)
{
    EXPECT_EQ(links("http://a.b and http://c.d"), (Texts{"http://a.b", "http://c.d"}));
}

TEST(LinkDetection, LettersOfAnyScriptAreLetters)
{
    EXPECT_EQ(links("→ https://bücher.example/ä …"), Texts{"https://bücher.example/ä"});
    EXPECT_EQ(links("./größe.txt"), Texts{"./größe.txt"});
}

TEST(LinkDetection, TheLinkAtAByteIsTheOneThatHoldsIt)
{
    const std::string text = "x http://a.b y http://c.d";

    EXPECT_EQ(LinkDetection::findAt(text, 0), std::nullopt);
    EXPECT_EQ(LinkDetection::findAt(text, 1), std::nullopt);
    EXPECT_EQ(LinkDetection::findAt(text, 2), (LinkDetection::Match{2, 12}));
    EXPECT_EQ(LinkDetection::findAt(text, 11), (LinkDetection::Match{2, 12}));
    EXPECT_EQ(LinkDetection::findAt(text, 12), std::nullopt);
    EXPECT_EQ(LinkDetection::findAt(text, 24), (LinkDetection::Match{15, 25}));
    EXPECT_EQ(LinkDetection::findAt(text, 1000), std::nullopt);
}

TEST(LinkDetection, BadUtf8HidesNoOtherLink)
{
    EXPECT_EQ(links("\xff\xfe http://a.b \xc3"), Texts{"http://a.b"});
}

TEST(LinkDetection, ATextThatWasMadeToBeSlowEnds)
{
    const auto repeated = [](std::string_view part) {
        std::string text;
        while (text.size() + part.size() <= LinkDetection::LongestText)
            text += part;
        return text;
    };
    for (const char* const part : {"/", "a", "a/", "./a ", "a a ", "(", "http://", "http:", "$a/",
                                   "a-", "a.b ", " ", "./a b:", "~/", ".a/", "x/y. "}) {
        const auto start = std::chrono::steady_clock::now();

        (void)LinkDetection::findAll(repeated(part));

        const auto took = std::chrono::steady_clock::now() - start;
        RecordProperty(part,
                       int(std::chrono::duration_cast<std::chrono::milliseconds>(took).count()));
        EXPECT_LT(took, std::chrono::seconds(5)) << part;
    }
}

TEST(LinkDetection, ALongLinkIsOneLink)
{
    const std::string address = "https://example.org/" + std::string(3000, 'x') + "?q=(1)";
    const std::string path = "./" + std::string(3000, 'y') + ".txt";

    EXPECT_EQ(links("see " + address + ", please"), Texts{address});
    EXPECT_EQ(links(path), Texts{path});
}

TEST(LinkDetection, ATextBeyondTheLimitIsNotSearched)
{
    EXPECT_TRUE(links("http://a.b " + std::string(LinkDetection::LongestText, ' ')).empty());
}
