#pragma once

#include "Views/Kit/ThemedWidget.h"

#include <array>

namespace Bralto {

/// A rounded ground for content on the frame. It paints its own ground and edge, and covers the
/// four corners of whatever lies on it with the frame, so that content needs no mask.
class Sheet final : public ThemedWidget {
    Q_OBJECT

public:
    /// Where a sheet lies: on the bare frame, or as a pane in the well of the console's tray.
    enum class On { Frame, Well };

    /// Its edge lies outside of the sheet, so the widget is this much larger on every side.
    static constexpr int Edge = 1;

    Sheet(Theme& theme, On on, QWidget* parent = nullptr);

    /// The widget that fills the sheet; belongs to it from now on.
    void setContent(QWidget* content);
    /// Places the sheet so that its ground covers `rect` of the parent.
    void setSheetGeometry(const QRect& rect);
    [[nodiscard]] QRect sheetRect() const { return rect().adjusted(Edge, Edge, -Edge, -Edge); }
    [[nodiscard]] int radius() const;
    [[nodiscard]] On on() const { return m_on; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void place();

    On m_on;
    QWidget* m_content = nullptr;
    std::array<QWidget*, 4> m_corners;
};

} // namespace Bralto
