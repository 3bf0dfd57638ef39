#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>
#include <string_view>
#include <variant>
#include <vector>

/// The two messages of the control socket: a client asks for one tool, the window answers with its
/// result. Each is one JSON object on a line of its own, without the line feed here. Any thread.
namespace Bralto::ControlMessage {

/// The longest line of either direction, its line feed included, in bytes.
inline constexpr qsizetype LineLimit = 134'217'728;

struct Request {
    QString tool; ///< As it came, maybe the name of no tool.
    QJsonObject arguments;

    bool operator==(const Request&) const = default;
};

/// What the agent is told of a line that is no request.
inline constexpr char Malformed[] = "Malformed request";

/// Absent if `line` isn't an object with a string `tool`. Arguments that are no object are none.
[[nodiscard]] std::optional<Request> decodeRequest(const QByteArray& line);

/// `arguments` is the text of a JSON object on one line; it goes through as it is.
[[nodiscard]] QByteArray encodeRequest(const QString& tool, std::string_view arguments);

struct Text {
    QString text;

    bool operator==(const Text&) const = default;
};

struct Image {
    QByteArray bytes; ///< The file's own; they travel in Base64.
    QString mimeType;

    bool operator==(const Image&) const = default;
};

using Item = std::variant<Text, Image>;

/// The answer in place of one that can't be sent.
inline constexpr char Unsendable[] = R"({"content":[],"isError":true})";

/// `{"content":[…],"isError":…}`, or `Unsendable` for a result that no line can hold.
[[nodiscard]] QByteArray encodeResponse(const std::vector<Item>& content, bool isError);

} // namespace Bralto::ControlMessage
