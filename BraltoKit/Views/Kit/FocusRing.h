#pragma once

#include <QFocusFrame>

namespace Bralto {

class Theme;

/// The ring around the button that has the keyboard: two units in the accent, two outside of it.
/// It lies beside the button in their common parent, so that the button need not be larger.
class FocusRing final : public QFocusFrame {
    Q_OBJECT

public:
    /// Shows itself around `control` until it is destroyed.
    FocusRing(Theme& theme, QWidget& control, double radius, const QColor& ink);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double m_radius;
    QColor m_ink;
};

} // namespace Bralto
