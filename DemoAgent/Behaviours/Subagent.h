#pragma once

#include "DemoAgent/Conversation.h"

namespace DemoAgent {

/// A helper of the agent: the lines of its task, and what it does itself, which carries the id of
/// the call that started it.
class Subagent {
public:
    enum class Place { Foreground, Background };

    Subagent(Conversation& conversation, ToolUse use, Place place);

    [[nodiscard]] const QString& taskId() const { return m_taskId; }

    void started() const;
    /// Looks at the folder, then says what it found, which becomes the report.
    Task<> work();
    /// `status` is "completed", "failed" or "stopped".
    void ended(const QString& status, const QString& summary) const;

    [[nodiscard]] const QString& report() const { return m_report; }
    /// The result of the call for a helper in the foreground.
    [[nodiscard]] ToolResult result() const;
    /// The result that a helper in the background has at once.
    [[nodiscard]] ToolResult launched() const;

private:
    void progress(const QString& activity, const QString& tool);
    void sendAssistant(const QJsonObject& block);
    void sendLine(QJsonObject line);
    [[nodiscard]] QJsonObject taskLine(const char* subtype) const;
    [[nodiscard]] QJsonObject usage() const;
    void tellTasks(bool isRunning) const;

    Conversation& m_conversation;
    ToolUse m_use;
    Place m_place;
    QString m_taskId;
    QString m_report;
    qint64 m_tokens = 0;
    int m_toolUses = 0;
};

} // namespace DemoAgent
