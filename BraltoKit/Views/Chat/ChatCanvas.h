#pragma once

/// @file
/// What the builders of rows draw on: it turns words and measures into a `ChatScene`.

#include "Chat/ChatInline.h"
#include "Views/Chat/ChatScene.h"

#include <functional>

namespace Bralto {

/// Words in one style with exceptions, not laid out yet.
struct ChatText {
    QString text;
    TextRole role = TextRole::Body;
    QColor ink;
    QList<QTextLayout::FormatRange> formats;
    std::vector<ChatScene::Link> links;
    std::vector<std::pair<int, int>> codes; ///< Start and length of inline code.
    bool isSelectable = true;
    bool breaksAnywhere = false; ///< Between any two letters, as code does.
    QString separator = QStringLiteral("\n");
    double lineHeight = 0; ///< 0 for the role's own.
};

/// A picture of the conversation as far as it has come.
struct ChatPicture {
    enum class State { Loading, Ready, Failed };

    State state = State::Loading;
    QImage image; ///< Of `Ready` only; not larger than a thumbnail needs.
    QSize size;   ///< Of the whole picture.
    QString name; ///< What is known of where it comes from; may be empty.
};

/// What all rows of one layout share. Lives as long as the layout runs.
struct ChatCanvasStyle {
    const Tokens& tokens;
    double zoom = 1;
    QString folder; ///< Of the project, for links from inline code.
    /// The file that a piece of inline code names, if there is one.
    std::function<std::optional<QString>(const QString&)> findFile;
    /// Whether what the target of a toggle or of a copy button names is open, or was just copied.
    std::function<bool(const QString&)> isOn;
    /// A picture by its name: null while it loads or if it can't be shown.
    std::function<ChatPicture(const QString& key, const ChatImage&)> findImage;
};

class ChatCanvas {
public:
    explicit ChatCanvas(const ChatCanvasStyle& style)
        : m_style(style)
    {
    }

    [[nodiscard]] const Tokens& tokens() const { return m_style.tokens; }
    [[nodiscard]] const ChatCanvasStyle& style() const { return m_style; }
    /// A measure at the zoom.
    [[nodiscard]] double u(double units) const { return units * m_style.zoom; }
    [[nodiscard]] QFont font(TextRole role) const;
    [[nodiscard]] double lineHeight(TextRole role) const;
    [[nodiscard]] double width(TextRole role, const QString& text) const;

    void fill(const QRectF& rect, double radius, const QColor& ground, const QColor& edge = {});
    /// A fill with round corners at its top only.
    void fillTop(const QRectF& rect, double radius, const QColor& ground);
    /// An edge over everything that is drawn, pictures too.
    void frame(const QRectF& rect, double radius, const QColor& edge);
    void symbol(const QRectF& rect, const QString& name, const QColor& ink);
    void mark(const QRectF& rect, ChatToolStatus status);
    void picture(ChatScene::Picture picture);
    void hot(ChatScene::Hot hot);

    /// Lays `text` out in `width` with its top left at `at`; its height.
    double text(const ChatText& text, const QPointF& at, double width);
    /// One line, elided, centred in the height of `rect`; not selectable. Its width.
    double line(TextRole role, const QColor& ink, const QString& text, const QRectF& rect,
                Qt::TextElideMode elide = Qt::ElideRight, Qt::Alignment align = Qt::AlignLeft);
    /// The width that `text` would have in one line.
    [[nodiscard]] double naturalWidth(const ChatText& text) const;

    /// Markdown's runs as a text: emphasis, code with its ground, links.
    [[nodiscard]] ChatText styled(const std::vector<InlineRun>& runs, TextRole role,
                                  const QColor& ink) const;

    /// Lays another scene over this one, moved by `offset`.
    void add(ChatScene scene, const QPointF& offset = {});
    /// The scene so far, with its height; the canvas is empty afterwards.
    [[nodiscard]] ChatScene take(double height);

private:
    struct Laid {
        std::shared_ptr<QTextLayout> layout;
        double height = 0;
        double naturalWidth = 0;
    };
    [[nodiscard]] Laid layOut(const ChatText& text, double width) const;
    void groundCode(const ChatText& text, const QTextLayout& layout, const QPointF& at);

    const ChatCanvasStyle& m_style;
    ChatScene m_scene;
};

} // namespace Bralto
