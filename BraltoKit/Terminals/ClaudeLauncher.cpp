#include "Terminals/ClaudeLauncher.h"

#include "Base/ShellQuote.h"

namespace Bralto::ClaudeLauncher {

namespace {

/// Nothing that a demo shows reaches out by itself.
constexpr char DemoSettings[] = R"({"remoteControlAtStartup":false})";

QString settingsFlag(const ChatHost& host, const QString& base)
{
    const QString flag = QStringLiteral("--settings");
    if (!host.isDemo() || base.contains(flag))
        return {};
    return u' ' + flag + u' ' + ShellQuote::quoted(QLatin1String(DemoSettings));
}

QString mcpConfigArgument(const ChatHost& host)
{
    const QStringList flags = host.mcpConfigFlags();
    return flags.isEmpty() ? QString() : u' ' + ShellQuote::joined(flags);
}

} // namespace

QString baseCommand(const ChatHost& host)
{
    return host.baseCommand();
}

bool hasTranscript(const ChatHost& host, const QString& session)
{
    return host.hasTranscript(session);
}

QString command(ChatHost& host, const QString& session)
{
    const QString key = session.toLower();
    host.installHooks();
    const QString base = baseCommand(host);
    const QString conversation =
        hasTranscript(host, key) ? QStringLiteral(" --resume ") : QStringLiteral(" --session-id ");
    return base + settingsFlag(host, base) + mcpConfigArgument(host) + conversation + key;
}

} // namespace Bralto::ClaudeLauncher
