#pragma once

/// @file
/// One decoded line of the agent's stream. What the program doesn't know yields no event.

#include "Chat/ChatCommands.h"
#include "Chat/ChatMessage.h"

#include <QByteArray>
#include <QMap>

#include <variant>

namespace Bralto {

/// A model that the agent offers.
struct ChatModelOption {
    QString value;
    QString resolvedModel;
    QString displayName;
    std::optional<QString> description;
    QStringList effortLevels;

    bool operator==(const ChatModelOption&) const = default;
};

/// What the agent says of itself when it starts.
struct ChatCapabilities {
    QList<ChatCommand> commands;
    QList<ChatModelOption> models;
    std::optional<QString> version;
    std::optional<QString> permissionMode;
    std::optional<QString> plan;
    bool remoteControlAvailable = false;
    bool remoteControlAutoEnable = false;

    bool operator==(const ChatCapabilities&) const = default;
};

namespace ChatEvents {

struct Initialized {
    std::optional<QString> version, model, permissionMode, cwd;
    bool operator==(const Initialized&) const = default;
};
struct ModelNames {
    QMap<QString, QString> names; ///< Model identifier to display name.
    bool operator==(const ModelNames&) const = default;
};
struct RateLimits {
    QByteArray info; ///< One JSON object.
    bool operator==(const RateLimits&) const = default;
};
struct StreamStart {
    QString messageId;
    QDateTime date = {}; ///< When the message began.
    bool operator==(const StreamStart&) const = default;
};
struct StreamBlock {
    qint64 index = 0;
    ChatBlock block;
    bool operator==(const StreamBlock&) const = default;
};
struct StreamDelta {
    qint64 index = 0;
    QString text;
    bool operator==(const StreamDelta&) const = default;
};
struct Assistant {
    QString messageId;
    QList<ChatBlock> blocks;
    std::optional<qint64> contextTokens;
    QDateTime date;
    std::optional<QString> parent;
    bool operator==(const Assistant&) const = default;
};
struct ToolResults {
    QList<ChatToolResult> results;
    std::optional<QString> parent;
    bool operator==(const ToolResults&) const = default;
};
struct User {
    ChatMessage message;
    bool operator==(const User&) const = default;
};
struct Notice {
    QString id;
    QString text;
    QDateTime date;
    std::optional<QString> parent;
    bool operator==(const Notice&) const = default;
};
struct Question {
    QString requestId;
    ChatQuestion question;
    QByteArray input;
    bool operator==(const Question&) const = default;
};
struct Permission {
    QString requestId;
    QByteArray input;
    QString tool;
    bool operator==(const Permission&) const = default;
};
struct UnsupportedRequest {
    QString requestId;
    bool operator==(const UnsupportedRequest&) const = default;
};
/// The agent withdraws an open request; its card goes without a reply.
struct CancelledRequest {
    QString requestId;
    bool operator==(const CancelledRequest&) const = default;
};
struct TaskStarted {
    QString toolId;
    std::optional<QString> taskId, description, type;
    bool background = false;
    bool operator==(const TaskStarted&) const = default;
};
struct TaskProgress {
    QString toolId;
    std::optional<QString> activity;
    std::optional<qint64> toolUses, tokens;
    bool operator==(const TaskProgress&) const = default;
};
struct TaskEnded {
    QString toolId;
    bool failed = false;
    std::optional<QString> summary;
    bool operator==(const TaskEnded&) const = default;
};
struct Result {
    std::optional<QString> error;
    std::optional<double> costUSD;
    std::optional<qint64> tokens;
    QMap<QString, qint64> contextWindows; ///< Model identifier to tokens, in ascending order.
    qint64 queued = 0;
    bool operator==(const Result&) const = default;
};
struct Capabilities {
    ChatCapabilities capabilities;
    bool operator==(const Capabilities&) const = default;
};
struct Commands {
    QList<ChatCommand> commands;
    bool operator==(const Commands&) const = default;
};
struct PermissionModeChanged {
    QString mode;
    bool operator==(const PermissionModeChanged&) const = default;
};
struct RemoteControl {
    QString state;
    std::optional<QString> detail;
    bool operator==(const RemoteControl&) const = default;
};
struct ControlResponse {
    QString requestId;
    std::optional<QByteArray> payload;
    std::optional<QString> error;
    bool operator==(const ControlResponse&) const = default;
};
struct StreamStop {
    bool operator==(const StreamStop&) const = default;
};

} // namespace ChatEvents

using ChatEvent =
    std::variant<ChatEvents::Initialized, ChatEvents::ModelNames, ChatEvents::RateLimits,
                 ChatEvents::StreamStart, ChatEvents::StreamBlock, ChatEvents::StreamDelta,
                 ChatEvents::Assistant, ChatEvents::ToolResults, ChatEvents::User,
                 ChatEvents::Notice, ChatEvents::Question, ChatEvents::Permission,
                 ChatEvents::UnsupportedRequest, ChatEvents::TaskStarted, ChatEvents::TaskProgress,
                 ChatEvents::TaskEnded, ChatEvents::Result, ChatEvents::Capabilities,
                 ChatEvents::Commands, ChatEvents::PermissionModeChanged, ChatEvents::RemoteControl,
                 ChatEvents::ControlResponse, ChatEvents::StreamStop, ChatEvents::CancelledRequest>;

} // namespace Bralto
