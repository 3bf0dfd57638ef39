#pragma once

#include "Views/Kit/ThemedWidget.h"

#include <optional>

namespace Bralto {

/// The handle between two areas: invisible until the pointer or the keyboard is on it.
class Seam final : public ThemedWidget {
    Q_OBJECT

public:
    /// Where it can be dragged.
    enum class Direction { Sideways, UpAndDown };

    Seam(Theme& theme, Direction direction, const QString& help, QWidget* parent);

signals:
    /// A drag begins; `dragged` counts from here.
    void dragStarted();
    /// Units to the right or down since the drag began.
    void dragged(double translation);
    void dragEnded();
    void doubleClicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    [[nodiscard]] double along(const QPointF& point) const;

    Direction m_direction;
    std::optional<double> m_start; ///< Global position at the start of a drag.
    bool m_hovered = false;
};

} // namespace Bralto
