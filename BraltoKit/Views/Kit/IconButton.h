#pragma once

#include "Views/Kit/Control.h"

namespace Bralto {

/// A square button that is only a symbol. Checked, it keeps the fill of a pressed one.
class IconButton final : public Control {
    Q_OBJECT

public:
    IconButton(Theme& theme, Ground ground, const QString& symbol, QWidget* parent = nullptr);

    /// Side of the button and of its symbol, logical units.
    void setExtent(int side, int symbolSize);
    void setSymbol(const QString& symbol);
    [[nodiscard]] const QString& symbol() const { return m_symbol; }
    /// The symbol in the second ink until the pointer is over it.
    void setQuiet(bool quiet);
    /// With the fill of a plain button.
    void setFilled(bool filled);

    [[nodiscard]] QSize sizeHint() const override { return {m_side, m_side}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_symbol;
    int m_side = Measure::IconButton;
    int m_symbolSize = Measure::RowIcon;
    bool m_quiet = false;
    bool m_filled = false;
};

} // namespace Bralto
