#include "Views/Terminal/TerminalView.h"

#include "Views/Terminal/TerminalAccessible.h"
#include "Views/Terminal/TerminalInput.h"
#include "Views/Terminal/TerminalMarks.h"
#include "Views/Terminal/TerminalScrollBar.h"
#include "Views/ViewServices.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QFocusEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QResizeEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace Bralto {
namespace {

constexpr auto LigaturesKey = "terminalLigatures";
/// A style is read from a file, which may say anything.
constexpr double SmallestFont = 4;
constexpr double LargestFont = 72;

} // namespace

TerminalView::TerminalView(const ViewServices& services, TerminalSession& session, QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_session(session)
    , m_motion(services.motion)
    , m_defaults(services.defaults.shared)
    , m_zoom(services.zoom.level(Zoom::Area::Terminal))
    , m_ratio(devicePixelRatioF())
    , m_painter(TerminalFonts::shared(face()))
    , m_pacer([this] { takeFrame(); }, this)
    , m_blink(this)
    , m_bell(services.theme, this)
{
    TerminalAccessible::install();
    setAttribute(Qt::WA_OpaquePaintEvent);
    // Until there is room for another size, the terminal's own is shown.
    m_geometry.cols = session.terminal().cols();
    m_geometry.rows = session.terminal().rows();
    m_scrollBar = new TerminalScrollBar(
        services.theme, [this](int track) { return marks(track); }, this);
    m_input = std::make_unique<TerminalInput>(services, *this);
    chooseFonts();
    chooseColors();

    connect(m_scrollBar, &TerminalScrollBar::moved, &session, &TerminalSession::scrollTo);
    connect(&session, &TerminalSession::changed, this, &TerminalView::contentsMoved);
    connect(&session, &TerminalSession::modesChanged, this, &TerminalView::followBlinking);
    connect(&session, &TerminalSession::rang, &m_bell, &VisualBell::ring);
    connect(&m_bell, &VisualBell::changed, this, qOverload<>(&QWidget::update));
    connect(&m_blink, &CursorBlink::changed, this, &TerminalView::contentsMoved);
    connect(&m_defaults, &DefaultsStore::changed, this, [this](const QString& key) {
        if (key == QLatin1String(LigaturesKey))
            chooseFonts();
    });
}

TerminalView::~TerminalView() = default;

// --- looks

TerminalFonts::Face TerminalView::face() const
{
    const TypeStyle type = typeStyle(TextRole::Terminal);
    const double wanted =
        std::clamp(m_style.fontSize.value_or(type.size), SmallestFont, LargestFont);
    const double size = wanted * m_zoom * m_ratio;
    return {m_style.fontFamily.value_or(QString()), size, size * type.lineHeight / type.size,
            m_defaults.boolean(QString::fromLatin1(LigaturesKey)).value_or(false)};
}

void TerminalView::setStyle(const PaneStyle& style)
{
    if (style == m_style)
        return;
    m_style = style;
    chooseColors();
    chooseFonts();
}

void TerminalView::setZoom(double zoom)
{
    if (zoom == m_zoom)
        return;
    m_zoom = zoom;
    chooseFonts();
}

void TerminalView::chooseFonts()
{
    m_painter.setFonts(TerminalFonts::shared(face()));
    m_rows.forget();
    m_geometry.cell = QSizeF(m_painter.fonts().cell()) / m_ratio;
    m_geometry.origin = QPointF(TerminalGeometry::Side, 0);
    if (m_isLaidOut)
        layOut(size());
    m_rows.setSize(m_geometry.cols, m_geometry.rows, m_painter.fonts().cell());
    contentsMoved();
    update();
}

void TerminalView::chooseColors()
{
    m_look = TerminalLook::of(PaneTheme::named(m_style.theme), tokens());
    m_scrollBar->setInk(m_look.text);
    // What a program has set of its colours stays as long as the look does.
    if (m_givenColors != m_look.colors) {
        m_givenColors = m_look.colors;
        m_session.setColors(m_look.colors);
    }
    m_rows.forget();
    readPalette();
    contentsMoved();
    update();
}

void TerminalView::applyTheme()
{
    chooseColors();
}

// --- size

void TerminalView::layOut(const QSize& size)
{
    m_isLaidOut = true;
    m_geometry = TerminalGeometry::fitting(size, QSizeF(m_painter.fonts().cell()) / m_ratio);
    m_rows.setSize(m_geometry.cols, m_geometry.rows, m_painter.fonts().cell());
    m_session.resize({m_geometry.cols, m_geometry.rows, m_painter.fonts().cell()});
    contentsMoved();
    update();
}

void TerminalView::takeSize(const QSize& size)
{
    layOut(size);
}

void TerminalView::resizeEvent(QResizeEvent* event)
{
    ThemedWidget::resizeEvent(event);
    m_scrollBar->setGeometry(width() - ScrollHandle::Width, 0, ScrollHandle::Width, height());
    if (!m_motion.holdsResize(*this, event->size()))
        layOut(event->size());
}

// --- what the user does

void TerminalView::setHoveredLink(const std::optional<Kovalt::LinkMatch>& link)
{
    if (link == m_link)
        return;
    m_link = link;
    contentsMoved();
}

void TerminalView::setPreedit(const QString& text, int cursor)
{
    m_preedit = text;
    m_preeditCursor = cursor;
    contentsMoved();
}

void TerminalView::restartCursorBlink()
{
    m_blink.restart();
}

void TerminalView::followBlinking()
{
    // Modes change in the middle of output; the frame comes with its end.
    using enum Kovalt::CursorStyle;
    const Kovalt::CursorStyle style = m_session.terminal().cursorStyle();
    const bool blinks = style == BlinkBlock || style == BlinkUnderline || style == BlinkBar;
    m_blink.setBlinking(blinks && hasFocus() && isVisible() &&
                        !m_session.terminal().modes().cursorHidden);
}

void TerminalView::followRatio()
{
    if (m_ratio == devicePixelRatioF())
        return;
    m_ratio = devicePixelRatioF();
    chooseFonts();
}

std::vector<ScrollMark> TerminalView::marks(int track) const
{
    return TerminalMarks::of(m_session.terminal().buffer(), m_session.search(), track,
                             m_scrollBar->isInUse() ? TerminalMarks::Prompts::With
                                                    : TerminalMarks::Prompts::Without);
}

QVariant TerminalView::inputMethodQuery(Qt::InputMethodQuery query) const
{
    const QVariant answer = m_input->inputMethodQuery(query);
    return answer.isValid() ? answer : ThemedWidget::inputMethodQuery(query);
}

bool TerminalView::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::FocusOut: {
        const bool result = ThemedWidget::event(event);
        m_input->focusChanged(static_cast<QFocusEvent*>(event));
        followBlinking();
        m_blink.restart();
        contentsMoved();
        return result;
    }
    case QEvent::ScreenChangeInternal: {
        const bool result = ThemedWidget::event(event);
        followRatio();
        return result;
    }
    default:
        return handOn(event) || ThemedWidget::event(event);
    }
}

