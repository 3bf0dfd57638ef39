#include "Views/Chat/ChatCanvas.h"
#include "Views/Chat/CodeScene.h"
#include "Views/Chat/ImageScene.h"
#include "Views/Chat/MarkdownScene.h"
#include "Views/Chat/TableScene.h"
#include "Views/Chat/ToolScene.h"
#include "Views/Kit/Theme.h"

#include <gtest/gtest.h>

#include <QSet>

#include <numeric>

using namespace Bralto;

class ChatScenesTest : public testing::Test {
protected:
    [[nodiscard]] ChatScene markdown(const QString& text, double width = 500)
    {
        ChatCanvas canvas(m_style);
        return canvas.take(
            MarkdownScene::drawAll(canvas, text, {}, width, "key", m_style.tokens.label));
    }
    [[nodiscard]] ChatScene call(const ChatToolCall& call)
    {
        ChatCanvas canvas(m_style);
        return canvas.take(ToolScene::drawCall(canvas, call, {}, {}, 500));
    }
    [[nodiscard]] static QString all(const ChatScene& scene)
    {
        return ChatScenes::textBetween(scene, {}, ChatScenes::endOf(scene));
    }
    [[nodiscard]] static QStringList words(const ChatScene& scene)
    {
        QStringList words;
        for (const ChatScene::Text& text : scene.texts)
            words.append(text.layout->text());
        return words;
    }

    Theme m_theme{Theme::System{true, true}};
    QSet<QString> m_open;
    ChatCanvasStyle m_style{m_theme.tokens(),
                            1,
                            "/p",
                            [](const QString& text) {
                                return text == "a.c" ? std::optional<QString>("/p/a.c")
                                                     : std::nullopt;
                            },
                            [this](const QString& key) { return m_open.contains(key); },
                            {}};
};

TEST_F(ChatScenesTest, CopiedMarkdownIsItsText)
{
    EXPECT_EQ(all(markdown("# A\n\none **two**\n- x\n- y\n\n|h|i|\n|-|-|\n|1|2|")),
              "A\n\none two\nx\ny\nh\ti\n1\t2");
}

TEST_F(ChatScenesTest, InlineCodeThatNamesAFileIsALink)
{
    const ChatScene scene = markdown("see `a.c` and `b.c` and [x](https://e.org)");

    ASSERT_EQ(scene.texts.size(), 1u);
    ASSERT_EQ(scene.texts[0].links.size(), 2u);
    EXPECT_EQ(scene.texts[0].links[0].action,
              (ChatAction{ChatAction::Kind::OpenFile, "/p/a.c", {}}));
    EXPECT_EQ(scene.texts[0].links[1].action,
              (ChatAction{ChatAction::Kind::OpenUrl, "https://e.org", {}}));
}

TEST_F(ChatScenesTest, ACodeCardCopiesItsCodeAndSaysSo)
{
    const ChatScene scene = markdown("```js\na\n\tb\n```");
    ASSERT_EQ(scene.hots.size(), 1u);
    EXPECT_EQ(scene.hots[0].action.kind, ChatAction::Kind::CopyText);
    EXPECT_EQ(scene.hots[0].action.text, "a\n\tb");
    EXPECT_TRUE(words(scene).contains("Copy"));
    EXPECT_TRUE(words(scene).contains("JavaScript"));

    m_open.insert(scene.hots[0].action.target);
    EXPECT_TRUE(words(markdown("```js\na\n\tb\n```")).contains("Copied"));
}

TEST_F(ChatScenesTest, AFenceIsLabelledByItsLanguage)
{
    EXPECT_EQ(CodeScene::label(std::nullopt), "Code");
    EXPECT_EQ(CodeScene::label("js"), "JavaScript");
    EXPECT_EQ(CodeScene::label("JSON title=x"), "JSON");
    EXPECT_EQ(CodeScene::label("fortran"), "Fortran");
}

TEST_F(ChatScenesTest, TextNeverLeavesItsColumn)
{
    for (const QString& text :
         {QString(400, u'x'), "- " + QString(400, u'W'), "> " + QString(99, u'W'),
          "```\n" + QString(400, u'x'), QString("| a |").repeated(40) + "\n|-|"}) {
        for (const ChatScene::Text& each : markdown(text, 220).texts) {
            for (int i = 0; i < each.layout->lineCount(); ++i)
                EXPECT_LE(each.at.x() + each.layout->lineAt(i).naturalTextWidth(), 221);
        }
    }
}

