#pragma once

#include "Base/Motion.h"
#include "Kovalt/Links.h"
#include "Kovalt/Position.h"
#include "Terminals/PaneStyle.h"
#include "Terminals/TerminalSession.h"
#include "Views/Kit/ThemedWidget.h"
#include "Views/Terminal/TerminalGeometry.h"

#include <memory>
#include <optional>

namespace Bralto {

class TerminalInput;
struct ViewServices;

/// Shows the screen of a terminal session and hands it what the user types. It paints the rows
/// that changed, at most once a frame, and never makes the session wait.
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

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void applyTheme() override;

private:
    TerminalSession& m_session;
    TerminalGeometry m_geometry;
    std::unique_ptr<TerminalInput> m_input;
};

} // namespace Bralto
