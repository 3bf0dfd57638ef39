#pragma once

#include "Views/Kit/Theme.h"

#include <QWidget>

namespace Bralto {

/// A widget that paints itself with the tokens of its window.
class ThemedWidget : public QWidget {
    Q_OBJECT

public:
    explicit ThemedWidget(Theme& theme, QWidget* parent = nullptr)
        : QWidget(parent)
        , m_theme(theme)
    {
        connect(&theme, &Theme::changed, this, &ThemedWidget::applyTheme);
    }

    [[nodiscard]] Theme& theme() const { return m_theme; }
    [[nodiscard]] const Tokens& tokens() const { return m_theme.tokens(); }

protected:
    /// The tokens changed. What was derived from them is derived anew here.
    virtual void applyTheme() { update(); }

private:
    Theme& m_theme;
};

} // namespace Bralto
