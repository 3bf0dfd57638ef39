#include "Views/Chat/ChatTranscriptView.h"

#include "Views/Chat/ChatRowBuilder.h"
#include "Views/Chat/StatusMark.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/SlimScrollBar.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <cmath>

namespace Bralto {

namespace {

constexpr int FrameMs = 16;
constexpr int ScrollIdleMs = 150;
constexpr int CopiedMs = 1500;
constexpr double WidestColumn = 760;
constexpr double ColumnSide = 16;

/// Rows stay laid out this many viewports beyond the edges.
constexpr double KeptScreens = 1;

/// Letters and rings may reach so far out of what they belong to.
constexpr int Overhang = 4;
constexpr double WholeContent = 1e9;

} // namespace

ChatTranscriptView::ChatTranscriptView(Theme& theme, const Clock& clock, QWidget* parent)
    : QAbstractScrollArea(parent)
    , m_theme(theme)
    , m_clock(clock)
{
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(QStringLiteral("Conversation"));
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    verticalScrollBar()->setSingleStep(20);
    new SlimScrollBar(theme, Ground::Sheet, *this);

    m_frame.setSingleShot(true);
    m_frame.setTimerType(Qt::PreciseTimer);
    connect(&m_frame, &QTimer::timeout, this, &ChatTranscriptView::flush);
    m_scrollIdle.setSingleShot(true);
    m_scrollIdle.setInterval(ScrollIdleMs);
    connect(&m_scrollIdle, &QTimer::timeout, this, [this] {
        m_follow.userScrolls(false);
        emit followingChanged(m_follow.follows());
    });
    m_copiedTimer.setSingleShot(true);
    m_copiedTimer.setInterval(CopiedMs);
    connect(&m_copiedTimer, &QTimer::timeout, this, [this] {
        m_copied.clear();
        imageReady();
    });
    m_selectScroll.setInterval(30);
    connect(&m_selectScroll, &QTimer::timeout, this,
            [this] { extendSelection(viewport()->mapFromGlobal(QCursor::pos())); });
    connect(&m_images, &ChatImageStore::ready, this, &ChatTranscriptView::imageReady);
    connect(&theme, &Theme::changed, this, &ChatTranscriptView::applyTheme);
}

ChatTranscriptView::~ChatTranscriptView() = default;

double ChatTranscriptView::columnWidth() const
{
    return std::max(
        80.0, std::min(WidestColumn * m_zoom, std::floor(viewport()->width() - 2 * ColumnSide)));
}

double ChatTranscriptView::columnLeft() const
{
    return std::floor((viewport()->width() - columnWidth()) / 2);
}

/// Where rows paint. Nothing lies over it, so that its picture can be moved.
QRect ChatTranscriptView::paintedColumn() const
{
    return {int(columnLeft()) - Overhang, 0, int(std::ceil(columnWidth())) + 2 * Overhang,
            viewport()->height()};
}

int ChatTranscriptView::contentTop() const
{
    return verticalScrollBar()->value();
}

void ChatTranscriptView::setTranscript(const ChatTranscript* transcript)
{
    m_transcript = transcript;
    m_pending = {};
    m_thinking.clear();
    m_open.clear();
    clearSelection();
    m_focused.reset();
    setHovered(std::nullopt);
    static const ChatTranscript empty;
    m_rows.reset(transcript != nullptr ? *transcript : empty, !m_banner.isEmpty(), columnWidth());
    m_changedAll = true;
    m_follow.jumpToBottom();
    m_needsLayout = true;
    flush();
}

void ChatTranscriptView::transcriptChanged(const ChatTranscriptChange& change)
{
    observeThinking(change);
    m_pending.merge(change);
    scheduleFlush();
}

void ChatTranscriptView::observeThinking(const ChatTranscriptChange& change)
{
    if (m_transcript == nullptr)
        return;
    for (const std::size_t message : change.messages) {
        if (message < m_transcript->messages.size())
            m_thinking.observe(m_transcript->messages[message], m_clock.now());
    }
}

void ChatTranscriptView::setWorkingRow(const std::optional<ChatWorkingRow>& row)
{
    if (row == m_working)
        return;
    m_working = row;
    m_rows.setWorking(row.has_value());
    m_needsLayout = true;
    scheduleFlush();
}

void ChatTranscriptView::setBanner(const QStringList& parts)
{
    if (parts == m_banner)
        return;
    m_banner = parts;
    m_rows.setBanner(!parts.isEmpty());
    if (!parts.isEmpty())
        m_rows.invalidate(0);
    m_changedAll = true;
    m_needsLayout = true;
    scheduleFlush();
}

void ChatTranscriptView::setFolder(const QString& folder)
{
    m_folder = folder;
}

void ChatTranscriptView::setZoom(double zoom)
{
    if (zoom == m_zoom)
        return;
    m_zoom = zoom;
    applyTheme();
}

void ChatTranscriptView::applyTheme()
{
    m_rows.invalidateAll();
    m_changedAll = true;
    m_needsLayout = true;
    scheduleFlush();
    viewport()->update();
}

void ChatTranscriptView::scheduleFlush()
{
    if (m_frame.isActive())
        return;
    const qint64 since = m_sinceFrame.isValid() ? m_sinceFrame.elapsed() : FrameMs;
    m_frame.start(int(std::clamp<qint64>(FrameMs - since, 0, FrameMs)));
}

void ChatTranscriptView::flush()
{
    m_frame.stop();
    if (m_transcript != nullptr && !m_pending.isEmpty()) {
        const ChatTranscriptChange change = std::exchange(m_pending, {});
        if (!m_rows.apply(*m_transcript, change, columnWidth())) {
            clearSelection();
            m_focused.reset();
            setHovered(std::nullopt);
            m_changedAll = true;
        }
        m_needsLayout |= change.messageList || change.subagents || !change.messages.empty();
    }
    if (m_needsLayout && isVisible()) {
        m_needsLayout = false;
        layOutVisible();
    }
    m_sinceFrame.start();
}

void ChatTranscriptView::layOutRow(std::size_t index)
{
    ChatRow& row = m_rows.at(index);
    if (row.isMeasured && row.layout)
        return;
    static const ChatTranscript empty;
    const ChatCanvasStyle style{
        m_theme.tokens(),
        m_zoom,
        m_folder,
        [this](const QString& text) { return ChatInline::fileURL(text, m_folder); },
        [this](const QString& key) { return m_open.contains(key) || m_copied == key; },
        [this](const QString& key, const ChatImage& image) { return findImage(key, image); },
    };
    const ChatRowBuilder::Content content{m_transcript != nullptr ? *m_transcript : empty,
                                          m_thinking, m_working, m_banner};
    ChatRowLayout layout = ChatRowBuilder(style, content, columnWidth()).build(row);
    const auto changed = row.layout ? differenceOf(*row.layout, layout)
                                    : std::optional(ChatStretch{0, layout.height});
    if (changed)
        m_changed.push_back({row.top + changed->top, row.top + changed->bottom});
    m_rows.setLayout(index, std::move(layout));
}

/// Lays out the rows between two places of the content; whether a height changed.
bool ChatTranscriptView::layOutFrom(double top, double bottom)
{
    bool changed = false;
    for (std::size_t i = m_rows.rowAt(top); i < m_rows.size() && m_rows.at(i).top < bottom; ++i) {
        const double before = m_rows.at(i).height;
        layOutRow(i);
        changed |= m_rows.at(i).height != before;
    }
    return changed;
}

/// Lays out the rows that fill the viewport from the end upwards.
void ChatTranscriptView::layOutLast()
{
    double filled = 0;
    for (std::size_t i = m_rows.size(); i-- > 0 && filled <= viewport()->height();) {
        layOutRow(i);
        filled += m_rows.at(i).height;
    }
}

/// Finds the rows' places anew. Where the first one moves everything below does.
void ChatTranscriptView::settle()
{
    if (const auto moved = m_rows.settle())
        m_changed.push_back({*moved, WholeContent});
}

void ChatTranscriptView::layOutVisible()
{
    const double width = columnWidth();
    if (width != m_laidWidth) {
        m_laidWidth = width;
        m_rows.invalidateAll();
        m_changedAll = true;
    }
    const int oldTop = contentTop();
    settle();
    if (m_follow.contentChanged()) {
        layOutLast();
        settle();
        updateRange(INT_MAX);
    } else if (m_rows.size() > 0) {
        // What the user looks at stays where it is: the first row in view that was there before.
        const double height = viewport()->height();
        std::size_t anchor = m_rows.rowAt(contentTop() - TopRoom);
        while (anchor + 1 < m_rows.size() && !m_rows.at(anchor).layout &&
               m_rows.at(anchor + 1).top < contentTop() - TopRoom + height)
            ++anchor;
        const double place = m_rows.at(anchor).top - contentTop();
        bool changes = true;
        for (int round = 0; round < 4 && changes; ++round) {
            const double top = m_rows.at(anchor).top - place - TopRoom;
            changes = layOutFrom(std::max(0.0, top), top + height);
            settle();
        }
        updateRange(int(std::lround(m_rows.at(anchor).top - place)));
    } else {
        updateRange(0);
    }
    const double screen = viewport()->height() * KeptScreens;
    if (m_rows.size() > 0) {
        m_rows.keepLayouts(m_rows.rowAt(contentTop() - screen),
                           m_rows.rowAt(contentTop() + 2 * screen) + 1);
    }
    updateChanged(oldTop);
    reportGeometry();
    restartSpinner();
}

/// Moves what is painted already to where it stands now, and has the rest painted.
void ChatTranscriptView::updateChanged(int oldTop)
{
    std::vector<ChatStretch> changed = std::exchange(m_changed, {});
    const double oldHeight = std::exchange(m_shownHeight, m_rows.height());
    if (m_shownHeight < oldHeight)
        changed.push_back({m_shownHeight, oldHeight});
    if (std::exchange(m_changedAll, false)) {
        viewport()->update();
        return;
    }
    const int top = contentTop();
    const QRect column = paintedColumn();
    if (top != oldTop)
        viewport()->scroll(0, oldTop - top, column);
    for (const ChatStretch& stretch : changed) {
        const double shift = TopRoom - top;
        const int first = int(std::floor(std::max(stretch.top + shift, -1.0))) - Overhang;
        const int last =
            int(std::ceil(std::min(stretch.bottom + shift, double(viewport()->height())))) +
            Overhang;
        if (first < last)
            viewport()->update(column.left(), first, column.width(), last - first);
    }
}

void ChatTranscriptView::updateRange(int value)
{
    const int height = int(std::ceil(m_rows.height() + TopRoom + BottomRoom));
    m_isScrollingItself = true;
    QScrollBar* bar = verticalScrollBar();
    bar->setPageStep(viewport()->height());
    bar->setRange(0, std::max(0, height - viewport()->height()));
    bar->setValue(std::min(value, bar->maximum()));
    m_isScrollingItself = false;
}

void ChatTranscriptView::reportGeometry()
{
    const bool followed = m_follow.follows();
    m_follow.geometryChanged(contentTop(), viewport()->height(),
                             m_rows.height() + TopRoom + BottomRoom);
    if (m_follow.follows() != followed)
        emit followingChanged(m_follow.follows());
}

void ChatTranscriptView::scrollContentsBy(int /*dx*/, int dy)
{
    if (m_isScrollingItself)
        return;
    const bool followed = m_follow.follows();
    m_follow.userScrolls(true);
    m_scrollIdle.start();
    reportGeometry();
    if (m_follow.follows() != followed)
        emit followingChanged(m_follow.follows());
    viewport()->scroll(0, dy, paintedColumn());
    layOutVisible();
    updateHover(viewport()->mapFromGlobal(QCursor::pos()));
}

void ChatTranscriptView::scrollToBottom()
{
    m_follow.userScrolls(false);
    m_scrollIdle.stop();
    m_follow.jumpToBottom();
    emit followingChanged(true);
    layOutVisible();
}

void ChatTranscriptView::resizeEvent(QResizeEvent* /*event*/)
{
    if (m_transcript != nullptr || m_rows.size() > 0)
        layOutVisible();
}

void ChatTranscriptView::showEvent(QShowEvent* event)
{
    QAbstractScrollArea::showEvent(event);
    m_needsLayout = true;
    flush();
}

void ChatTranscriptView::hideEvent(QHideEvent* event)
{
    QAbstractScrollArea::hideEvent(event);
    SpinnerClock::shared().hold(this, false);
}

void ChatTranscriptView::toggle(const QString& key)
{
    if (!m_open.remove(key))
        m_open.insert(key);
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows.at(i).layout)
            m_rows.invalidate(i);
    }
    layOutVisible();
    viewport()->update();
}

