#include "Browser/BraltoMCP.h"

#include "Browser/ControlSocket.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace Bralto {
namespace {

constexpr char NotRunning[] = "Bralto isn’t running for this project. Open this project in Bralto "
                              "first: these tools control the browser inside its window.";

/// A server whose window is a function.
class McpServer : public testing::Test {
protected:
    struct Call {
        QString tool;
        QByteArray arguments;

        bool operator==(const Call&) const = default;
    };
    std::vector<Call> calls;
    Expected<QByteArray, ControlError> result = QByteArray(R"({"content":[],"isError":false})");

    std::optional<QByteArray> handle(const QByteArray& line)
    {
        const BraltoMCP::Server server{
            "1.2", [this](const QString& tool, std::string_view arguments) {
                calls.push_back({tool, QByteArray(arguments.data(), qsizetype(arguments.size()))});
                return result;
            }};
        return BraltoMCP::handle({line.constData(), std::size_t(line.size())}, server);
    }

    QJsonObject answer(const QByteArray& line)
    {
        return QJsonDocument::fromJson(handle(line).value_or(QByteArray())).object();
    }

    /// The text of the one item of a tool result that failed.
    QString failure(const QByteArray& line)
    {
        const QJsonObject failed = answer(line)[u"result"].toObject();
        EXPECT_EQ(failed[u"isError"], QJsonValue(true));
        EXPECT_EQ(failed[u"content"].toArray().size(), 1);
        EXPECT_EQ(failed[u"content"][0][u"type"], "text");
        return failed[u"content"][0][u"text"].toString();
    }
};

TEST_F(McpServer, IntroducesItself)
{
    const QJsonObject introduction =
        answer(R"({"jsonrpc":"2.0","id":0,"method":"initialize",)"
               R"("params":{"protocolVersion":"2025-06-18","capabilities":{}}})")[u"result"]
            .toObject();

    EXPECT_EQ(introduction[u"protocolVersion"], "2025-06-18");
    EXPECT_EQ(introduction[u"capabilities"],
              (QJsonObject{{"tools", QJsonObject{{"listChanged", false}}}}));
    EXPECT_EQ(introduction[u"serverInfo"],
              (QJsonObject{{"name", "bralto"}, {"title", "Bralto Browser"}, {"version", "1.2"}}));
    EXPECT_EQ(introduction[u"instructions"].toString(),
              "These tools drive the browser tabs inside the Bralto window of the project you're "
              "working in; the owner sees every page you open. Use these tools for any web page "
              "work in this project (localhost previews, docs, testing). Use Claude in Chrome "
              "only for logged-in accounts the owner's Chrome holds. Start with snapshot to get "
              "element refs (e12…) for click and type; take a new snapshot after the page "
              "changes. Without a tab argument, tools act on the page showing in the window.");
}

TEST_F(McpServer, SpeaksTheVersionThatIsWantedIfItKnowsIt)
{
    const auto version = [this](const QByteArray& params) {
        return answer(R"({"id":1,"method":"initialize","params":)" + params +
                      "}")[u"result"][u"protocolVersion"];
    };

    for (const char* known : {"2025-11-25", "2025-06-18", "2025-03-26", "2024-11-05"})
        EXPECT_EQ(version(QByteArray(R"({"protocolVersion":")") + known + "\"}"), known);
    for (const char* other : {R"({"protocolVersion":"2026-07-28"})", R"({"protocolVersion":1})",
                              R"({"protocolVersion":null})", "{}", "[]", "null", R"("2024-11-05")"})
        EXPECT_EQ(version(other), "2025-11-25") << other;
    EXPECT_EQ(answer(R"({"id":1,"method":"initialize"})")[u"result"][u"protocolVersion"],
              "2025-11-25");
}

TEST_F(McpServer, AnswersAPing)
{
    EXPECT_EQ(handle(R"({"jsonrpc":"2.0","id":1,"method":"ping"})"),
              R"({"jsonrpc":"2.0","id":1,"result":{}})");
}

TEST_F(McpServer, ListsItsTools)
{
    QFile file(BRALTO_FIXTURES "/Mcp/tools.json");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QJsonArray expected = QJsonDocument::fromJson(file.readAll()).array();
    ASSERT_EQ(expected.size(), 13);

    const QJsonObject list = answer(R"({"id":1,"method":"tools/list"})")[u"result"].toObject();

    EXPECT_EQ(list.keys(), QStringList{"tools"});
    for (qsizetype index = 0; index < expected.size(); ++index)
        EXPECT_EQ(list[u"tools"][index], expected[index]) << qint64(index);
    EXPECT_EQ(list[u"tools"].toArray().size(), expected.size());
    EXPECT_EQ(answer(R"({"id":1,"method":"tools/list","params":{"cursor":"x"}})")[u"result"], list);

    QSet<QString> names;
    for (const auto tool : expected)
        names.insert(tool[u"name"].toString());
    EXPECT_EQ(BraltoMCP::toolNames(), names);
}

TEST_F(McpServer, CopiesAnIdAsItCame)
{
    for (const char* id :
         {"0", "-1", "1", "9007199254740993", "123456789012345678901234567890", "1.0", "1e2",
          "-0.5E-7", R"("")", R"("abc")", R"("quote \" slash / \u00e9 é \n")", R"("\ud800")",
          "true", "false", "[]", "{}", R"(["a",{"b":1}])"}) {
        SCOPED_TRACE(id);
        EXPECT_EQ(handle(QByteArray(R"({"jsonrpc":"2.0","method":"ping","id": )") + id + " }"),
                  QByteArray(R"({"jsonrpc":"2.0","id":)") + id + R"(,"result":{}})");
    }
}

