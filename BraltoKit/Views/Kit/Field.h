#pragma once

#include "Views/Kit/Theme.h"

#include <QLineEdit>

namespace Bralto {

/// A line of text to write in, with a symbol before it and a hint of keys behind it if wanted.
class Field : public QLineEdit {
    Q_OBJECT

public:
    explicit Field(Theme& theme, QWidget* parent = nullptr);

    void setSymbol(const QString& symbol);
    /// Keys that lead here, shown while the field is empty and elsewhere has the keyboard.
    void setHint(const QString& hint);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    [[nodiscard]] Theme& theme() const { return m_theme; }
    void paintEvent(QPaintEvent* event) override;

private:
    void applyTheme();
    void applyMargins();

    Theme& m_theme;
    QString m_symbol;
    QString m_hint;
};

} // namespace Bralto