ChatPicture ChatTranscriptView::findImage(const QString& key, const ChatImage& image)
{
    return m_images.find(key, image);
}

/// Something outside of the transcript changed that rows in view may show.
void ChatTranscriptView::imageReady()
{
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const ChatRow& row = m_rows.at(i);
        if (row.layout && (row.layout->waitsForImages || row.kind == ChatRow::Kind::Reply))
            m_rows.invalidate(i);
    }
    m_needsLayout = true;
    scheduleFlush();
}

void ChatTranscriptView::restartSpinner()
{
    const double top = contentTop() - TopRoom;
    bool isSpinning = false;
    if (isVisible() && !m_theme.reducedMotion() && m_rows.size() > 0) {
        for (std::size_t i = m_rows.rowAt(top);
             i < m_rows.size() && m_rows.at(i).top < top + viewport()->height(); ++i)
            isSpinning |= m_rows.at(i).layout && m_rows.at(i).layout->hasSpinner;
    }
    SpinnerClock& clock = SpinnerClock::shared();
    clock.hold(this, isSpinning);
    if (isSpinning)
        connect(&clock, &SpinnerClock::ticked, this, &ChatTranscriptView::updateSpinners,
                Qt::UniqueConnection);
}

void ChatTranscriptView::updateSpinners()
{
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const ChatRow& row = m_rows.at(i);
        if (!row.layout || !row.layout->hasSpinner)
            continue;
        const QPointF origin(columnLeft(), row.top + TopRoom - contentTop());
        for (const ChatRowLayout::Part& part : row.layout->parts) {
            for (const ChatScene::Mark& mark : part.scene->marks) {
                if (mark.status == ChatToolStatus::Running)
                    viewport()->update(
                        mark.rect.translated(origin + QPointF(0, part.top)).toAlignedRect());
            }
        }
    }
}

