#pragma once

#include "Terminals/PaneStyle.h"
#include "Views/Kit/Control.h"

namespace Bralto {

/// A look of panes to choose: its ground with three lines of its inks, and its name. Checked, it
/// has a ring.
class ThemeSwatch final : public Control {
    Q_OBJECT

public:
    ThemeSwatch(Theme& theme, const PaneTheme& look, QWidget* parent);

    /// Room for the ring around the swatch.
    static constexpr int Margin = 4;

    [[nodiscard]] const PaneTheme& look() const { return m_look; }
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const PaneTheme& m_look;
};

} // namespace Bralto
