#pragma once

#include "Base/Json.h"
#include "Chat/ChatProtocol.h"

#include <functional>
#include <string_view>

namespace Bralto {

/// Calls `use` with the events of every line in `bytes`. A line may stand alone or in an entry of a
/// recording, as the seeds have it.
inline void forEachEvent(std::string_view bytes, ChatProtocol::Source source,
                         const std::function<void(const ChatEvent&)>& use)
{
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(0, Qt::UTC);
    const QString home = QStringLiteral("/home/user");
    JsonReader reader;
    while (!bytes.empty()) {
        const std::size_t end = std::min(bytes.find('\n'), bytes.size());
        const std::string_view line = bytes.substr(0, end);
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
        const auto object = reader.object(line);
        if (!object)
            continue;
        const auto inner = object->object("line");
        for (const ChatEvent& event :
             ChatProtocol::events(inner ? *inner : *object, source, now, home))
            use(event);
    }
}

} // namespace Bralto
