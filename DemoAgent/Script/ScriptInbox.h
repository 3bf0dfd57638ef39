#pragma once

#include "DemoAgent/Later.h"
#include "DemoAgent/Task.h"

#include <QJsonObject>

#include <deque>
#include <functional>
#include <optional>

namespace DemoAgent {

/// The app's lines that a script has kept for itself, in the order in which they came.
class ScriptInbox {
public:
    using Matcher = std::function<bool(const QJsonObject&)>;

    void put(const QJsonObject& line)
    {
        m_lines.push_back(line);
        wake();
    }

    /// No more lines will come.
    void close()
    {
        m_isClosed = true;
        wake();
    }

    /// Takes the first line that matches, waiting for it; absent once the input has ended.
    Task<std::optional<QJsonObject>> next(Matcher matches);
    /// Waits for the end of the input.
    Task<> end();

    /// What nobody has taken.
    [[nodiscard]] std::deque<QJsonObject> takeAll() { return std::exchange(m_lines, {}); }

private:
    void wake()
    {
        if (m_arrival)
            m_arrival->bring(true);
    }

    std::deque<QJsonObject> m_lines;
    Later<bool>* m_arrival = nullptr;
    bool m_isClosed = false;
};

/// For `next()`: a line of this type, and of this subtype if it is not empty.
[[nodiscard]] ScriptInbox::Matcher lineOf(const QString& type, const QString& subtype = {});
/// For `next()`: the answer to a request of ours.
[[nodiscard]] ScriptInbox::Matcher answerTo(const QString& requestId);

} // namespace DemoAgent