TEST_F(McpServer, TakesTheFirstOfEqualKeys)
{
    EXPECT_EQ(handle(R"({"id":1,"id":2,"method":"ping","method":"x"})"),
              R"({"jsonrpc":"2.0","id":1,"result":{}})");
    EXPECT_EQ(handle(R"({"\u0069d":3,"id":4,"method":"\u0070ing"})"),
              R"({"jsonrpc":"2.0","id":3,"result":{}})");
}

TEST_F(McpServer, GivesNotificationsNoAnswer)
{
    for (const char* line : {
             R"({"jsonrpc":"2.0","method":"notifications/initialized"})",
             R"({"method":"ping"})",
             R"({"method":"tools/call","params":{"name":"tabs"}})",
             R"({"id":null,"method":"ping"})",
             R"({"id":1})",
             R"({"id":1,"method":7})",
             R"({"id":1,"method":null})",
             R"({"id":1,"result":{}})",
             "{}",
         }) {
        SCOPED_TRACE(line);
        EXPECT_EQ(handle(line), std::nullopt);
    }
    EXPECT_TRUE(calls.empty());
}

TEST_F(McpServer, RefusesMethodsThatItDoesNotKnow)
{
    EXPECT_EQ(handle(R"({"jsonrpc":"2.0","id":"server-discover-probe-1",)"
                     R"("method":"server/discover","params":{"_meta":{"a":1}}})"),
              R"({"jsonrpc":"2.0","id":"server-discover-probe-1",)"
              R"("error":{"code":-32601,"message":"Method not found: server/discover"}})");
    EXPECT_EQ(handle(R"({"id":1,"method":""})"),
              R"({"jsonrpc":"2.0","id":1,"error":{"code":-32601,"message":"Method not found: "}})");
    EXPECT_EQ(handle("{\"id\":1,\"method\":\"a\\\"\\n\\u0000\"}"),
              "{\"jsonrpc\":\"2.0\",\"id\":1,\"error\":{\"code\":-32601,"
              "\"message\":\"Method not found: a\\\"\\n\\u0000\"}}");
}

