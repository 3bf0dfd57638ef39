/// @file
/// Pointing, selecting, and the keys of the transcript.

#include "Views/Chat/ChatTranscriptView.h"
#include "Views/Kit/PopupMenu.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QToolTip>

namespace Bralto {

std::optional<ChatTranscriptView::Under> ChatTranscriptView::partUnder(const QPointF& point) const
{
    if (m_rows.size() == 0)
        return std::nullopt;
    const double y = point.y() + contentTop() - TopRoom;
    const std::size_t index = m_rows.rowAt(y);
    const ChatRow& row = m_rows.all()[index];
    if (!row.layout || row.layout->parts.empty())
        return std::nullopt;
    const auto& parts = row.layout->parts;
    std::size_t part = 0;
    while (part + 1 < parts.size() && y - row.top >= parts[part + 1].top)
        ++part;
    return Under{index, part, {point.x() - columnLeft(), y - row.top - parts[part].top}};
}

std::optional<ChatTranscriptView::HotPlace> ChatTranscriptView::hotUnder(const QPointF& point) const
{
    const auto under = partUnder(point);
    if (!under)
        return std::nullopt;
    const auto& scene = *m_rows.all()[under->row].layout->parts[under->part].scene;
    const int hot = ChatScenes::hotAt(scene, under->point);
    return hot < 0 ? std::nullopt : std::optional(HotPlace{under->row, under->part, hot});
}

std::optional<ChatAction> ChatTranscriptView::linkUnder(const QPointF& point) const
{
    const auto under = partUnder(point);
    if (!under)
        return std::nullopt;
    const auto& scene = *m_rows.all()[under->row].layout->parts[under->part].scene;
    const ChatScene::Link* link = ChatScenes::linkAt(scene, under->point);
    return link != nullptr ? std::optional(link->action) : std::nullopt;
}

/// The place to select from or to: in the part below the point, or in the nearest that has text.
std::optional<ChatTranscriptView::Place> ChatTranscriptView::placeNear(const QPointF& point) const
{
    const auto under = partUnder(point);
    if (!under)
        return std::nullopt;
    const auto& scene = *m_rows.all()[under->row].layout->parts[under->part].scene;
    if (const auto place = ChatScenes::positionAt(scene, under->point))
        return Place{under->row, under->part, *place};
    return Place{under->row, under->part, {}};
}

const ChatScene::Hot* ChatTranscriptView::hotAt(const HotPlace& place) const
{
    if (place.row >= m_rows.size() || !m_rows.all()[place.row].layout)
        return nullptr;
    const auto& parts = m_rows.all()[place.row].layout->parts;
    if (place.part >= parts.size())
        return nullptr;
    const auto& hots = parts[place.part].scene->hots;
    return place.hot >= 0 && std::size_t(place.hot) < hots.size() ? &hots[std::size_t(place.hot)]
                                                                  : nullptr;
}

/// Where a hot part is in the viewport.
QRectF ChatTranscriptView::hotRect(const HotPlace& place) const
{
    const ChatScene::Hot* hot = hotAt(place);
    if (hot == nullptr)
        return {};
    const ChatRow& row = m_rows.all()[place.row];
    return hot->rect.translated(columnLeft(), row.top + row.layout->parts[place.part].top +
                                                  TopRoom - contentTop());
}

std::pair<ChatTranscriptView::Place, ChatTranscriptView::Place>
ChatTranscriptView::selection() const
{
    return m_anchor < m_head ? std::pair(m_anchor, m_head) : std::pair(m_head, m_anchor);
}

bool ChatTranscriptView::hasSelection() const
{
    return m_anchor != m_head;
}

void ChatTranscriptView::setSelection(const Place& anchor, const Place& head)
{
    if (anchor == m_anchor && head == m_head)
        return;
    m_anchor = anchor;
    m_head = head;
    viewport()->update();
}

void ChatTranscriptView::clearSelection()
{
    m_isSelecting = false;
    setSelection({}, {});
}

QString ChatTranscriptView::selectedText() const
{
    const auto [start, end] = selection();
    QString text;
    for (std::size_t i = start.row; hasSelection() && i <= end.row && i < m_rows.size(); ++i) {
        const ChatRow& row = m_rows.all()[i];
        // Rows between the ends that are far out of view have no layout: their text is at hand.
        if (!row.layout) {
            for (const ChatBlock& block : row.blocks) {
                if (const auto* words = std::get_if<ChatTextBlock>(&block))
                    text += (text.isEmpty() ? QString() : QStringLiteral("\n\n")) + words->text;
            }
            continue;
        }
        for (std::size_t p = 0; p < row.layout->parts.size(); ++p) {
            const ChatScene& scene = *row.layout->parts[p].scene;
            const Place first{i, p, {}};
            const Place last{i, p, ChatScenes::endOf(scene)};
            if (end < first || last < start)
                continue;
            const QString piece = ChatScenes::textBetween(scene, std::max(start, first).text,
                                                          std::min(end, last).text);
            if (!piece.isEmpty())
                text += (text.isEmpty() ? QString() : QStringLiteral("\n\n")) + piece;
        }
    }
    return text;
}

void ChatTranscriptView::copySelection()
{
    if (const QString text = selectedText(); !text.isEmpty())
        QGuiApplication::clipboard()->setText(text);
}

void ChatTranscriptView::selectAll()
{
    if (m_rows.size() == 0)
        return;
    const std::size_t last = m_rows.size() - 1;
    setSelection({}, Place{last, SIZE_MAX, {}});
}

void ChatTranscriptView::perform(const ChatAction& action)
{
    switch (action.kind) {
    case ChatAction::Kind::Toggle:
        toggle(action.target);
        break;
    case ChatAction::Kind::CopyText:
        QGuiApplication::clipboard()->setText(action.text);
        m_copied = action.target;
        m_copiedTimer.start();
        imageReady();
        break;
    case ChatAction::Kind::OpenFile:
        emit openFileRequested(action.target);
        break;
    case ChatAction::Kind::OpenUrl: {
        // What leads nowhere outside is a path of the project.
        const QUrl url(action.target);
        if (!url.scheme().isEmpty() && !url.isLocalFile()) {
            emit openUrlRequested(url);
        } else if (const auto path = ChatInline::fileURL(
                       url.isLocalFile() ? url.toLocalFile() : action.target, m_folder)) {
            emit openFileRequested(*path);
        }
        break;
    }
    case ChatAction::Kind::ShowImage:
        m_images.loadWhole(action.target, this, [this](const QImage& image) {
            if (!image.isNull())
                emit showImageRequested(image);
        });
        break;
    }
}

void ChatTranscriptView::updateRow(std::size_t index)
{
    if (index >= m_rows.size())
        return;
    const ChatRow& row = m_rows.all()[index];
    viewport()->update(0, int(row.top + TopRoom) - contentTop(), viewport()->width(),
                       int(row.height) + 1);
}

void ChatTranscriptView::setHovered(const std::optional<HotPlace>& hovered)
{
    if (hovered == m_hovered)
        return;
    if (m_hovered)
        updateRow(m_hovered->row);
    m_hovered = hovered;
    if (m_hovered)
        updateRow(m_hovered->row);
}

void ChatTranscriptView::updateHover(const QPointF& point)
{
    const bool isInside = viewport()->rect().contains(point.toPoint()) && viewport()->underMouse();
    setHovered(isInside ? hotUnder(point) : std::nullopt);
    Qt::CursorShape shape = Qt::ArrowCursor;
    if (isInside && (m_hovered || linkUnder(point))) {
        shape = Qt::PointingHandCursor;
    } else if (const auto under = isInside ? partUnder(point) : std::nullopt) {
        const auto& scene = *m_rows.all()[under->row].layout->parts[under->part].scene;
        if (ChatScenes::isOverText(scene, under->point))
            shape = Qt::IBeamCursor;
    }
    viewport()->setCursor(shape);
}

void ChatTranscriptView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_focused.reset();
    m_pressed = hotUnder(event->position());
    m_pressedLink = linkUnder(event->position());
    if (m_pressed && !m_pressedLink)
        return;
    if (const auto place = placeNear(event->position())) {
        const bool extends = event->modifiers().testFlag(Qt::ShiftModifier) && hasSelection();
        setSelection(extends ? m_anchor : *place, *place);
        m_isSelecting = true;
    }
}

