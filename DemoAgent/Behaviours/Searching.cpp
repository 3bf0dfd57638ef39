#include "DemoAgent/Behaviours/Behaviours.h"

#include <QDir>
#include <QFile>

#include <array>

namespace DemoAgent::Behaviours {

using namespace std::chrono_literals;

namespace {

QStringList filesOf(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files, QDir::Name).mid(0, 50);
}

QStringList linesWith(const QString& folder, const QString& word)
{
    constexpr qsizetype MostHits = 20;
    constexpr qint64 MostBytes = 65536;
    QStringList hits;
    for (const QString& name : filesOf(folder)) {
        QFile file(QDir(folder).filePath(name));
        if (!file.open(QFile::ReadOnly))
            continue;
        int number = 0;
        for (const QString& line : QString::fromUtf8(file.read(MostBytes)).split(u'\n')) {
            ++number;
            if (line.contains(word, Qt::CaseInsensitive) && hits.size() < MostHits)
                hits.append(QString("%1:%2:%3").arg(name).arg(number).arg(line.left(200)));
        }
    }
    return hits;
}

QString orNothing(const QStringList& lines)
{
    return lines.isEmpty() ? QString("Nothing found") : lines.join(u'\n');
}

QJsonArray todos(int done)
{
    static const std::array<const char*, 3> contents{"Look around", "Change one line",
                                                     "Run the tests"};
    QJsonArray list;
    for (int index = 0; index < static_cast<int>(contents.size()); ++index) {
        const char* status = index < done ? "completed" : index == done ? "in_progress" : "pending";
        list.append(QJsonObject{{"content", contents.at(static_cast<size_t>(index))},
                                {"activeForm", contents.at(static_cast<size_t>(index))},
                                {"status", status}});
    }
    return list;
}

// A PNG of one colour, 8 by 8 pixels.
const QByteArray& smallPng()
{
    static const QByteArray png = QByteArray::fromBase64(
        "iVBORw0KGgoAAAANSUhEUgAAAAgAAAAICAIAAABLbSncAAAAEUlEQVR42mO4WR6OFTEMLQkAcq9pwfhQlf4A"
        "AAAASUVORK5CYII=");
    return png;
}

} // namespace

Task<> search(Turn& turn, QString words)
{
    const QString word = words.isEmpty() ? QString("the") : words;
    const QString folder = turn.conversation().folder;
    const ToolUse grep = makeToolUse("Grep", {{"pattern", word}, {"path", folder}});
    const ToolUse glob = makeToolUse("Glob", {{"pattern", "*"}});
    const ToolUse fetch = makeToolUse(
        "WebFetch", {{"url", "http://localhost/"}, {"prompt", "What is on this page?"}});
    co_await turn.say("I look in three places at once.");
    co_await turn.streamTool(grep, Permission::Never, {});
    co_await turn.streamTool(glob, Permission::Never, {});
    co_await turn.streamTool(fetch, Permission::Never, {});
    turn.endMessageForTools();

    const Pace& pace = turn.conversation().pace;
    const QStringList hits = linesWith(folder, word);
    co_await pace.pause(200ms);
    turn.toolResult(grep, {.content = orNothing(hits), .isError = false, .details = {}});
    co_await pace.pause(200ms);
    turn.toolResult(glob, {.content = orNothing(filesOf(folder)), .isError = false, .details = {}});
    co_await pace.pause(400ms);
    turn.toolResult(fetch, {.content = "The demo agent has no network.",
                            .isError = true,
                            .details = "Error: The demo agent has no network."});
    QString answer = QString("`%1` stands in %2 lines.").arg(word).arg(hits.size());
    co_await turn.say(answer);
}

Task<> keepTodos(Turn& turn, QString)
{
    co_await turn.say("I keep a list while I work.");
    for (int done = 0; done <= 3; ++done) {
        const ToolUse use = makeToolUse("TodoWrite", {{"todos", todos(done)}});
        co_await turn.call(use, Permission::Never);
        turn.toolResult(use, {.content = "The list is kept.", .isError = false, .details = {}});
        co_await turn.conversation().pace.pause(400ms);
    }
    co_await turn.say("All three are done.");
}

Task<> showImage(Turn& turn, QString)
{
    const QString path = QDir(turn.conversation().folder).filePath("picture.png");
    const ToolUse use = makeToolUse("Read", {{"file_path", path}});
    co_await turn.say("Here is a picture that I made up.");
    co_await turn.call(use, Permission::Never);
    const QJsonArray content{Wire::imageBlock(smallPng())};
    turn.toolResult(
        use, {.content = content, .isError = false, .details = QJsonObject{{"type", "image"}}});
    co_await turn.say("It is small and of one colour.");
}

} // namespace DemoAgent::Behaviours
