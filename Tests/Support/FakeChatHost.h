#pragma once

#include "Chat/ChatHost.h"

#include <QHash>
#include <QList>
#include <QSet>

#include <utility>

namespace Bralto {

/// A program around a conversation, as a test describes it, that remembers what it was told.
class FakeChatHost final : public ChatHost {
public:
    QString command = "claude --chrome";
    QStringList mcpFlags;
    QSet<QString> transcripts;               ///< Session ids that have a stored conversation.
    QHash<QString, QString> transcriptFiles; ///< Session id to the path of its file.
    QHash<QString, QByteArray> files;
    bool demo = false;

    int hookInstallations = 0;
    QStringList clearedPanes;
    QList<std::pair<QByteArray, QDateTime>> rateLimits;

    [[nodiscard]] QString baseCommand() const override { return command; }
    [[nodiscard]] bool hasTranscript(const QString& sessionId) const override
    {
        return transcripts.contains(sessionId) || transcriptFiles.contains(sessionId);
    }
    [[nodiscard]] QStringList mcpConfigFlags() const override { return mcpFlags; }
    [[nodiscard]] QString shell() const override { return "/bin/zsh"; }
    [[nodiscard]] QStringList environment(const QString& pane, const QString& project,
                                          const QString& shell) const override
    {
        return {"TERM=xterm-256color", "PANE=" + pane, "PROJECT=" + project, "SHELL=" + shell};
    }
    void installHooks() override { ++hookInstallations; }
    void clearAttention(const QString& pane) override { clearedPanes.append(pane); }
    void ingestRateLimits(const QByteArray& info, const QDateTime& at) override
    {
        rateLimits.append({info, at});
    }
    [[nodiscard]] bool isDemo() const override { return demo; }
    [[nodiscard]] QString home() const override { return "/home/user"; }
    [[nodiscard]] std::optional<QByteArray> readFile(const QString& path) const override
    {
        const auto found = files.constFind(path);
        return found == files.constEnd() ? std::nullopt : std::optional(*found);
    }
    [[nodiscard]] std::optional<QString> transcriptPath(const QString& sessionId) const override
    {
        const auto found = transcriptFiles.constFind(sessionId);
        return found == transcriptFiles.constEnd() ? std::nullopt : std::optional(*found);
    }
};

} // namespace Bralto
