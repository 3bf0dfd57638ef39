#pragma once

#include "Terminals/ConsoleDrag.h"
#include "Views/Kit/Animated.h"
#include "Views/Kit/ThemedWidget.h"

namespace Bralto {

class TerminalPanel;

/// Lies over a pane while something of the panel is dragged, and takes what is dropped there: the
/// half of the pane to which it would go is lit, and the pane that is dragged is veiled.
class PaneDropArea final : public ThemedWidget {
    Q_OBJECT

public:
    /// Hidden while nothing is dragged.
    PaneDropArea(Theme& theme, TerminalPanel& panel, ConsoleDrag& drag, QString paneId,
                 QWidget* parent);

    /// The half that is lit, if one is.
    [[nodiscard]] std::optional<ConsoleDrag::Edge> litEdge() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void followItem();
    void followTarget();
    [[nodiscard]] bool isDragged() const;

    TerminalPanel& m_panel;
    ConsoleDrag& m_drag;
    QString m_paneId;
    Animated m_side;  ///< Of the lit half: 0 is the left one, 1 the right one.
    Animated m_light; ///< How lit it is, 0 to 1.
};

} // namespace Bralto
