#include "Chat/ChatInline.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Bralto;

namespace {

std::string shown(const char* text)
{
    std::string out;
    for (const InlineRun& run : ChatInline::runs(QString::fromUtf8(text))) {
        out += '<';
        out += run.bold ? "b" : "";
        out += run.italic ? "i" : "";
        out += run.code ? "c" : "";
        out += run.strike ? "s" : "";
        if (!run.link.isEmpty())
            out += "@" + run.link.toStdString();
        out += ':' + run.text.toStdString() + '>';
    }
    return out;
}

} // namespace

TEST(ChatInline, PlainTextIsOneRun)
{
    EXPECT_EQ(shown("just words"), "<:just words>");
    EXPECT_EQ(shown(""), "");
}

TEST(ChatInline, StylesNestAndEnd)
{
    EXPECT_EQ(shown("a **b *c* d** `e` ~~f~~"), "<:a ><b:b ><bi:c><b: d><: ><c:e><: ><s:f>");
    EXPECT_EQ(shown("**first**"), "<b:first>");
    EXPECT_EQ(shown("_first_ word"), "<i:first><: word>");
    EXPECT_EQ(shown("***both***"), "<bi:both>");
}

TEST(ChatInline, LinksKeepTheirTarget)
{
    EXPECT_EQ(shown("see [the page](https://example.org/a?b=c&amp;d) now"),
              "<:see ><@https://example.org/a?b=c&amp;d:the page><: now>");
    EXPECT_EQ(shown("https://example.org/x."),
              "<@https://example.org/x:https://example.org/x><:.>");
    EXPECT_EQ(shown("[x](src/main.c)"), "<@src/main.c:x>");
}

TEST(ChatInline, WhatWouldBeABlockStaysText)
{
    for (const char* text : {"- item", "# head", "1. one", "> quote", "```", "    code", "| a |",
                             "<div>", "[ref]: http://x.org", "a\n- b", "a\n===", "a\n# b"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(ChatInline::plainText(ChatInline::runs(QString::fromUtf8(text))), QString(text));
    }
}

TEST(ChatInline, HtmlIsOnlyText)
{
    EXPECT_EQ(shown("<b>no</b> <script>x</script>"), "<:<b>no</b> <script>x</script>>");
}

TEST(ChatInline, LineBreaksStay)
{
    EXPECT_EQ(shown("a\nb  \n**c\nd**"), "<:a\nb  \n><b:c\nd>");
}

TEST(ChatInline, EntitiesAreDecodedOnce)
{
    EXPECT_EQ(shown("a &lt; b &amp;lt; &#65;&#x42; &unknown; &#xD800;"),
              "<:a < b &lt; AB &unknown; \xEF\xBF\xBD>");
    EXPECT_EQ(shown("`&lt;`"), "<c:&lt;>");
}

TEST(ChatInline, AnUnfinishedMarkIsText)
{
    EXPECT_EQ(shown("half **bo"), "<:half **bo>");
    EXPECT_EQ(shown("half `co"), "<:half `co>");
    EXPECT_EQ(shown("[half](htt"), "<:[half](htt>");
}

TEST(ChatInline, ATextThatIsTooLongIsOnePlainRun)
{
    const QString text = QStringLiteral("*a* ").repeated(30000);
    const auto runs = ChatInline::runs(text);

    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].text, text);
}

class ChatInlineFile : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("src/dir.d")));
        QFile file(m_folder.filePath(QStringLiteral("src/main.c")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }

    std::optional<QString> find(const QString& text) const
    {
        return ChatInline::fileURL(text, m_folder.path());
    }

    QTemporaryDir m_folder;
};

TEST_F(ChatInlineFile, APathWithLineAndColumnLinksToTheFile)
{
    const QString path = m_folder.filePath(QStringLiteral("src/main.c"));
    EXPECT_EQ(find("src/main.c"), path);
    EXPECT_EQ(find("src/main.c:12"), path);
    EXPECT_EQ(find(" src/main.c:12:3 "), path);
    EXPECT_EQ(find("src/../src/main.c"), path);
    EXPECT_EQ(find(path), path);
}

TEST_F(ChatInlineFile, WhatIsNoFileNeverLinks)
{
    for (const QString& text : {QString("v1.2"), QString(""), QString("src"), QString("src/dir.d"),
                                QString("src/main.c extra"), QString("main"), QString("~/main.c"),
                                QString("a/").repeated(200)}) {
        SCOPED_TRACE(text.toStdString());
        EXPECT_FALSE(find(text).has_value());
    }
}
