#include "Samples.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>

namespace Bralto::Samples {

namespace {

int nextId = 0;

QString id()
{
    return QStringLiteral("sample-%1").arg(++nextId);
}

ChatToolCall tool(const QString& name, const QString& summary,
                  ChatToolStatus status = ChatToolStatus::Done, const QString& result = {})
{
    ChatToolCall call;
    call.id = id();
    call.name = name;
    call.summary = summary;
    call.status = status;
    if (!result.isNull())
        call.resultText = result;
    return call;
}

ChatToolCall file(const QString& name, const QString& path, int lines = 0)
{
    ChatToolCall call = tool(name, path);
    call.filePath = path;
    if (lines > 0)
        call.resultText = QStringLiteral("line\n").repeated(lines);
    return call;
}

ChatMessage message(ChatRole role, QList<ChatBlock> blocks)
{
    ChatMessage message;
    message.id = id();
    message.role = role;
    message.blocks = std::move(blocks);
    message.date = QDateTime(QDate(2026, 3, 1), QTime(12, 0), Qt::UTC);
    return message;
}

ChatMessage user(const QString& text)
{
    return message(ChatRole::User, {ChatTextBlock{id(), text}});
}

ChatMessage notice(const QString& text)
{
    return message(ChatRole::System, {ChatTextBlock{id(), text}});
}

ChatBlock text(const QString& words)
{
    return ChatTextBlock{id(), words};
}

ChatBlock picture(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(QColor(0x12, 0x14, 0x18));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x5A, 0xC8, 0xDC), 4));
    for (int x = 1; x < width; ++x) {
        const auto wave = [&](int at) { return height / 2.0 - height / 4.0 * std::sin(at / 60.0); };
        painter.drawLine(QPointF(x - 1, wave(x - 1)), QPointF(x, wave(x)));
    }
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return ChatImageBlock{id(), ChatImage{bytes, std::nullopt, QStringLiteral("image/png")}};
}

const char Failure[] = "41/42 Test #41: routes.level_outside_range ....***Failed  0.07 sec\n"
                       "tests/routes_test.cpp:118: FAILED: REQUIRE( reply.status == 404 )\n"
                       "  with expansion: 500 == 404\n";

} // namespace

ChatTranscript work()
{
    nextId = 0;
    ChatTranscript transcript;
    transcript.append(user(QStringLiteral(
        "A time outside the predicted range gives a 500. Make it a 404 with a reason, and show me "
        "what changed for the clients.")));
    ChatToolCall edit = file(QStringLiteral("Edit"), QStringLiteral("/p/src/routes.cpp"));
    edit.edits = {{QStringLiteral("    auto level = store.level_at(station, when);\n"
                                  "    return json_response(*level);"),
                   QStringLiteral("    auto level = store.level_at(station, when);\n"
                                  "    if (!level)\n"
                                  "        return problem(Status::not_found, \"out_of_range\");\n"
                                  "    return json_response(*level);")}};
    edit.id = QStringLiteral("open-edit");
    ChatToolCall failed =
        tool(QStringLiteral("Bash"), QStringLiteral("ctest --preset dev -R routes"),
             ChatToolStatus::Failed,
             QString::fromLatin1(Failure) + QStringLiteral("more\n").repeated(35));
    failed.id = QStringLiteral("open-bash");
    ChatToolCall first = file(QStringLiteral("Read"), QStringLiteral("/p/src/routes.cpp"), 142);
    first.id = QStringLiteral("open-read");
    transcript.append(message(
        ChatRole::Assistant,
        {ChatThinkingBlock{QStringLiteral("open-thought"),
                           QStringLiteral("The store returns nothing outside the series, so the "
                                          "handler is what has to look. Both routes share it.")},
         first, file(QStringLiteral("Read"), QStringLiteral("/p/src/tide_store.cpp"), 96), failed,
         edit,
         tool(QStringLiteral("Bash"), QStringLiteral("ctest --preset dev -R routes"),
              ChatToolStatus::Done, QStringLiteral("42/42 passed")),
         text(QStringLiteral("The handler took the optional’s value without a look. All 42 tests "
                             "pass now, and this "
                             "is what a client sees:\n\n"
                             "| Request | Before | Now | Time |\n|---|---|---|---|\n"
                             "| `/level?at=2026-06-01` | 200 | 200 | 0.9 ms |\n"
                             "| `/level?at=2031-01-01` | 500 | 404 out_of_range | 0.3 ms |\n")),
         picture(760, 186),
         tool(QStringLiteral("Bash"),
              QStringLiteral("git push --force-with-lease origin level-range"),
              ChatToolStatus::Running)}));
    return transcript;
}

QStringList openInWork()
{
    return {QStringLiteral("group-open-read"), QStringLiteral("open-bash"),
            QStringLiteral("open-edit"), QStringLiteral("open-thought")};
}

