#pragma once

#include "Views/Kit/ScrollHandle.h"
#include "Views/Kit/ThemedWidget.h"

#include <QColor>

#include <functional>
#include <vector>

namespace Bralto {

/// A mark beside the handle.
struct ScrollMark {
    enum class Kind { Prompt, Hit, CurrentHit };

    double place = 0; ///< Of the whole text, from 0 to 1.
    Kind kind = Kind::Prompt;

    bool operator==(const ScrollMark&) const = default;
};

/// The thin handle over the right edge of a terminal, with marks of prompts while it is in use and
/// of search hits while there are any. It takes no room from the text.
class TerminalScrollBar final : public ThemedWidget {
    Q_OBJECT

public:
    /// Asks `marks` when it paints, for a track of so many pixels.
    TerminalScrollBar(Theme& theme, std::function<std::vector<ScrollMark>(int track)> marks,
                      QWidget* parent);

    /// Rows: how many are above the view at most, how many it shows, how many are above it now.
    void setRange(int history, int page, int top);
    void setInk(const QColor& ink);
    [[nodiscard]] QRectF handle() const { return m_handle.rect(size()); }
    /// Marks of prompts are shown.
    [[nodiscard]] bool isInUse() const { return m_isHovered || m_grip >= 0; }

signals:
    /// The view is to begin at this row.
    void moved(int top);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void paintMarks(QPainter& painter);

    std::function<std::vector<ScrollMark>(int track)> m_marks;
    ScrollHandle m_handle;
    QColor m_ink;
    bool m_isHovered = false;
    double m_grip = -1; ///< Where in the handle it was caught; negative while it isn't.
};

} // namespace Bralto