TEST_F(McpServer, RefusesWhatIsNoJson)
{
    const QByteArray refusal =
        R"({"jsonrpc":"2.0","id":null,"error":{"code":-32700,"message":"Parse error"}})";
    for (const QByteArray& line :
         {QByteArray("x"), QByteArray(""), QByteArray("{"), QByteArray("[}"), QByteArray("{}{}"),
          QByteArray(R"({"id":1,"method":"ping")"), QByteArray(R"({id:1})"), QByteArray("nul"),
          QByteArray("\"\xff\""), QByteArray("{\"id\":1,\"method\":\"ping\",\"x\":\"\xc3\x28\"}"),
          QByteArray("\0", 1), QByteArray("{}\0", 3), QByteArray("{\"id\":\"\0\"}", 10),
          QByteArray(R"({"id":1,"method":"ping","x":1e999})"),
          QByteArray(R"({"id":1,"method":"ping","x":01})"), QByteArray("Content-Length: 3\r"),
          QByteArray(100'000, '['), QByteArray(100'000, '[') + QByteArray(100'000, ']'),
          R"({"id":1,"method":"ping","x":)" + QByteArray(5000, '[') + QByteArray(5000, ']') +
              '}'}) {
        SCOPED_TRACE(line.left(60).toStdString());
        EXPECT_EQ(handle(line), refusal);
    }
}

TEST_F(McpServer, RefusesWhatIsNeitherObjectNorArray)
{
    for (const char* line : {"1", "\"a\"", "null", "true", " -0.5 "}) {
        SCOPED_TRACE(line);
        EXPECT_EQ(
            handle(line),
            R"({"jsonrpc":"2.0","id":null,"error":{"code":-32600,"message":"Invalid request"}})");
    }
}

TEST_F(McpServer, AnswersABatchInOrder)
{
    EXPECT_EQ(
        handle(R"([{"id":1,"method":"ping"},{"method":"ping"},7,[{"id":9,"method":"ping"}],)"
               R"( {"id":"b","method":"x"} , "s", {"id":3.0,"method":"ping"}])"),
        R"([{"jsonrpc":"2.0","id":1,"result":{}},)"
        R"({"jsonrpc":"2.0","id":"b","error":{"code":-32601,"message":"Method not found: x"}},)"
        R"({"jsonrpc":"2.0","id":3.0,"result":{}}])");
}

TEST_F(McpServer, GivesABatchOfNotificationsNoAnswer)
{
    EXPECT_EQ(handle(R"([{"method":"notifications/initialized"},{"method":"x"}])"), std::nullopt);
    EXPECT_EQ(handle("[]"), std::nullopt);
    EXPECT_EQ(handle("[1,null,[]]"), std::nullopt);
}

TEST_F(McpServer, HandsACallToTheWindow)
{
    result = QByteArray(R"({"content":[{"type":"text","text":"done"}],"isError":false})");

    EXPECT_EQ(handle(R"({"jsonrpc":"2.0","id":4,"method":"tools/call","params":{"name":"open",)"
                     R"("arguments":{"url":"http://a/b"},"_meta":{"progressToken":2}}})"),
              R"({"jsonrpc":"2.0","id":4,"result":)"
              R"({"content":[{"type":"text","text":"done"}],"isError":false}})");
    EXPECT_EQ(calls, (std::vector<Call>{{"open", R"({"url":"http://a/b"})"}}));
}

TEST_F(McpServer, HandsArgumentsOnAsTheyCame)
{
    const QByteArray arguments = R"({"n":123456789012345678901234567890, "n":1.50,"s":"\/é"})";

    handle(R"({"id":1,"method":"tools/call","params":{"arguments":)" + arguments +
           R"(,"name":"tabs"}})");

    EXPECT_EQ(calls, (std::vector<Call>{{"tabs", arguments}}));
}

TEST_F(McpServer, TakesArgumentsThatAreNoObjectForNone)
{
    for (const char* params :
         {R"({"name":"type"})", R"({"name":"type","arguments":null})",
          R"({"name":"type","arguments":["x"]})", R"({"name":"type","arguments":"{}"})"}) {
        SCOPED_TRACE(params);
        calls.clear();
        handle(QByteArray(R"({"id":1,"method":"tools/call","params":)") + params + '}');
        EXPECT_EQ(calls, (std::vector<Call>{{"type", "{}"}}));
    }
}

TEST_F(McpServer, RefusesACallWithoutAToolsName)
{
    for (const char* message :
         {R"({"id":1,"method":"tools/call"})", R"({"id":1,"method":"tools/call","params":[]})",
          R"({"id":1,"method":"tools/call","params":{}})",
          R"({"id":1,"method":"tools/call","params":{"name":1}})"}) {
        SCOPED_TRACE(message);
        EXPECT_EQ(handle(message), R"({"jsonrpc":"2.0","id":1,"error":)"
                                   R"({"code":-32602,"message":"tools/call needs a tool name"}})");
    }
    EXPECT_TRUE(calls.empty());
}

TEST_F(McpServer, RefusesAToolThatItDoesNotHave)
{
    EXPECT_EQ(handle(R"({"id":1,"method":"tools/call","params":{"name":"Tabs"}})"),
              R"({"jsonrpc":"2.0","id":1,"error":{"code":-32602,"message":"Unknown tool: Tabs"}})");
    EXPECT_TRUE(calls.empty());
}

TEST_F(McpServer, TellsTheAgentWhyACallFailed)
{
    result = Unexpected{ControlError{"It’s “off”"}};

    EXPECT_EQ(handle(R"({"id":1,"method":"tools/call","params":{"name":"tabs"}})"),
              R"({"jsonrpc":"2.0","id":1,"result":)"
              R"({"content":[{"type":"text","text":"It’s “off”"}],"isError":true}})");
}

TEST_F(McpServer, GivesAResultWithoutContentAnEmptyOne)
{
    result = QByteArray(R"({ "isError" : true, "n" : 18446744073709551615 })");

    EXPECT_EQ(handle(R"({"id":1,"method":"tools/call","params":{"name":"tabs"}})"),
              R"({"jsonrpc":"2.0","id":1,"result":)"
              R"({"isError":true,"n":18446744073709551615,"content":[]}})");
}

TEST_F(McpServer, WritesAResultCompactlyAndWithPlainSlashes)
{
    result = QByteArray(R"( {"content" : [ {"text":"a\/b","type":"text"} ]} )");

    EXPECT_EQ(handle(R"({"id":1,"method":"tools/call","params":{"name":"tabs"}})"),
              R"({"jsonrpc":"2.0","id":1,"result":{"content":[{"text":"a/b","type":"text"}]}})");
}

TEST_F(McpServer, TellsTheAgentOfAnAnswerThatIsNone)
{
    const QByteArray line = R"({"id":1,"method":"tools/call","params":{"name":"tabs"}})";
    for (const char* odd : {"[]", "1", "null", "\"x\""}) {
        result = QByteArray(odd);
        EXPECT_EQ(failure(line), "Bralto sent back something unexpected") << odd;
    }
    for (const char* damaged : {"", "x", "{\"content\":", "{\"content\":\"\xff\"}"}) {
        result = QByteArray(damaged);
        const QString reason = failure(line);
        EXPECT_FALSE(reason.isEmpty()) << damaged;
        EXPECT_NE(reason, "Bralto sent back something unexpected") << damaged;
    }
}

TEST_F(McpServer, TakesALongCall)
{
    const QByteArray text(20'000'000, 'x');

    const auto line = handle(R"({"id":1,"method":"tools/call","params":{"name":"type",)"
                             R"("arguments":{"text":")" +
                             text + R"("}}})");

    EXPECT_TRUE(line);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].arguments.size(), text.size() + 11);
}

