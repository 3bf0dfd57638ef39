#include "Tests/Journeys/DesktopSession.h"
#include "Tests/Support/SiteServer.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Bralto;
using namespace Bralto::Journeys;

namespace {

constexpr auto Stations = R"(<!doctype html><title>Tidal API – Stations</title>
<style>body { font: 16px sans-serif; margin: 2em }</style>
<h1>Stations</h1><p>214 stations, 1.9 million samples</p>
<a href="/pier">North Pier</a>
<form action="/found"><input name="q" placeholder="Station"><button>Find</button></form>
<script>console.log("stations are there"); document.cookie = "seen=1; max-age=99999"</script>)";
constexpr auto Pier = "<!doctype html><title>North Pier</title><h1>North Pier</h1>1.82 m, rising";

/// An agent's side of the tools: the program as a server on standard input and output, started in
/// the project's folder.
class ToolServer {
public:
    ToolServer(const QString& home, const QString& folder)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", home);
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.setWorkingDirectory(folder);
        m_process.start(QStringLiteral(BRALTO_BIN "/../Bralto.app/Contents/MacOS/Bralto"),
                        {"--mcp"});
        m_process.waitForStarted();
    }
    ~ToolServer()
    {
        m_process.closeWriteChannel();
        m_process.waitForFinished();
    }

    /// The whole result of a tool.
    QJsonObject call(const QString& tool, const QJsonObject& arguments = {})
    {
        const QJsonObject request{
            {"jsonrpc", "2.0"},
            {"id", ++m_lastId},
            {"method", "tools/call"},
            {"params", QJsonObject{{"name", tool}, {"arguments", arguments}}}};
        m_process.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
        // The test's own web server answers meanwhile.
        DesktopSession::waitFor([this] { return m_process.canReadLine(); }, 90);
        const auto answer = QJsonDocument::fromJson(m_process.readLine()).object();
        EXPECT_EQ(answer["id"].toInt(), m_lastId);
        return answer["result"].toObject();
    }
    /// The last text of its content.
    QString text(const QString& tool, const QJsonObject& arguments = {})
    {
        const QJsonArray content = call(tool, arguments)["content"].toArray();
        return content.isEmpty() ? QString() : content.last().toObject()["text"].toString();
    }

private:
    QProcess m_process;
    int m_lastId = 0;
};

struct BrowserJourney : testing::Test {
    void SetUp() override
    {
        qputenv("SHELL", "/bin/zsh");
        ASSERT_TRUE(desktop.isReady()) << "no X server or window manager";
        site.page("/stations", Stations);
        site.page("/pier", Pier);
        site.route("/found", [](const SiteServer::Request& request) {
            return SiteServer::Response{200, "<title>Found</title>" + request.query};
        });
        ASSERT_TRUE(desktop.openProject());
    }

    [[nodiscard]] QString address(const QString& path) const { return site.url(path).toString(); }
    /// Types an address into a new tab, as a user does.
    void visit(const QString& path)
    {
        desktop.press("ctrl+t");
        desktop.type(address(path));
        desktop.press("Return");
    }
    static bool waitForText(ToolServer& tools, const QString& text)
    {
        return tools.text("wait", {{"text", text}, {"timeout", 30}}).startsWith("Found text");
    }
    /// The ref of the element whose line in the outline begins so.
    static QString refOf(ToolServer& tools, const QString& line)
    {
        const QString outline = tools.text("snapshot");
        const auto found =
            QRegularExpression("- " + QRegularExpression::escape(line) + ".*\\[ref=(e[0-9]+)\\]")
                .match(outline);
        EXPECT_TRUE(found.hasMatch()) << line.toStdString() << " in\n" << outline.toStdString();
        return found.captured(1);
    }

    SiteServer site;
    DesktopSession desktop;
};

} // namespace

