#pragma once

#include "Views/Kit/Theme.h"

#include <QDialog>

class QVBoxLayout;

namespace Bralto {

/// A modal question as a card that floats over the middle of its window.
class FloatDialog : public QDialog {
    Q_OBJECT

public:
    FloatDialog(Theme& theme, QWidget* window);

protected:
    [[nodiscard]] Theme& theme() const { return m_theme; }
    /// Where the content of the card goes.
    [[nodiscard]] QVBoxLayout& column() const { return *m_column; }

    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    Theme& m_theme;
    QVBoxLayout* m_column;
};

} // namespace Bralto