bool TerminalView::handOn(QEvent* event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        if (!m_input->overridesShortcut(static_cast<QKeyEvent*>(event)))
            return false;
        event->accept();
        return true;
    case QEvent::KeyPress: // Tab too, which else would move the keyboard to another widget.
        m_input->keyPressed(static_cast<QKeyEvent*>(event));
        return true;
    case QEvent::KeyRelease:
        m_input->keyReleased(static_cast<QKeyEvent*>(event));
        return true;
    case QEvent::InputMethod:
        m_input->inputMethod(static_cast<QInputMethodEvent*>(event));
        return true;
    case QEvent::MouseButtonPress:
        m_input->mousePressed(static_cast<QMouseEvent*>(event));
        return true;
    case QEvent::MouseMove:
        m_input->mouseMoved(static_cast<QMouseEvent*>(event));
        return true;
    case QEvent::MouseButtonRelease:
        m_input->mouseReleased(static_cast<QMouseEvent*>(event));
        return true;
    case QEvent::MouseButtonDblClick:
        m_input->mouseDoubleClicked(static_cast<QMouseEvent*>(event));
        return true;
    case QEvent::Wheel:
        m_input->wheelTurned(static_cast<QWheelEvent*>(event));
        return true;
    case QEvent::Leave:
        m_input->pointerLeft();
        return false;
    case QEvent::ContextMenu:
        m_input->askForMenu(static_cast<QContextMenuEvent*>(event));
        return true;
    case QEvent::DragEnter:
    case QEvent::DragMove:
        return m_input->dragged(static_cast<QDropEvent*>(event));
    case QEvent::Drop:
        m_input->dropped(static_cast<QDropEvent*>(event));
        return true;
    default:
        return false;
    }
}

} // namespace Bralto
