#include "DemoAgent/Script/ScriptInbox.h"

#include <algorithm>

namespace DemoAgent {

Task<std::optional<QJsonObject>> ScriptInbox::next(Matcher matches)
{
    for (;;) {
        const auto found = std::ranges::find_if(m_lines, matches);
        if (found != m_lines.end()) {
            const QJsonObject line = *found;
            m_lines.erase(found);
            co_return line;
        }
        if (m_isClosed)
            co_return std::nullopt;
        Later<bool> arrival;
        m_arrival = &arrival;
        co_await arrival;
        m_arrival = nullptr;
    }
}

Task<> ScriptInbox::end()
{
    while (!m_isClosed) {
        Later<bool> arrival;
        m_arrival = &arrival;
        co_await arrival;
        m_arrival = nullptr;
    }
}

ScriptInbox::Matcher lineOf(const QString& type, const QString& subtype)
{
    return [type, subtype](const QJsonObject& line) {
        return line.value("type").toString() == type &&
               (subtype.isEmpty() || line.value("request")["subtype"].toString() == subtype);
    };
}

ScriptInbox::Matcher answerTo(const QString& requestId)
{
    return [requestId](const QJsonObject& line) {
        return line.value("response")["request_id"].toString() == requestId &&
               line.value("type").toString() == u"control_response";
    };
}

} // namespace DemoAgent
