#pragma once

#include "Views/Kit/Control.h"

namespace Bralto {

/// The way back to the end of the transcript: a round button that floats over it.
class JumpButton final : public Control {
    Q_OBJECT

public:
    JumpButton(Theme& theme, QWidget* parent);

    /// Puts the middle of the disc's lower edge there.
    void standOn(const QPoint& bottom);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& position) const override;
    [[nodiscard]] double focusRadius() const override;

private:
    [[nodiscard]] QRectF disc() const;
};

} // namespace Bralto