void ChatTranscriptView::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    for (const QRect& part : event->region()) {
        painter.setClipRect(part);
        paintPart(painter, part);
    }
}

/// Paints the rows in one rectangle.
void ChatTranscriptView::paintPart(QPainter& painter, const QRectF& clip)
{
    painter.fillRect(clip, m_theme.tokens().sheet);
    if (m_rows.size() == 0)
        return;
    const double shift = TopRoom - contentTop();
    const auto [start, end] = selection();
    for (std::size_t i = m_rows.rowAt(clip.top() - shift);
         i < m_rows.size() && m_rows.at(i).top + shift < clip.bottom(); ++i) {
        const ChatRow& row = m_rows.at(i);
        if (!row.layout)
            continue;
        const QPointF origin(columnLeft(), row.top + shift);
        for (std::size_t p = 0; p < row.layout->parts.size(); ++p) {
            const ChatRowLayout::Part& part = row.layout->parts[p];
            ChatScenes::PaintState state{
                m_theme.tokens(), -1, -1, SpinnerClock::shared().turn(), {}, {}};
            if (m_hovered && m_hovered->row == i && m_hovered->part == p)
                state.hoveredHot = m_hovered->hot;
            if (hasFocus() && m_focused && m_focused->row == i && m_focused->part == p)
                state.focusedHot = m_focused->hot;
            const Place first{i, p, {}};
            const Place last{i, p, ChatScenes::endOf(*part.scene)};
            if (start < last && first < end) {
                state.selectionStart = std::max(start, first).text;
                state.selectionEnd = std::min(end, last).text;
            }
            ChatScenes::paint(painter, *part.scene, origin + QPointF(0, part.top), clip, state);
        }
        if (!row.layout->caret.isEmpty())
            Bralto::Shape::fill(painter, row.layout->caret.translated(origin), 2,
                                m_theme.tokens().accentInk);
    }
}

} // namespace Bralto