void ChatTranscriptView::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_isSelecting) {
        updateHover(event->position());
        return;
    }
    extendSelection(event->position());
    const bool isOutside =
        event->position().y() < 0 || event->position().y() > viewport()->height();
    if (isOutside && !m_selectScroll.isActive())
        m_selectScroll.start();
    else if (!isOutside)
        m_selectScroll.stop();
}

/// Follows the pointer with the selection's end; beyond an edge the list scrolls along.
void ChatTranscriptView::extendSelection(const QPointF& point)
{
    const double beyond = point.y() < 0                      ? point.y()
                          : point.y() > viewport()->height() ? point.y() - viewport()->height()
                                                             : 0;
    if (beyond != 0)
        verticalScrollBar()->setValue(verticalScrollBar()->value() + int(beyond / 2));
    const QPointF inside(point.x(), std::clamp(point.y(), 0.0, double(viewport()->height() - 1)));
    if (const auto place = placeNear(inside))
        setSelection(m_anchor, *place);
}

void ChatTranscriptView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_selectScroll.stop();
    m_isSelecting = false;
    const auto pressed = std::exchange(m_pressed, std::nullopt);
    const auto link = std::exchange(m_pressedLink, std::nullopt);
    if (!hasSelection()) {
        // A copy: what is carried out may lay out the rows anew.
        if (link && link == linkUnder(event->position())) {
            perform(ChatAction(*link));
        } else if (const ChatScene::Hot* hot = pressed && pressed == hotUnder(event->position())
                                                   ? hotAt(*pressed)
                                                   : nullptr) {
            perform(ChatAction(hot->action));
        }
    } else if (QGuiApplication::clipboard()->supportsSelection()) {
        QGuiApplication::clipboard()->setText(selectedText(), QClipboard::Selection);
    }
    updateHover(event->position());
}

