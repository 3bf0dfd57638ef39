#pragma once

#include "Base/Json.h"
#include "Chat/ChatProtocol.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace Bralto::ChatLines {

inline const QString Home = QStringLiteral("/home/user");
inline const QDateTime Now = QDateTime::fromMSecsSinceEpoch(1'795'000'000'123, Qt::UTC);

/// The events of one line of JSON text.
inline std::vector<ChatEvent> decode(std::string_view line, ChatProtocol::Source source)
{
    JsonReader reader;
    const auto object = reader.object(line);
    EXPECT_TRUE(object) << line;
    return object ? ChatProtocol::events(*object, source, Now, Home) : std::vector<ChatEvent>();
}

inline std::vector<ChatEvent> live(std::string_view line)
{
    return decode(line, ChatProtocol::Source::Live);
}

inline std::vector<ChatEvent> stored(std::string_view line)
{
    return decode(line, ChatProtocol::Source::Stored);
}

/// The one event of this type among `events`; a failure if they are not exactly that one.
template <typename Event>
Event only(const std::vector<ChatEvent>& events)
{
    EXPECT_EQ(events.size(), 1u);
    if (events.size() != 1 || !std::holds_alternative<Event>(events.front())) {
        ADD_FAILURE() << "There is no such event.";
        return {};
    }
    return std::get<Event>(events.front());
}

} // namespace Bralto::ChatLines
