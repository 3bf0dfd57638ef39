#pragma once

#include "Base/Motion.h"
#include "Kovalt/Links.h"
#include "Kovalt/Position.h"
#include "Terminals/PaneStyle.h"
#include "Terminals/TerminalSession.h"
#include "Views/Kit/ThemedWidget.h"
#include "Views/Terminal/CursorBlink.h"
#include "Views/Terminal/FramePacer.h"
#include "Views/Terminal/TerminalGeometry.h"
#include "Views/Terminal/TerminalLook.h"
#include "Views/Terminal/TerminalPainter.h"
#include "Views/Terminal/TerminalRows.h"
#include "Views/Terminal/VisualBell.h"

#include <QPoint>
#include <QRect>
#include <QTransform>
#include <QVariant>

#include <memory>
#include <optional>
#include <vector>

namespace Bralto {

class TerminalInput;
class TerminalScrollBar;
struct ScrollMark;
struct ViewServices;

/// Shows the screen of a terminal session and hands it what the user types. It paints the rows
/// that changed, at most once a frame, and never makes the session wait.
///
/// A frame reads the terminal and paints what differs into a picture (`TerminalRows`); a paint
/// event only shows that picture. So what is on the screen is always one moment of the terminal,
/// also while a program holds its output back or an animation resizes the view.
class TerminalView final : public ThemedWidget, public HeldView {
    Q_OBJECT

public:
    /// Both outlive the view.
    TerminalView(const ViewServices& services, TerminalSession& session, QWidget* parent = nullptr);
    ~TerminalView() override;

    [[nodiscard]] TerminalSession& session() const { return m_session; }
    /// Where cells are on the widget.
    [[nodiscard]] const TerminalGeometry& geometryOfCells() const { return m_geometry; }
    [[nodiscard]] TerminalInput& input() const { return *m_input; }
    [[nodiscard]] TerminalScrollBar& scrollBar() const { return *m_scrollBar; }
    [[nodiscard]] const TerminalRows& paintedRows() const { return m_rows; }
    /// What a frame that is to come waits for, and what blinks.
    [[nodiscard]] const FramePacer& pacer() const { return m_pacer; }
    [[nodiscard]] const CursorBlink& cursorBlink() const { return m_blink; }
    /// As it is shown at the moment; none while it is hidden, scrolled out of view, or blinks.
    [[nodiscard]] const std::optional<CursorLook>& shownCursor() const { return m_cursor; }
    /// The ground that pads the cells.
    [[nodiscard]] QColor ground() const { return QColor(m_painter.palette().ground()); }

    void setStyle(const PaneStyle& style);
    void setZoom(double zoom);

    /// Marks the link under the pointer; none takes the mark away.
    void setHoveredLink(const std::optional<Kovalt::LinkMatch>& link);
    /// What an input method has not finished yet is shown at the cursor.
    void setPreedit(const QString& text, int cursor);
    /// Something of the selection, the search hits or the scroll position is different.
    void contentsMoved();
    /// Shows the cursor at once and lets it blink from there: the user is typing.
    void restartCursorBlink();

    void takeSize(const QSize& size) override;
    [[nodiscard]] QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void applyTheme() override;

private:
    void layOut(const QSize& size);
    void chooseFonts();
    void chooseColors();
    [[nodiscard]] TerminalFonts::Face face() const;
    [[nodiscard]] bool isOnScreen() const;
    void takeFrame();
    void readPalette();
    void readCursor();
    void showRows(const std::vector<int>& rows);
    void paintPadding(QPainter& painter, const QRegion& region) const;
    [[nodiscard]] QRect rectOfCells() const;
    [[nodiscard]] std::vector<ScrollMark> marks(int track) const;
    void followBlinking();
    void followRatio();
    bool handOn(QEvent* event);

    TerminalSession& m_session;
    Motion& m_motion;
    DefaultsStore& m_defaults;
    PaneStyle m_style;
    double m_zoom;
    double m_ratio; ///< Device pixels a unit that fonts were made for.
    TerminalLook m_look;
    std::optional<TerminalSession::Colors> m_givenColors; ///< What the session shows text with.
    TerminalGeometry m_geometry;
    TerminalPainter m_painter;
    TerminalRows m_rows;
    FramePacer m_pacer;
    CursorBlink m_blink;
    VisualBell m_bell;
    std::unique_ptr<TerminalInput> m_input;
    TerminalScrollBar* m_scrollBar;
    std::optional<Kovalt::LinkMatch> m_link;
    QString m_preedit;
    int m_preeditCursor = 0;
    std::optional<CursorLook> m_cursor;
    Kovalt::Position m_cursorCell{-1, -1}; ///< Of the view, seen or not.
    bool m_isStale = true;                 ///< The terminal is not what the picture shows.
    bool m_isLaidOut = false;
};

} // namespace Bralto