void ChatTranscriptView::mouseDoubleClickEvent(QMouseEvent* event)
{
    const auto place = placeNear(event->position());
    if (event->button() != Qt::LeftButton || hotUnder(event->position()) || !place) {
        mousePressEvent(event);
        return;
    }
    const auto& scene = *m_rows.all()[place->row].layout->parts[place->part].scene;
    if (scene.texts.empty())
        return;
    const auto [start, end] = ChatScenes::wordAt(scene, place->text);
    setSelection({place->row, place->part, start}, {place->row, place->part, end});
}

void ChatTranscriptView::contextMenuEvent(QContextMenuEvent* event)
{
    PopupMenu menu(m_theme, this);
    QAction* copy = menu.addAction(QStringLiteral("Copy"), QKeySequence::Copy, this,
                                   [this] { copySelection(); });
    copy->setEnabled(hasSelection());
    const auto link = linkUnder(event->pos());
    if (link) {
        menu.addAction(QStringLiteral("Open Link"), this, [this, link] { perform(*link); });
        menu.addAction(QStringLiteral("Copy Link"), this,
                       [link] { QGuiApplication::clipboard()->setText(link->target); });
    }
    menu.addSeparator();
    menu.addAction(QStringLiteral("Select All"), QKeySequence::SelectAll, this,
                   [this] { selectAll(); });
    menu.exec(event->globalPos());
}

bool ChatTranscriptView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::Leave) {
        setHovered(std::nullopt);
    } else if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const auto link = linkUnder(help->pos());
        viewport()->setToolTip(link ? link->target : QString());
    }
    return QAbstractScrollArea::viewportEvent(event);
}

/// The next part that can be clicked, among the rows in view and those just beyond.
bool ChatTranscriptView::moveFocus(bool forward)
{
    std::vector<HotPlace> places;
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const ChatRow& row = m_rows.all()[i];
        for (std::size_t p = 0; row.layout && p < row.layout->parts.size(); ++p) {
            for (std::size_t h = 0; h < row.layout->parts[p].scene->hots.size(); ++h)
                places.push_back({i, p, int(h)});
        }
    }
    if (places.empty())
        return false;
    std::size_t next = forward ? 0 : places.size() - 1;
    if (m_focused) {
        const auto now = std::find(places.begin(), places.end(), *m_focused);
        if (now != places.end()) {
            const auto index = std::size_t(now - places.begin());
            if (forward ? index + 1 == places.size() : index == 0)
                return false;
            next = forward ? index + 1 : index - 1;
        }
    } else if (!forward) {
        next = places.size() - 1;
    }
    m_focused = places[next];
    const QRectF rect = hotRect(*m_focused);
    QScrollBar* bar = verticalScrollBar();
    if (rect.top() < 0)
        bar->setValue(bar->value() + int(rect.top()) - 8);
    else if (rect.bottom() > viewport()->height())
        bar->setValue(bar->value() + int(rect.bottom()) - viewport()->height() + 8);
    viewport()->update();
    return true;
}

bool ChatTranscriptView::focusNextPrevChild(bool next)
{
    if (hasFocus() && moveFocus(next))
        return true;
    m_focused.reset();
    viewport()->update();
    return QAbstractScrollArea::focusNextPrevChild(next);
}

void ChatTranscriptView::focusOutEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

void ChatTranscriptView::keyPressEvent(QKeyEvent* event)
{
    QScrollBar* bar = verticalScrollBar();
    if (event->matches(QKeySequence::Copy)) {
        copySelection();
        return;
    }
    if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
        return;
    }
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (const ChatScene::Hot* hot = m_focused ? hotAt(*m_focused) : nullptr) {
            perform(ChatAction(hot->action));
            return;
        }
        break;
    case Qt::Key_Up:
        bar->triggerAction(QScrollBar::SliderSingleStepSub);
        return;
    case Qt::Key_Down:
        bar->triggerAction(QScrollBar::SliderSingleStepAdd);
        return;
    case Qt::Key_PageUp:
        bar->triggerAction(QScrollBar::SliderPageStepSub);
        return;
    case Qt::Key_PageDown:
        bar->triggerAction(QScrollBar::SliderPageStepAdd);
        return;
    case Qt::Key_Home:
        bar->setValue(0);
        return;
    case Qt::Key_End:
        scrollToBottom();
        return;
    default:
        break;
    }
    emit typed(event);
}

} // namespace Bralto
