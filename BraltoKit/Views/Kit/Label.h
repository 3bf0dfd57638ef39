#pragma once

#include "Views/Kit/Theme.h"

#include <QLabel>

namespace Bralto {

/// Plain words in a role and an ink of the tokens. Text is never taken for markup.
class Label final : public QLabel {
    Q_OBJECT

public:
    Label(Theme& theme, TextRole role, QColor Tokens::*ink, const QString& text = {},
          QWidget* parent = nullptr);

private:
    void applyTheme();

    Theme& m_theme;
    QColor Tokens::*m_ink;
};

} // namespace Bralto