TEST_F(BrowserJourney, TheUserOpensAPageAndTheAgentDrivesIt)
{
    visit("/stations");
    ToolServer tools(desktop.home(), desktop.project() + "/src");
    ASSERT_TRUE(waitForText(tools, "214 stations"));
    desktop.picture("page");

    EXPECT_TRUE(tools.text("tabs").contains("Tidal API – Stations — " + address("/stations") +
                                            " [active, default target]"));
    EXPECT_TRUE(tools.text("console").contains("log: stations are there"));
    EXPECT_EQ(tools.text("evaluate", {{"expression", "document.title"}}),
              "\"Tidal API – Stations\"");

    const QString clicked = tools.text("click", {{"ref", refOf(tools, "link \"North Pier\"")}});
    EXPECT_TRUE(clicked.contains("Now at tab ")) << clicked.toStdString();
    EXPECT_TRUE(clicked.contains("North Pier — " + address("/pier")));
    desktop.picture("clicked");

    EXPECT_TRUE(tools.text("navigate", {{"back", true}}).contains(address("/stations")));
    const QString typed = tools.text(
        "type", {{"ref", refOf(tools, "textbox \"Station\"")}, {"text", "mill"}, {"submit", true}});
    EXPECT_TRUE(typed.contains(address("/found") + "?q=mill")) << typed.toStdString();

    const QJsonArray picture = tools.call("screenshot")["content"].toArray();
    ASSERT_EQ(picture.size(), 2);
    const QImage image = QImage::fromData(
        QByteArray::fromBase64(picture[0].toObject()["data"].toString().toLatin1()));
    EXPECT_GT(image.width(), 300);
}

TEST_F(BrowserJourney, WhatTheAgentOpensStandsBesideAndLeavesTheKeyboardWhereItIs)
{
    desktop.press("ctrl+bracketright");
    ToolServer tools(desktop.home(), desktop.project());
    const QString opened = tools.text("open", {{"url", address("/stations")}});
    ASSERT_TRUE(opened.startsWith("Opened tab ")) << opened.toStdString();
    EXPECT_TRUE(waitForText(tools, "214 stations"));

    const QString file = desktop.project() + "/typed";
    EXPECT_TRUE(DesktopSession::waitFor([&] {
        desktop.type("echo here > typed");
        desktop.press("Return");
        return DesktopSession::waitFor([&] { return !DesktopSession::read(file).isEmpty(); }, 3);
    })) << "the shell has the keyboard";
    desktop.picture("beside");
    EXPECT_TRUE(tools.text("close").startsWith("Closed tab "));
    EXPECT_EQ(tools.text("tabs"), "No browser tabs open. Use open to load a page.");
}

TEST_F(BrowserJourney, ALinkThatAPaneOpensIsATabOfTheWindow)
{
    desktop.press("ctrl+bracketright");
    ToolServer tools(desktop.home(), desktop.project());
    EXPECT_TRUE(DesktopSession::waitFor([&] {
        desktop.type("xdg-open " + address("/pier"));
        desktop.press("Return");
        return DesktopSession::waitFor(
            [&] { return tools.text("tabs").contains("North Pier — " + address("/pier")); }, 5);
    }));
}

TEST_F(BrowserJourney, TabsAndCookiesComeBackAfterARestart)
{
    visit("/stations");
    {
        ToolServer tools(desktop.home(), desktop.project());
        ASSERT_TRUE(waitForText(tools, "214 stations"));
    }
    ASSERT_TRUE(desktop.quit());
    EXPECT_TRUE(QDir(desktop.home() + "/Library/Application Support/Bralto/control")
                    .entryList(QDir::System | QDir::Files)
                    .isEmpty())
        << "the socket goes with the program";

    ASSERT_TRUE(desktop.openProject());
    ToolServer tools(desktop.home(), desktop.project());
    ASSERT_TRUE(waitForText(tools, "214 stations"));
    EXPECT_EQ(tools.text("evaluate", {{"expression", "document.cookie"}}), "\"seen=1\"");
}

TEST_F(BrowserJourney, WithoutAWindowTheToolsSayWhatToDo)
{
    ASSERT_TRUE(desktop.quit());
    ToolServer tools(desktop.home(), desktop.project());

    const QJsonObject result = tools.call("tabs");
    EXPECT_TRUE(result["isError"].toBool());
    EXPECT_EQ(result["content"].toArray()[0].toObject()["text"].toString(),
              "Bralto isn’t running for this project. Open this project in Bralto first: these "
              "tools control the browser inside its window.");
}
