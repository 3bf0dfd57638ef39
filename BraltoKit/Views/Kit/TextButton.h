#pragma once

#include "Views/Kit/Control.h"

namespace Bralto {

/// A button with words, and with a symbol or a key cap if it has one.
class TextButton final : public Control {
    Q_OBJECT

public:
    /// Plain has a fill, primary is the accent, quiet has neither fill nor full ink, harmful has
    /// an edge and the ink of what failed.
    enum class Kind { Plain, Primary, Quiet, Harmful };

    TextButton(Theme& theme, Kind kind, const QString& text, QWidget* parent = nullptr);

    /// 24, 28 or 30.
    void setExtent(int height);
    void setSymbol(const QString& symbol);
    /// A key cap behind the words.
    void setKeyCap(const QString& text);
    /// Shows the ring of what Return presses.
    void setDefault(bool isDefault);
    [[nodiscard]] bool isDefault() const { return m_isDefault; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] TextRole role() const;
    [[nodiscard]] int padding() const;
    [[nodiscard]] int symbolSize() const;
    [[nodiscard]] QColor fill() const;
    [[nodiscard]] QColor ink() const;
    void paintKeyCap(QPainter& painter, const QRectF& cap) const;

    Kind m_kind;
    int m_height = Measure::Button;
    QString m_symbol;
    QString m_keyCap;
    bool m_isDefault = false;
};

} // namespace Bralto