ChatTranscript tools()
{
    nextId = 1000;
    ChatTranscript transcript;
    ChatToolCall write = file(QStringLiteral("Write"), QStringLiteral("/p/tests/range_test.cpp"));
    write.edits = {{QString(), QStringLiteral("x\n").repeated(83) + u'x'}};
    ChatToolCall agent = tool(QStringLiteral("Task"),
                              QStringLiteral("Look for other callers of level_at in the services"),
                              ChatToolStatus::Running);
    transcript.subagents.push_back(
        {agent.id,
         {},
         QStringLiteral("Find callers"),
         {},
         ChatToolStatus::Running,
         {},
         7,
         1200,
         {},
         false,
         {message(ChatRole::Assistant,
                  {tool(QStringLiteral("Grep"), QStringLiteral("level_at"), ChatToolStatus::Done,
                        QStringLiteral("a\nb")),
                   file(QStringLiteral("Read"), QStringLiteral("/p/a.cpp"), 12)})}});
    transcript.append(user(QStringLiteral("Cover the same edges in the tests")));
    transcript.append(message(
        ChatRole::Assistant,
        {tool(QStringLiteral("Bash"), QStringLiteral("cmake --build --preset dev"),
              ChatToolStatus::Running),
         file(QStringLiteral("Read"), QStringLiteral("/p/tide_store.cpp"), 96), write,
         tool(QStringLiteral("Grep"), QStringLiteral("upper_bound"), ChatToolStatus::Done,
              QStringLiteral("x")),
         tool(QStringLiteral("WebFetch"), QStringLiteral("https://tides.example.org/doc")),
         tool(QStringLiteral("WebSearch"), QStringLiteral("harmonic tide constants")), agent,
         tool(QStringLiteral("TodoWrite"), QStringLiteral("3 to-dos")),
         tool(QStringLiteral("AskUserQuestion"), QStringLiteral("Blend"), ChatToolStatus::Running),
         tool(QStringLiteral("mcp__browser__get_page"), QString(), ChatToolStatus::Done,
              QStringLiteral("x")),
         tool(QStringLiteral("Deploy"), QStringLiteral("preview"), ChatToolStatus::Failed,
              QStringLiteral("no"))}));
    transcript.append(notice(QStringLiteral("<local-command-stdout>Compacted. 42k tokens "
                                            "freed.</local-command-stdout>")));
    return transcript;
}

ChatTranscript markdown()
{
    nextId = 2000;
    ChatTranscript transcript;
    transcript.append(user(QStringLiteral("What changed?")));
    transcript.append(message(
        ChatRole::Assistant,
        {text(QStringLiteral(
            "# What changed\n\nBoth routes share `src/routes.cpp:88`, so **one** test is enough; "
            "*the rest* stays ~~as it was~~. See [the page](https://example.org/tides).\n\n"
            "- [x] Store and series\n- [ ] README\n\n"
            "> Times are UTC, as in the tables.\n\n"
            "The handler took the optional’s value without a look. It now answers:\n\n"
            "- **404** with `out_of_range` when no sample covers the time\n"
            "- **404** with `unknown_station` as before\n  - nested with `code`\n    1. deeper\n"
            "1. first\n2. second, which is long enough that it has to be wrapped onto another line "
            "in a column of this width, since nobody writes short points\n\n"
            "```json\n{ \"error\": \"out_of_range\", \"covers\": [\"2026-01-01\", \"2026-12-31\"] "
            "}\n```\n\n---\n\n## Next\n\nThe suite passes. I’d also document the new reason in the "
            "README, next to the others.\n\n```\nno language\n\tindented\n```\n"))}));
    return transcript;
}

ChatTranscript hostile()
{
    nextId = 3000;
    ChatTranscript transcript;
    transcript.append(user(QStringLiteral("<b>bold?</b> ") + QString(300, u'W')));
    transcript.append(message(
        ChatRole::Assistant,
        {text(QStringLiteral(
                  "Emoji 😀👩‍👩‍👧 and العربية and 日本語 in a line. ") +
              QString(400, u'x') + QStringLiteral("\n\n| ") +
              QStringLiteral("column | ").repeated(14) + QStringLiteral("\n") +
              QStringLiteral("|---").repeated(14) + QStringLiteral("|\n| ") +
              QStringLiteral("some longer words | ").repeated(14)),
         tool(QString(200, u'T'), QString(500, u's')), picture(30, 30), picture(60, 900),
         ChatImageBlock{id(), ChatImage{QByteArray("broken"), std::nullopt, std::nullopt}},
         ChatImageBlock{id(), ChatImage{std::nullopt,
                                        QUrl(QStringLiteral("https://example.org/plot-2031.png")),
                                        std::nullopt}}}));
    transcript.append(notice(QStringLiteral("a notice line\n").repeated(30)));
    return transcript;
}

ChatTranscript streaming()
{
    ChatTranscript transcript = markdown();
    transcript.append(user(QStringLiteral("Go on")));
    ChatMessage reply = message(
        ChatRole::Assistant,
        {text(QStringLiteral("The suite passes. I’d also document the new reason in the README, "
                             "next to the"))});
    reply.isStreaming = true;
    transcript.append(reply);
    return transcript;
}

} // namespace Bralto::Samples
