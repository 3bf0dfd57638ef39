#include "Kovalt/Notification.h"

namespace Kovalt {

std::optional<Notification> parseNotification(std::string_view payload)
{
    constexpr std::string_view Command = "notify;";
    if (!payload.starts_with(Command))
        return std::nullopt;
    payload.remove_prefix(Command.size());
    const auto separator = payload.find(';');
    if (separator == payload.npos)
        return std::nullopt;
    return Notification{payload.substr(0, separator), payload.substr(separator + 1)};
}

} // namespace Kovalt
