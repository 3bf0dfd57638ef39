#pragma once

#include <optional>
#include <string_view>

namespace Kovalt {

/// What a program wants to tell its user (OSC 777): views of the payload.
struct Notification {
    std::string_view title;
    std::string_view body;

    bool operator==(const Notification&) const = default;
};

/// Reads "notify;title;body"; the body may hold ";". None for any other text.
[[nodiscard]] std::optional<Notification> parseNotification(std::string_view payload);

} // namespace Kovalt
