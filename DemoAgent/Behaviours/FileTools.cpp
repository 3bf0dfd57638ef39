#include "DemoAgent/Behaviours/Behaviours.h"
#include "DemoAgent/Behaviours/Files.h"

#include <QDir>
#include <QFileInfo>

namespace DemoAgent::Behaviours {

namespace {

QString outside(const QString& path)
{
    return path + u" lies outside the folder that I work in.";
}

ToolResult failure(const QString& why)
{
    return {.content = why, .isError = true, .details = QString(u"Error: " + why)};
}

// As the real tool gives it: each line behind its number.
QString numbered(const QString& text)
{
    QString result;
    int number = 0;
    for (const QString& line : text.split(u'\n'))
        result += QString("%1\t%2\n").arg(++number, 6).arg(line);
    return result;
}

// A name may stand in quotation marks; what follows it is the text.
std::pair<QString, QString> nameAndText(const QString& words)
{
    if (words.startsWith(u'"')) {
        const qsizetype end = words.indexOf(u'"', 1);
        if (end > 0)
            return {words.mid(1, end - 1), words.mid(end + 1).trimmed()};
    }
    const qsizetype end = words.indexOf(u' ');
    if (end < 0)
        return {words, {}};
    return {words.left(end), words.mid(end + 1).trimmed()};
}

ToolResult carryOutWrite(const Conversation& conversation, const QJsonObject& input)
{
    const QString asked = input.value("file_path").toString();
    const auto path = Files::below(conversation.folder, asked);
    if (!path)
        return failure(outside(asked));
    const bool isNew = !QFileInfo::exists(*path);
    const QString content = input.value("content").toString();
    const QString error = Files::write(*path, content);
    if (!error.isEmpty())
        return failure(error);
    return {
        .content = QString((isNew ? u"Created " : u"Updated ") + *path),
        .isError = false,
        .details = QJsonObject{{"type", isNew ? "create" : "update"},
                               {"filePath", *path},
                               {"content", content}},
    };
}

ToolResult carryOutEdit(const Conversation& conversation, const QJsonObject& input)
{
    const QString asked = input.value("file_path").toString();
    const auto path = Files::below(conversation.folder, asked);
    if (!path)
        return failure(outside(asked));
    Files::Reading file = Files::read(*path);
    if (!file.error.isEmpty())
        return failure(file.error);
    const QString before = input.value("old_string").toString();
    const qsizetype at = file.text.indexOf(before);
    if (at < 0 || before.isEmpty())
        return failure("The text to replace is not in the file.");
    file.text.replace(at, before.size(), input.value("new_string").toString());
    const QString error = Files::write(*path, file.text);
    if (!error.isEmpty())
        return failure(error);
    return {.content = QString(u"Updated " + *path),
            .isError = false,
            .details = QJsonObject{{"filePath", *path},
                                   {"oldString", before},
                                   {"newString", input.value("new_string")}}};
}

using CarryOut = ToolResult (*)(const Conversation&, const QJsonObject&);

// Asks, carries out or not, and says which.
Task<> change(Turn& turn, ToolUse use, CarryOut carryOut)
{
    const Decision decision = co_await turn.call(use, Permission::Edit);
    QString words;
    if (decision.isAllowed) {
        const ToolResult result = carryOut(turn.conversation(), decision.input);
        turn.toolResult(use, result);
        words = result.isError ? QString(u"That didn't work: " + result.content.toString())
                               : QString(u"Done. `" + use.description + u"` is written.");
    } else {
        turn.toolRefused(use, decision);
        words =
            u"All right, I leave `" + use.description + u"` alone. You said: " + decision.message;
    }
    co_await turn.say(words);
}

} // namespace

Task<> readFile(Turn& turn, QString words)
{
    const QString name = words.isEmpty() ? QString("README.md") : nameAndText(words).first;
    const QString folder = turn.conversation().folder;
    const QJsonObject input{{"file_path", QDir::cleanPath(QDir(folder).absoluteFilePath(name))}};
    const ToolUse use = makeToolUse("Read", input);
    co_await turn.say("Let me read that.");
    co_await turn.call(use, Permission::Never);

    const auto path = Files::below(folder, name);
    const Files::Reading file =
        path ? Files::read(*path) : Files::Reading{.text = {}, .error = outside(name)};
    QString answer;
    if (!file.error.isEmpty()) {
        turn.toolResult(use, failure(file.error));
        answer = u"I couldn't read `" + name + u"`: " + file.error;
    } else {
        const qsizetype lines = file.text.count(u'\n') + (file.text.endsWith(u'\n') ? 0 : 1);
        const QJsonObject details{{"filePath", *path}, {"numLines", lines}};
        turn.toolResult(use, {.content = numbered(file.text),
                              .isError = false,
                              .details = QJsonObject{{"type", "text"}, {"file", details}}});
        answer = QString("`%1` has %2 lines and %3 characters. It begins:\n\n> %4")
                     .arg(name)
                     .arg(lines)
                     .arg(file.text.size())
                     .arg(file.text.section(u'\n', 0, 0).left(120));
    }
    co_await turn.say(answer);
}

Task<> writeFile(Turn& turn, QString words)
{
    auto [name, text] = nameAndText(words.isEmpty() ? QString("notes.txt") : words);
    if (text.isEmpty())
        text = "A note from the demo agent.";
    const QString path = QDir::cleanPath(QDir(turn.conversation().folder).absoluteFilePath(name));
    const QJsonObject input{{"file_path", path}, {"content", QString(text + u'\n')}};
    co_await turn.say("I'll write that file.");
    co_await change(turn, makeToolUse("Write", input, name), carryOutWrite);
}

Task<> editFile(Turn& turn, QString words)
{
    const auto [name, text] = nameAndText(words.isEmpty() ? QString("notes.txt") : words);
    const QString path = QDir::cleanPath(QDir(turn.conversation().folder).absoluteFilePath(name));
    // What can't be read gives an empty text to replace, which the tool then refuses.
    const auto place = Files::below(turn.conversation().folder, name);
    const QString before = place ? Files::read(*place).text.section(u'\n', 0, 0) : QString();
    const QString after = text.isEmpty() ? QString(before + u" (edited)") : text;
    const QJsonObject input{{"file_path", path}, {"old_string", before}, {"new_string", after}};
    co_await turn.say("I'll change the first line.");
    co_await change(turn, makeToolUse("Edit", input, name), carryOutEdit);
}

} // namespace DemoAgent::Behaviours
