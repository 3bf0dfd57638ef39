#pragma once

#include <QString>
#include <QUrl>

#include <optional>
#include <variant>

namespace Bralto {

/// Whether and how the conversation can be carried on from elsewhere.
struct ChatRemoteControl {
    struct Off {
        bool operator==(const Off&) const = default;
    };
    struct Starting {
        bool operator==(const Starting&) const = default;
    };
    struct On {
        bool connected = false;
        bool operator==(const On&) const = default;
    };
    struct Failed {
        QString message;
        bool operator==(const Failed&) const = default;
    };

    std::variant<Off, Starting, On, Failed> phase;
    std::optional<QUrl> sessionUrl;
    bool isAvailable = false;

    /// What a state that the agent reported makes of this.
    void apply(const QString& state, const std::optional<QString>& detail);

    bool operator==(const ChatRemoteControl&) const = default;
};

} // namespace Bralto
