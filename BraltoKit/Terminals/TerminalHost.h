#pragma once

#include <QString>
#include <QStringList>

namespace Bralto {

/// What a terminal pane needs of the program around it. Main thread.
class TerminalHost {
public:
    virtual ~TerminalHost() = default;

    /// The user's login shell, an absolute path: the program's own SHELL, else "/bin/zsh".
    [[nodiscard]] virtual QString shell() const = 0;
    /// The whole environment of a pane, as "NAME=value". Sees to it that the files which it names
    /// are on disk.
    [[nodiscard]] virtual QStringList environment(const QString& pane, const QString& project,
                                                  const QString& shell) const = 0;
    /// The line that starts the agent in a shell or goes on with that conversation, without the
    /// line feed. `session` is a UUID in lower case.
    [[nodiscard]] virtual QString claudeCommand(const QString& session) = 0;
    /// The pane waits for nothing any more.
    virtual void clearAttention(const QString& pane) = 0;
    /// Rows of history that a pane keeps.
    [[nodiscard]] virtual int historyRows() const = 0;
};

} // namespace Bralto
