#pragma once

#include "Terminals/PaneStyle.h"
#include "Views/Kit/ThemedWidget.h"

#include <QFont>

namespace Bralto {

/// A line of a terminal in a style, as it will look.
class StylePreview final : public ThemedWidget {
    Q_OBJECT

public:
    StylePreview(Theme& theme, QWidget* parent);

    void setStyle(const PaneStyle& style);
    [[nodiscard]] static QString text() { return QStringLiteral("> Ready when you are "); }
    /// The font of a style at zoom 1.
    [[nodiscard]] static QFont font(const PaneStyle& style);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    PaneStyle m_style;
};

} // namespace Bralto
