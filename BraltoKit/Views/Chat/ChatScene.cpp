#include "Views/Chat/ChatScene.h"

#include "Views/Chat/StatusMark.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/Shape.h"

#include <QPainter>
#include <QPainterPath>
#include <QTextBoundaryFinder>

namespace Bralto {

namespace {

QRectF bounds(const ChatScene::Text& text)
{
    return {text.at, QSizeF(text.width, text.height)};
}

/// The part of `text`, the one with this index, that lies between two places.
std::pair<int, int> selectedRange(const ChatScene::Text& text, int index,
                                  const ChatTextPosition& start, const ChatTextPosition& end)
{
    if (!text.isSelectable || index < start.text || index > end.text)
        return {0, 0};
    const auto length = int(text.layout->text().size());
    const int from = index == start.text ? start.position : 0;
    const int to = index == end.text ? end.position : length;
    return {std::clamp(from, 0, length), std::clamp(to, 0, length)};
}

/// A fill whose lower corners are square.
void fillTop(QPainter& painter, const QRectF& rect, double radius, const QColor& color)
{
    painter.save();
    painter.setClipRect(rect, Qt::IntersectClip);
    Shape::fill(painter, rect.adjusted(0, 0, 0, radius), radius, color);
    painter.restore();
}

void drawPicture(QPainter& painter, const ChatScene::Picture& picture, const QPointF& origin)
{
    const QRectF rect = picture.rect.translated(origin);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    QPainterPath clip;
    const double below = picture.roundsBottom ? 0 : picture.radius;
    clip.addRoundedRect(rect.adjusted(0, 0, 0, below), picture.radius, picture.radius);
    painter.setClipPath(clip, Qt::IntersectClip);
    if (!picture.roundsBottom)
        painter.setClipRect(rect, Qt::IntersectClip);
    painter.drawImage(rect, picture.image);
    painter.restore();
}

void drawText(QPainter& painter, const ChatScene::Text& text, int index, const QPointF& origin,
              const QRectF& clip, const ChatScenes::PaintState& state)
{
    QList<QTextLayout::FormatRange> selections;
    const auto [from, to] = selectedRange(text, index, state.selectionStart, state.selectionEnd);
    if (from < to) {
        QTextLayout::FormatRange range;
        range.start = from;
        range.length = to - from;
        range.format.setBackground(state.tokens.selection);
        selections.append(range);
    }
    text.layout->draw(&painter, origin + text.at, selections, clip);
}

int nearestText(const ChatScene& scene, const QPointF& point)
{
    int best = -1;
    double distance = 0;
    for (std::size_t i = 0; i < scene.texts.size(); ++i) {
        const ChatScene::Text& text = scene.texts[i];
        if (!text.isSelectable)
            continue;
        const QRectF rect = bounds(text);
        const double above = std::max(0.0, rect.top() - point.y());
        const double below = std::max(0.0, point.y() - rect.bottom());
        const double aside = std::max({0.0, rect.left() - point.x(), point.x() - rect.right()});
        // A line's height counts more than its ends, so that a drag beside a text selects in it.
        const double cost = (above + below) * 1000 + aside;
        if (best < 0 || cost < distance) {
            best = int(i);
            distance = cost;
        }
    }
    return best;
}

} // namespace

QRectF ChatScene::caretAfterLastText(double unit) const
{
    for (auto text = texts.rbegin(); text != texts.rend(); ++text) {
        if (!text->isSelectable || text->layout->lineCount() == 0)
            continue;
        const QTextLine line = text->layout->lineAt(text->layout->lineCount() - 1);
        const QPointF end = text->at + QPointF(line.cursorToX(line.textStart() + line.textLength()),
                                               line.y() + line.height() / 2);
        const QSizeF size(7 * unit, 15 * unit);
        return {end + QPointF(2 * unit, -size.height() / 2), size};
    }
    return {};
}

namespace ChatScenes {

void paint(QPainter& painter, const ChatScene& scene, const QPointF& origin, const QRectF& clip,
           const PaintState& state)
{
    const auto isVisible = [&](const QRectF& rect) {
        return rect.translated(origin).intersects(clip);
    };
    const Tokens& tokens = state.tokens;
    for (const ChatScene::Fill& fill : scene.fills) {
        if (!isVisible(fill.rect))
            continue;
        const QRectF rect = fill.rect.translated(origin);
        if (!fill.roundsBottom)
            fillTop(painter, rect, fill.radius, fill.ground);
        else if (fill.ground.isValid())
            Shape::fill(painter, rect, fill.radius, fill.ground);
        if (fill.edge.isValid())
            Shape::edgeInside(painter, rect, fill.radius, fill.edge);
    }
    for (std::size_t i = 0; i < scene.hots.size(); ++i) {
        const ChatScene::Hot& hot = scene.hots[i];
        if (int(i) == state.hoveredHot && hot.showsHover)
            Shape::fill(painter, hot.rect.translated(origin), hot.radius, tokens.hover);
        if (int(i) == state.focusedHot)
            Shape::ring(painter, hot.rect.translated(origin), hot.radius, Measure::FocusRing,
                        tokens.accentInk);
    }
    for (const ChatScene::Picture& picture : scene.pictures) {
        if (isVisible(picture.rect))
            drawPicture(painter, picture, origin);
    }
    for (const ChatScene::Fill& frame : scene.frames) {
        if (isVisible(frame.rect))
            Shape::edgeInside(painter, frame.rect.translated(origin), frame.radius, frame.edge);
    }
    for (const ChatScene::Symbol& symbol : scene.symbols) {
        if (isVisible(symbol.rect))
            Icon::draw(painter, symbol.rect.translated(origin), symbol.name, symbol.ink);
    }
    for (const ChatScene::Mark& mark : scene.marks) {
        if (isVisible(mark.rect))
            StatusMark::draw(painter, mark.rect.translated(origin), mark.status, tokens,
                             state.spinnerTurn);
    }
    for (std::size_t i = 0; i < scene.texts.size(); ++i) {
        if (isVisible(bounds(scene.texts[i])))
            drawText(painter, scene.texts[i], int(i), origin, clip, state);
    }
}

int hotAt(const ChatScene& scene, const QPointF& point)
{
    for (int i = int(scene.hots.size()) - 1; i >= 0; --i) {
        if (scene.hots[std::size_t(i)].rect.contains(point))
            return i;
    }
    return -1;
}

const ChatScene::Link* linkAt(const ChatScene& scene, const QPointF& point)
{
    for (const ChatScene::Text& text : scene.texts) {
        if (text.links.empty() || !bounds(text).contains(point))
            continue;
        const QPointF inside = point - text.at;
        for (int i = 0; i < text.layout->lineCount(); ++i) {
            const QTextLine line = text.layout->lineAt(i);
            if (!line.naturalTextRect().contains(inside))
                continue;
            const int position = line.xToCursor(inside.x(), QTextLine::CursorOnCharacter);
            for (const ChatScene::Link& link : text.links) {
                if (position >= link.start && position < link.start + link.length)
                    return &link;
            }
        }
    }
    return nullptr;
}

bool isOverText(const ChatScene& scene, const QPointF& point)
{
    return std::any_of(scene.texts.begin(), scene.texts.end(), [&](const ChatScene::Text& text) {
        return text.isSelectable && bounds(text).contains(point);
    });
}

std::optional<ChatTextPosition> positionAt(const ChatScene& scene, const QPointF& point)
{
    const int index = nearestText(scene, point);
    if (index < 0)
        return std::nullopt;
    const ChatScene::Text& text = scene.texts[std::size_t(index)];
    const QPointF inside = point - text.at;
    if (inside.y() < 0)
        return ChatTextPosition{index, 0};
    for (int i = 0; i < text.layout->lineCount(); ++i) {
        const QTextLine line = text.layout->lineAt(i);
        if (inside.y() < line.y() + line.height() || i == text.layout->lineCount() - 1) {
            const bool isBelow = inside.y() > text.height;
            return ChatTextPosition{index, isBelow ? line.textStart() + line.textLength()
                                                   : line.xToCursor(inside.x())};
        }
    }
    return ChatTextPosition{index, 0};
}

QString textBetween(const ChatScene& scene, const ChatTextPosition& start,
                    const ChatTextPosition& end)
{
    QString result;
    bool isFirst = true;
    for (std::size_t i = 0; i < scene.texts.size(); ++i) {
        const ChatScene::Text& text = scene.texts[i];
        const auto [from, to] = selectedRange(text, int(i), start, end);
        if (!text.isSelectable || int(i) < start.text || int(i) > end.text)
            continue;
        if (!isFirst)
            result += text.separator;
        isFirst = false;
        if (from < to)
            result += text.layout->text().mid(from, to - from);
    }
    return result.replace(QChar::LineSeparator, u'\n');
}

ChatTextPosition endOf(const ChatScene& scene)
{
    if (scene.texts.empty())
        return {};
    const auto last = int(scene.texts.size()) - 1;
    return {last, int(scene.texts.back().layout->text().size())};
}

std::pair<ChatTextPosition, ChatTextPosition> wordAt(const ChatScene& scene,
                                                     const ChatTextPosition& place)
{
    const QString words = scene.texts[std::size_t(place.text)].layout->text();
    QTextBoundaryFinder finder(QTextBoundaryFinder::Word, words);
    finder.setPosition(std::min<qsizetype>(place.position + 1, words.size()));
    const auto start = int(std::max<qsizetype>(0, finder.toPreviousBoundary()));
    const qsizetype next = finder.toNextBoundary();
    const auto end = int(next < 0 ? words.size() : next);
    return {{place.text, start}, {place.text, std::max(start, end)}};
}

} // namespace ChatScenes

} // namespace Bralto
