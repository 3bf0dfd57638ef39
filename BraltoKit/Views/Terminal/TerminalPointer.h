#pragma once

#include "Views/Terminal/LinkPointer.h"
#include "Views/Terminal/TerminalMouse.h"

#include <QObject>
#include <QTimer>

class QMouseEvent;
class QWheelEvent;

namespace Bralto {

class TerminalView;

/// What the pointer does to a terminal's view: it selects, follows links, scrolls, moves the cursor
/// of a shell, or is told to the program.
class TerminalPointer final : public QObject {
    Q_OBJECT

public:
    /// Belongs to `view`.
    explicit TerminalPointer(TerminalView& view);

    void press(const QMouseEvent& event);
    void doubleClick(const QMouseEvent& event);
    void move(const QMouseEvent& event);
    void release(const QMouseEvent& event);
    void turnWheel(const QWheelEvent& event);
    void leave();
    /// A modifier was pressed or released while the pointer rests.
    void holdModifiers(Qt::KeyboardModifiers held);
    /// The click that comes next has brought the keyboard here.
    void noteFocusByClick() { m_bringsFocus = true; }
    /// The program wants other events of the pointer than before.
    void showShape();

    [[nodiscard]] LinkPointer& links() { return m_links; }

signals:
    /// The middle button asks for the primary selection.
    void pasteSelectionRequested();
    /// A selection has been made.
    void selected();

private:
    void beginSelection(const QMouseEvent& event);
    void extendSelection(QPointF place);
    void scrollDrag();
    void reportPress(const QMouseEvent& event);
    void reportMotion(const QMouseEvent& event);
    void report(QPointF place, int flags, bool isMotion);
    void countClick(const QMouseEvent& event);
    void reportWheel(QPointF place, QPointF notches, Qt::KeyboardModifiers held);
    void scrollRows(int rows);
    [[nodiscard]] const Kovalt::TerminalModes& modes() const;

    TerminalView& m_view;
    LinkPointer m_links;
    QTimer m_dragTimer; ///< Runs only while a drag is above or below the view.
    QPointF m_place;    ///< Where the pointer was last.
    bool m_isInside = false;

    bool m_isSelecting = false;
    bool m_hasDragged = false;
    bool m_bringsFocus = false; ///< The click that is going on brought the keyboard here.
    bool m_onLink = false;      ///< The button went down on a link with Ctrl held.
    int m_clicks = 0;
    quint64 m_lastClick = 0; ///< Milliseconds, as events count them.
    QPointF m_clickPlace;

    Qt::MouseButtons m_reported;        ///< Held buttons whose press the program was told.
    std::optional<QPoint> m_lastReport; ///< The cell, or the pixel, that was told last.

    WheelSteps m_rows;
    WheelSteps m_notchesUp;
    WheelSteps m_notchesAside;
};

} // namespace Bralto