TEST_F(ChatScenesTest, ColumnsShareTheWholeWidth)
{
    const auto sum = [](const std::vector<double>& widths) {
        return std::accumulate(widths.begin(), widths.end(), 0.0);
    };
    EXPECT_NEAR(sum(TableScene::columnWidths({50, 100}, 600)), 600, 0.01);
    const auto tight = TableScene::columnWidths({50, 900, 900}, 450);
    EXPECT_NEAR(sum(tight), 450, 0.01);
    EXPECT_DOUBLE_EQ(tight[0], 50);
    EXPECT_DOUBLE_EQ(tight[1], tight[2]);
    EXPECT_TRUE(TableScene::columnWidths({}, 100).empty());
}

TEST_F(ChatScenesTest, ColumnsOfNumbersStandAtTheRight)
{
    const MarkdownBlocks::Table table{{"a", "b", "c"},
                                      {{"0.9 ms", "404 not found", ""}, {"1,200", "2", ""}}};
    EXPECT_TRUE(TableScene::isNumeric(table, 0));
    EXPECT_FALSE(TableScene::isNumeric(table, 1));
    EXPECT_FALSE(TableScene::isNumeric(table, 2));
}

TEST_F(ChatScenesTest, PicturesAreNeverEnlargedAndKeepTheirShape)
{
    EXPECT_EQ(ImageScene::fitted({100, 50}, {380, 240}), QSizeF(100, 50));
    EXPECT_EQ(ImageScene::fitted({760, 240}, {380, 240}), QSizeF(380, 120));
    EXPECT_EQ(ImageScene::fitted({240, 480}, {380, 240}), QSizeF(120, 240));
    EXPECT_EQ(ImageScene::fitted({0, 10}, {380, 240}), QSizeF());
}

TEST_F(ChatScenesTest, ARowThatCanNotBeOpenedHasNoArrowAndNothingToClick)
{
    ChatToolCall bash;
    bash.id = "c";
    bash.name = "Bash";
    bash.summary = "ls";
    EXPECT_TRUE(call(bash).hots.empty());

    bash.resultText = "out";
    const ChatScene scene = call(bash);
    ASSERT_EQ(scene.hots.size(), 1u);
    EXPECT_EQ(scene.hots[0].name, "Ran ls, Running");
    EXPECT_DOUBLE_EQ(scene.height, 28);
}

TEST_F(ChatScenesTest, AFailedCallShowsItsErrorClipped)
{
    ChatToolCall bash;
    bash.id = "c";
    bash.name = "Bash";
    bash.status = ChatToolStatus::Failed;
    bash.inputJSON = R"({"command":"make"})";
    bash.resultText = QString("line\n").repeated(30);
    m_open.insert("c");

    const QStringList shown = words(call(bash));
    EXPECT_TRUE(shown.contains("Input"));
    EXPECT_TRUE(shown.contains("make"));
    EXPECT_TRUE(shown.contains("Error"));
    EXPECT_TRUE(shown.contains("Show more (31 lines)"));
    m_open.insert("c/result");
    EXPECT_TRUE(words(call(bash)).contains("Show less"));
}

TEST_F(ChatScenesTest, ALongDifferenceOffersTheRest)
{
    ChatToolCall edit;
    edit.id = "e";
    edit.name = "Edit";
    edit.filePath = "/p/a.c";
    edit.edits = {{"", QString("x\n").repeated(40) + "x"}};
    m_open.insert("e");

    EXPECT_TRUE(words(call(edit)).contains("Show all 41 lines"));
    EXPECT_TRUE(words(call(edit)).contains("+41"));
    m_open.insert("e/diff");
    EXPECT_TRUE(words(call(edit)).contains("Show less"));
}

TEST_F(ChatScenesTest, AWordIsFoundAroundAPlace)
{
    const ChatScene scene = markdown("Hello there");
    const auto [start, end] = ChatScenes::wordAt(scene, {0, 8});

    EXPECT_EQ(ChatScenes::textBetween(scene, start, end), "there");
    const auto atEnd = ChatScenes::wordAt(scene, {0, 11});
    EXPECT_EQ(ChatScenes::textBetween(scene, atEnd.first, atEnd.second), "there");
}
