#include "Views/Window/DetailView.h"

#include "Views/Console/TerminalPanelView.h"
#include "Views/Editor/EditorPanes.h"
#include "Views/Kit/Animated.h"
#include "Views/Window/MissingFolder.h"
#include "Views/Window/Seam.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace Bralto {
namespace {

constexpr double MiddleFraction = 0.5;
/// No way of the console takes longer.
constexpr std::chrono::seconds LongestMotion{1};

} // namespace

DetailView::DetailView(const ViewServices& services, QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_services(services)
    , m_missing(new MissingFolder(services, this))
    , m_panes(new EditorPanes(services, this))
    , m_seam(new Seam(services.theme, Seam::Direction::UpAndDown, tr("Resize editor and terminal"),
                      this))
    , m_share(new Animated(services.theme, Motions::Toggle, 1, this))
    , m_fraction(new Animated(services.theme, Motions::Panel, MiddleFraction, this))
    , m_hold(services.motion)
{
    Workspace& workspace = services.workspace;
    connect(m_share, &Animated::valueChanged, this, &DetailView::place);
    connect(m_share, &Animated::settled, this, &DetailView::dropEditor);
    connect(m_share, &Animated::settled, this, &DetailView::releasePanes);
    connect(m_fraction, &Animated::valueChanged, this,
            [this](double fraction) { m_console->panel().setEditorFraction(fraction); });
    connect(m_fraction, &Animated::settled, this, &DetailView::releasePanes);
    connect(&workspace, &Workspace::terminalChanged, this, &DetailView::followPanel);
    const auto settle = [this] { settleEditor(Step::Animated); };
    connect(&workspace, &Workspace::activeTabChanged, this, settle);
    connect(&workspace, &Workspace::rootMissingChanged, this, &DetailView::showMissing);
    connect(m_seam, &Seam::dragStarted, this, [this] {
        m_fraction->jumpTo(m_console->panel().editorFraction());
        m_fractionAtStart = m_console->panel().editorFraction();
        m_hold.begin(QStringLiteral("drag console seam"));
    });
    connect(m_seam, &Seam::dragEnded, this, [this] { m_hold.end(); });
    connect(m_seam, &Seam::dragged, this, [this](double way) {
        const auto share = WindowLayout::draggedShare(m_fractionAtStart, way, height(),
                                                      TerminalPanel::SmallestFraction,
                                                      TerminalPanel::LargestFraction);
        if (share)
            m_console->panel().setEditorFraction(*share);
    });
    connect(m_seam, &Seam::doubleClicked, this, [this] {
        m_fraction->jumpTo(m_console->panel().editorFraction());
        holdPanes();
        m_fraction->moveTo(MiddleFraction);
    });
    followPanel();
    showMissing();
}

DetailView::~DetailView()
{
    releasePanes();
}

/// Terminals keep their grid until the console has its height.
void DetailView::holdPanes()
{
    if (m_motion == 0)
        m_motion = m_services.motion.begin(QStringLiteral("resize console"), LongestMotion);
}

void DetailView::releasePanes()
{
    m_services.motion.end(std::exchange(m_motion, 0));
}

void DetailView::followPanel()
{
    if (m_console && &m_console->panel() == &m_services.workspace.terminal())
        return;
    delete m_console;
    TerminalPanel& panel = m_services.workspace.terminal();
    m_console = new TerminalPanelView(m_services, panel, this);
    const auto settle = [this] { settleEditor(Step::Animated); };
    connect(&panel, &TerminalPanel::isVisibleChanged, m_console, settle);
    connect(&panel, &TerminalPanel::isMaximizedChanged, m_console, [this] {
        if (isVisible() && !theme().reducedMotion())
            holdPanes();
        settleEditor(Step::Animated);
        if (!m_share->isMoving())
            releasePanes();
    });
    connect(&panel, &TerminalPanel::editorFractionChanged, m_console,
            [this] { settleEditor(Step::AtOnce); });
    connect(&panel, &TerminalPanel::focusReturned, m_console, [this] { m_panes->takeFocus(); });
    m_seam->raise();
    settleEditor(Step::AtOnce);
}

EditorLayout DetailView::target() const
{
    const TerminalPanel& panel = m_services.workspace.terminal();
    return WindowLayout::target(panel.isVisible(), panel.isMaximized(),
                                !m_services.workspace.activeTabId().isEmpty());
}

double DetailView::wantedShare() const
{
    switch (m_layout) {
    case EditorLayout::Full:
        return 1;
    case EditorLayout::Shared:
        return m_console->panel().editorFraction();
    case EditorLayout::Hidden:
        return 0;
    }
    return 1;
}

void DetailView::settleEditor(Step step)
{
    m_layout = target();
    // What comes into view does so before it moves, what goes leaves when it has.
    if (m_layout != EditorLayout::Hidden)
        m_panes->show();
    if (m_layout != EditorLayout::Full)
        m_console->show();
    if (step == Step::Animated && isVisible())
        m_share->moveTo(wantedShare());
    else
        m_share->jumpTo(wantedShare());
    place();
    if (!m_share->isMoving())
        dropEditor();
}

void DetailView::dropEditor()
{
    m_panes->setVisible(m_layout != EditorLayout::Hidden);
    m_console->setVisible(m_layout != EditorLayout::Full);
    m_seam->setVisible(m_layout == EditorLayout::Shared);
    place();
}

void DetailView::showMissing()
{
    m_missing->setVisible(m_services.workspace.isRootMissing());
    place();
}

void DetailView::place()
{
    const int top = m_missing->isHidden() ? 0 : m_missing->height() + Measure::FrameInset;
    m_missing->setGeometry(0, 0, width(), m_missing->height());
    const int room = std::max(0, height() - top);
    const double share = m_share->value();
    const double fraction = m_console->panel().editorFraction();
    const int shared = room - Measure::FrameInset;

    // From hidden over shared to full the line between both runs from above the area to below it.
    double line = 0;
    if (share <= fraction && fraction > 0)
        line = -Measure::FrameInset + share / fraction * (shared * fraction + Measure::FrameInset);
    else
        line = shared * fraction + (share - fraction) / (1 - fraction) * (room - shared * fraction);
    const int bottom = int(std::lround(line));
    m_panes->setGeometry(0, top, width(), std::max(bottom, 1));

    const int consoleTop = bottom + Measure::FrameInset;
    // While the console slides out it keeps the height that it has beside the editor.
    const int resting = shared - int(std::lround(shared * fraction));
    const int consoleHeight = std::max({room - consoleTop, std::min(resting, room), 1});
    m_console->setGeometry(0, top + consoleTop, width(), consoleHeight);
    m_seam->setGeometry(0, top + bottom, width(), Measure::FrameInset);
    m_seam->raise();
}

void DetailView::resizeEvent(QResizeEvent* /*event*/)
{
    place();
}

} // namespace Bralto
