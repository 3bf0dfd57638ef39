#include "DemoAgent/Conversation.h"

#include <QFile>
#include <QJsonDocument>

namespace DemoAgent {

namespace {

// A flag's value is the JSON itself, or a file that holds it.
QStringList serverNames(const QStringList& configs)
{
    QStringList names;
    for (const QString& config : configs) {
        QByteArray json = config.toUtf8();
        if (QFile file(config); !config.trimmed().startsWith(u'{') && file.open(QFile::ReadOnly))
            json = file.readAll();
        names += QJsonDocument::fromJson(json)["mcpServers"].toObject().keys();
    }
    return names;
}

} // namespace

Prompt Prompt::fromContent(const QJsonValue& content)
{
    Prompt prompt{.text = textOf(content), .images = 0, .content = content};
    for (const QJsonValue block : content.toArray())
        prompt.images += block["type"] == "image" ? 1 : 0;
    return prompt;
}

Conversation::Conversation(const Arguments& arguments, QString id, QString homeFolder,
                           QString workFolder, Pace workPace, int output)
    : sessionId(std::move(id))
    , home(std::move(homeFolder))
    , folder(std::move(workFolder))
    , pace(workPace)
    , mcpServers(serverNames(arguments.mcpConfigs))
    , streams(arguments.includesPartialMessages)
    , out(output, sessionId)
    , store(home, folder, sessionId)
    , settings(Settings::fromArguments(arguments))
{
}

void Conversation::notePrompt(const QString& text)
{
    ++turns;
    previousPrompt = std::exchange(lastPrompt, text);
    if (firstPrompt.isEmpty())
        firstPrompt = text;
}

} // namespace DemoAgent