class McpSocketPath : public testing::Test {
protected:
    QStringList asked;
    QSet<QString> present;

    static QString socket(const QString& folder) { return ControlSocket::path("/c", folder); }

    std::optional<QString> find(const QStringList& environment, const QString& cwd)
    {
        asked.clear();
        return BraltoMCP::socketPath({environment, cwd, "/c"}, [this](const QString& path) {
            asked.append(path);
            return present.contains(path);
        });
    }
};

TEST_F(McpSocketPath, IsLookedForInTheProjectOfThePaneThenUpwards)
{
    EXPECT_EQ(find({"A=b", "BRALTO_PROJECT=/home/u/shop"}, "/home/u/x"), std::nullopt);

    EXPECT_EQ(asked, (QStringList{socket("/home/u/shop"), socket("/home/u/x"), socket("/home/u"),
                                  socket("/home"), socket("/")}));
}

TEST_F(McpSocketPath, IsTheFirstThatIsThere)
{
    present = {socket("/home/u"), socket("/")};
    EXPECT_EQ(find({}, "/home/u/a/b"), socket("/home/u"));
    EXPECT_EQ(find({"BRALTO_PROJECT=/home/u/shop"}, "/home/u"), socket("/home/u"));

    present.insert(socket("/home/u/shop"));
    EXPECT_EQ(find({"BRALTO_PROJECT=/home/u/./shop/"}, "/home/u"), socket("/home/u/shop"));
    EXPECT_EQ(asked.size(), 1);
}

TEST_F(McpSocketPath, NeedsNoVariable)
{
    present = {socket("/")};

    EXPECT_EQ(find({"BRALTO_PROJECT="}, "/a/../b/"), socket("/"));
    EXPECT_EQ(asked, (QStringList{socket("/b"), socket("/")}));
    EXPECT_EQ(find({}, ""), std::nullopt); // The current folder was removed.
}

class McpRelay : public testing::Test {
protected:
    QTemporaryDir folder;
    BraltoMCP::Surroundings surroundings{{}, "/p", folder.path()};
    QString path = ControlSocket::path(folder.path(), "/p");
};

TEST_F(McpRelay, FailsWithoutAWindow)
{
    EXPECT_EQ(BraltoMCP::relay("tabs", "{}", surroundings).error().message, NotRunning);
}

TEST_F(McpRelay, FailsWhereTheWindowLeftItsSocketBehind)
{
    { // A process that crashed.
        const auto listener = ControlSocket::makeListener(path);
        ASSERT_TRUE(listener);
    }
    EXPECT_EQ(BraltoMCP::relay("tabs", "{}", surroundings).error().message,
              QString(NotRunning) + " (Connection refused)");
}

TEST_F(McpRelay, FailsWhereTheControlFoldersPathIsTooLong)
{
    surroundings.directory = folder.filePath(QString(90, u'x'));
    QDir().mkpath(surroundings.directory);
    path = ControlSocket::path(surroundings.directory, "/p");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));

    EXPECT_EQ(BraltoMCP::relay("tabs", "{}", surroundings).error().message,
              QString(NotRunning) + " (Socket path is too long: " + path + ")");
}

} // namespace
} // namespace Bralto
