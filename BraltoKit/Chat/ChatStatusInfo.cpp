#include "Chat/ChatStatusInfo.h"

namespace Bralto {

namespace {

QString capitalised(QString text)
{
    if (!text.isEmpty())
        text[0] = text[0].toUpper();
    return text;
}

bool isDate(const QString& part)
{
    return part.size() == 8 &&
           std::all_of(part.begin(), part.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

const PermissionMode* findMode(const QString& mode)
{
    const QList<PermissionMode>& modes = ChatCommands::permissionModes();
    const auto found = std::find_if(modes.begin(), modes.end(),
                                    [&](const PermissionMode& each) { return each.mode == mode; });
    return found != modes.end() ? &*found : nullptr;
}

} // namespace

ChatStatusInfo ChatStatusInfo::of(const ClaudeChat& chat)
{
    const ChatTranscript& transcript = chat.transcript();
    const ChatSessionInfo& status = transcript.status;
    ChatStatusInfo info;
    info.folder = chat.folder();
    info.version = status.cliVersion;
    info.modelName = status.modelName;
    if (!info.modelName && status.model)
        info.modelName = ChatStatusTexts::displayName(*status.model);
    info.permissionMode = status.permissionMode;
    info.effort = status.effort;
    info.contextUsed = status.contextTokens;
    info.contextWindow = status.contextWindow;
    for (const ChatSubagent& agent : transcript.subagents) {
        if (agent.status == ChatToolStatus::Running)
            info.runningAgents.push_back(agent.description);
    }
    info.cost = status.costUSD;
    info.state = chat.state();
    return info;
}

std::optional<double> ChatStatusInfo::contextFraction() const
{
    if (!contextUsed || !contextWindow || *contextWindow <= 0)
        return std::nullopt;
    return std::clamp(double(*contextUsed) / double(*contextWindow), 0.0, 1.0);
}

namespace ChatStatusTexts {

QString tokens(qint64 count)
{
    constexpr qint64 Million = 1000000;
    if (count < 1000)
        return QString::number(count);
    if (count < Million)
        return QString::number(count / 1000) + u'k';
    return QString::number(double(count) / double(Million), 'f', count % Million == 0 ? 0 : 1) +
           u'M';
}

QString displayName(const QString& model)
{
    QString name = model;
    QStringList parts = name.remove(QLatin1String("[1m]")).split(u'-', Qt::SkipEmptyParts);
    if (!parts.isEmpty() && parts.first() == QLatin1String("claude"))
        parts.removeFirst();
    parts.removeIf(isDate);
    if (parts.isEmpty())
        return model;
    const QString family = capitalised(parts.takeFirst());
    return parts.isEmpty() ? family : family + u' ' + parts.join(u'.');
}

QString modeName(const QString& mode)
{
    const PermissionMode* known = findMode(mode);
    return known != nullptr ? known->name : mode;
}

QString modeSymbol(const QString& mode)
{
    const PermissionMode* known = findMode(mode);
    return known != nullptr ? known->symbol : QStringLiteral("lock");
}

QString stateLabel(const ChatState& state)
{
    switch (state.kind) {
    case ChatState::Kind::Idle:
        return QStringLiteral("Ready");
    case ChatState::Kind::Starting:
        return QStringLiteral("Starting");
    case ChatState::Kind::Working:
        return QStringLiteral("Working · Esc to stop");
    case ChatState::Kind::Waiting:
        return QStringLiteral("Waiting for you");
    case ChatState::Kind::Failed:
        break;
    }
    return QStringLiteral("Stopped");
}

QStringList banner(const ChatStatusInfo& info)
{
    QStringList parts;
    parts.append(info.version ? QStringLiteral("Claude Code ") + *info.version
                              : QStringLiteral("Claude Code"));
    if (info.modelName)
        parts.append(*info.modelName);
    if (const QString folder = info.folder.section(u'/', -1); !folder.isEmpty())
        parts.append(folder);
    return parts;
}

QString contextHelp(qint64 used, qint64 window)
{
    return QStringLiteral("Context window: %1 of %2 tokens").arg(tokens(used), tokens(window));
}

QString agentsRunning(qsizetype count)
{
    return QStringLiteral("%1 %2 running")
        .arg(count)
        .arg(count == 1 ? QStringLiteral("agent") : QStringLiteral("agents"));
}

QString cost(double dollars)
{
    return QStringLiteral("$%1").arg(dollars, 0, 'f', 2);
}

} // namespace ChatStatusTexts

} // namespace Bralto
