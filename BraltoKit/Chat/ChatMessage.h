#pragma once

/// @file
/// What a conversation is made of, as plain values. Strings come from the agent and are data:
/// never trusted to be short, never run as markup.

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QUrl>

#include <optional>
#include <variant>

namespace Bralto {

/// A picture, as bytes or as an address.
struct ChatImage {
    std::optional<QByteArray> data;
    std::optional<QUrl> url;
    std::optional<QString> mediaType;

    bool operator==(const ChatImage&) const = default;
};

/// One replacement that a tool makes in a file.
struct ChatEdit {
    QString before; ///< Empty for a file that is written whole.
    QString after;

    bool operator==(const ChatEdit&) const = default;
};

/// How far a tool call or a subagent has come.
enum class ChatToolStatus { Running, Done, Failed };

/// One call of a tool, with its outcome as soon as that is known.
struct ChatToolCall {
    QString id;
    QString name;
    QString inputJSON; ///< Indented, keys sorted; while it streams, the text that has arrived.
    QString summary;   ///< One line, empty while the input streams.
    ChatToolStatus status = ChatToolStatus::Running;
    std::optional<QString> resultText;
    QList<ChatImage> resultImages;
    std::optional<QString> filePath;
    QList<ChatEdit> edits;

    bool operator==(const ChatToolCall&) const = default;
};

struct ChatTextBlock {
    QString id;
    QString text;

    bool operator==(const ChatTextBlock&) const = default;
};

struct ChatThinkingBlock {
    QString id;
    QString text;

    bool operator==(const ChatThinkingBlock&) const = default;
};

struct ChatImageBlock {
    QString id;
    ChatImage image;

    bool operator==(const ChatImageBlock&) const = default;
};

/// One piece of a message. A tool call's own id is the block's id.
using ChatBlock = std::variant<ChatTextBlock, ChatThinkingBlock, ChatImageBlock, ChatToolCall>;

/// The id of a block, by which a view keeps a row's identity.
[[nodiscard]] const QString& blockId(const ChatBlock& block);

enum class ChatRole { User, Assistant, System };

/// One message, oldest block first.
struct ChatMessage {
    QString id;
    ChatRole role = ChatRole::Assistant;
    QList<ChatBlock> blocks;
    QDateTime date; ///< UTC.
    bool isStreaming = false;

    bool operator==(const ChatMessage&) const = default;
};

/// What came back from a tool call.
struct ChatToolResult {
    QString toolUseId;
    std::optional<QString> text;
    QList<ChatImage> images;
    bool isError = false;
    bool isAsync = false; ///< The call goes on in the background.

    bool operator==(const ChatToolResult&) const = default;
};

/// A question of the agent with its choices.
struct ChatQuestion {
    struct Option {
        QString label;
        std::optional<QString> detail;

        bool operator==(const Option&) const = default;
    };

    struct Item {
        std::optional<QString> header;
        QString question;
        QList<Option> options;
        bool multiSelect = false;

        bool operator==(const Item&) const = default;
    };

    QString id; ///< The id of the control request that carries it.
    QList<Item> items;
    std::optional<QString> toolUseId;

    bool operator==(const ChatQuestion&) const = default;
};

/// A request to use a tool, as the card shows it.
struct ChatPermission {
    QString id; ///< The id of the control request.
    QString tool;
    QString summary;
    QByteArray input; ///< The tool's input as JSON.

    bool operator==(const ChatPermission&) const = default;
};

/// Something that goes along with a typed turn.
struct ChatAttachment {
    struct Image {
        QByteArray data;
        QString mediaType;
        QString name = {}; ///< Of the file that it was read from; empty for a pasted picture.

        bool operator==(const Image&) const = default;
    };
    struct File {
        QString path; ///< Standardised.

        bool operator==(const File&) const = default;
    };

    QString id; ///< A UUID.
    std::variant<Image, File> kind;

    bool operator==(const ChatAttachment&) const = default;
};

} // namespace Bralto
