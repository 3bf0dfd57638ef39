#pragma once

/// @file
/// What a row of the transcript looks like, as a list of things to paint:
///
///     message, width, tokens ─ builders ─> ChatScene ─ paint, hit, selection ─> ChatTranscriptView
///
/// A scene is made once for a width and a set of tokens; painting and pointing only read it. All
/// coordinates are logical units from the row's top left.

#include "Chat/ChatMessage.h"
#include "Views/Kit/Tokens.h"

#include <QImage>
#include <QTextLayout>

#include <memory>
#include <vector>

namespace Bralto {

/// What a click on a part of a row asks for.
struct ChatAction {
    enum class Kind {
        Toggle,    ///< Open or close what `target` names.
        CopyText,  ///< Put `text` on the clipboard; `target` names the button.
        OpenFile,  ///< `target` is an absolute path.
        OpenUrl,   ///< `target` is an address.
        ShowImage, ///< `target` names the picture.
    };

    Kind kind = Kind::Toggle;
    QString target;
    QString text;

    bool operator==(const ChatAction&) const = default;
};

struct ChatScene {
    struct Fill {
        QRectF rect;
        double radius = 0;
        QColor ground; ///< Invalid for none.
        QColor edge;   ///< Inside the rectangle; invalid for none.
        bool roundsBottom = true;
    };

    struct Link {
        int start = 0; ///< UTF-16 units in the text.
        int length = 0;
        ChatAction action;
    };

    struct Text {
        std::shared_ptr<QTextLayout> layout;
        QPointF at;
        double width = 0;
        double height = 0;
        bool isSelectable = true;
        QString separator; ///< What parts it from the text before it when both are copied.
        std::vector<Link> links;
    };

    struct Symbol {
        QRectF rect;
        QString name;
        QColor ink;
    };

    struct Mark {
        QRectF rect;
        ChatToolStatus status = ChatToolStatus::Running;
    };

    struct Picture {
        QRectF rect;
        QImage image;
        double radius = 0;
        bool roundsBottom = true;
    };

    /// A part that can be clicked.
    struct Hot {
        QRectF rect;
        ChatAction action;
        QString name; ///< For assistive technology.
        double radius = 6;
        bool showsHover = true;
    };

    std::vector<Fill> fills;
    std::vector<Picture> pictures;
    std::vector<Fill> frames; ///< Edges over pictures.
    std::vector<Symbol> symbols;
    std::vector<Mark> marks;
    std::vector<Text> texts;
    std::vector<Hot> hots;
    double height = 0;

    /// Where the caret of a streaming reply stands; empty if there is nothing to stand behind.
    [[nodiscard]] QRectF caretAfterLastText(double unit) const;
};

/// A place in a scene's texts.
struct ChatTextPosition {
    int text = 0;     ///< Index in `texts`.
    int position = 0; ///< UTF-16 units.

    auto operator<=>(const ChatTextPosition&) const = default;
};

namespace ChatScenes {

/// What a painter needs beside the scene.
struct PaintState {
    const Tokens& tokens;
    int hoveredHot = -1;
    int focusedHot = -1;
    double spinnerTurn = 0; ///< 0 to 1.
    /// The selected stretch; empty if both are equal.
    ChatTextPosition selectionStart;
    ChatTextPosition selectionEnd;
};

/// Paints `scene` with its top left at `origin`; only what may lie in `clip` (both in the
/// painter's coordinates).
void paint(QPainter& painter, const ChatScene& scene, const QPointF& origin, const QRectF& clip,
           const PaintState& state);

/// The topmost hot part below a point; -1 for none.
[[nodiscard]] int hotAt(const ChatScene& scene, const QPointF& point);
/// The link below a point; null for none.
[[nodiscard]] const ChatScene::Link* linkAt(const ChatScene& scene, const QPointF& point);
/// Whether there are words to select below a point.
[[nodiscard]] bool isOverText(const ChatScene& scene, const QPointF& point);
/// The place in the texts that is nearest to a point; absent if nothing can be selected.
[[nodiscard]] std::optional<ChatTextPosition> positionAt(const ChatScene& scene,
                                                         const QPointF& point);
/// The selectable text between two places.
[[nodiscard]] QString textBetween(const ChatScene& scene, const ChatTextPosition& start,
                                  const ChatTextPosition& end);
/// The place behind the last text.
[[nodiscard]] ChatTextPosition endOf(const ChatScene& scene);
/// The word around a place.
[[nodiscard]] std::pair<ChatTextPosition, ChatTextPosition> wordAt(const ChatScene& scene,
                                                                   const ChatTextPosition& place);

} // namespace ChatScenes

} // namespace Bralto
