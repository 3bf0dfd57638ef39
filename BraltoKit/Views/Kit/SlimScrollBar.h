#pragma once

#include "Views/Kit/Control.h"
#include "Views/Kit/ScrollHandle.h"
#include "Views/Kit/ThemedWidget.h"

class QAbstractScrollArea;
class QScrollBar;

namespace Bralto {

/// A thin handle that lies over the right edge of a scroll area and takes no room from it. It
/// follows the area's own vertical bar, which is hidden.
class SlimScrollBar final : public ThemedWidget {
    Q_OBJECT

public:
    /// Belongs to `area`.
    SlimScrollBar(Theme& theme, Ground ground, QAbstractScrollArea& area);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void place();
    [[nodiscard]] ScrollHandle handle() const;

    QAbstractScrollArea& m_area;
    Ground m_ground;
    bool m_hovered = false;
    double m_grip = -1; ///< Where in the handle it was caught; negative while it isn't.
};

} // namespace Bralto
