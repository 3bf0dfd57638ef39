#pragma once

#include "DemoAgent/Script/ScriptContext.h"

#include <functional>

namespace DemoAgent {

/// Plays a script in place of the ordinary behaviour. What the script doesn't wait for is answered
/// as without it; user turns always wait for the script.
class ScriptPlayer {
public:
    /// `ended` is called after the last step, from within the player's own code.
    ScriptPlayer(ScriptContext context, std::vector<ScriptStep> steps, std::function<void()> ended);

    /// Reads and checks a script; the error names the line.
    [[nodiscard]] static std::variant<std::vector<ScriptStep>, ScriptError>
    load(const QString& path);

    void start();
    /// True if the script keeps the line for itself.
    [[nodiscard]] bool takes(const QJsonObject& line);
    void inputEnded() { m_context.inbox.close(); }
    /// Lines that the script has kept and not used, when it has ended.
    [[nodiscard]] std::deque<QJsonObject> leftOver() { return m_context.inbox.takeAll(); }

private:
    Task<> play();
    Task<> run(const std::vector<ScriptStep>& steps);
    [[nodiscard]] bool holds(const QString& condition) const;
    void collectHeld(const std::vector<ScriptStep>& steps);

    ScriptContext m_context;
    const std::vector<ScriptStep> m_steps;
    std::function<void()> m_ended;
    std::optional<Task<>> m_work;
};

} // namespace DemoAgent
