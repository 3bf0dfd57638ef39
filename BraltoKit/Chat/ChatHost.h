#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>

namespace Bralto {

/// What a conversation needs of the program around it.
class ChatHost {
public:
    virtual ~ChatHost() = default;

    /// The user's own command for the agent, for example "claude --chrome"; never empty.
    [[nodiscard]] virtual QString baseCommand() const = 0;

    /// Whether the agent has a stored conversation of this id, in any project.
    [[nodiscard]] virtual bool hasTranscript(const QString& sessionId) const = 0;

    /// The flags that tell the agent of the program's own server; empty if there is none. Sees to
    /// it that the file which they name is on disk.
    [[nodiscard]] virtual QStringList mcpConfigFlags() const = 0;

    /// The shell that starts the agent, an absolute path.
    [[nodiscard]] virtual QString shell() const = 0;

    /// The environment of a pane, as "NAME=value".
    [[nodiscard]] virtual QStringList environment(const QString& pane, const QString& project,
                                                  const QString& shell) const = 0;

    /// The agent is about to start for the first time: the moment to ask for consent to hooks.
    virtual void installHooks() = 0;

    /// The pane waits for nothing any more.
    virtual void clearAttention(const QString& pane) = 0;

    /// The agent reported the plan's limits; `info` is one JSON object.
    virtual void ingestRateLimits(const QByteArray& info, const QDateTime& at) = 0;

    /// Demo mode: nothing reaches out by itself.
    [[nodiscard]] virtual bool isDemo() const = 0;

    /// The user's home folder.
    [[nodiscard]] virtual QString home() const = 0;

    /// The contents of a small settings file, absent if it can't be read.
    [[nodiscard]] virtual std::optional<QByteArray> readFile(const QString& path) const = 0;

    /// Where the conversation is stored, absent if it isn't. May be called on any thread.
    [[nodiscard]] virtual std::optional<QString> transcriptPath(const QString& sessionId) const = 0;
};

} // namespace Bralto
