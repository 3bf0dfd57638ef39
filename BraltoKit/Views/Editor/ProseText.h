#pragma once

#include "Views/Kit/Theme.h"

#include <QTextEdit>

namespace Bralto {

/// A text of prose that is read, not written, in one readable column in the middle.
class ProseText final : public QTextEdit {
    Q_OBJECT

public:
    explicit ProseText(Theme& theme, QWidget* parent = nullptr);

    void setProse(const QString& text);
    /// A factor for all sizes of the text.
    void setZoom(double zoom);
    /// Line and column of the cursor, from 1.
    [[nodiscard]] int cursorLine() const;
    [[nodiscard]] int cursorColumn() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void applyTheme();
    void applyMargins();
    void setLines();

    Theme& m_theme;
    double m_zoom = 1;
};

} // namespace Bralto
