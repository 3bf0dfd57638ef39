#pragma once

#include "Views/Kit/ThemedWidget.h"

#include <QPointer>

namespace Bralto {

/// The one tool tip of a window. It shows the tips of all widgets in the window in the program's
/// look: the words, and a shortcut in brackets at their end in the third ink.
class ToolTip final : public ThemedWidget {
    Q_OBJECT

public:
    /// Answers for the tips of `window`, to which it belongs.
    ToolTip(Theme& theme, QWidget& window);

    /// Shows `text` near `position` (global) until the pointer leaves `area` of `owner`. Of an
    /// item view, whose rows have tips of their own.
    static void show(QWidget& owner, const QPoint& position, const QString& text,
                     const QRect& area);

    /// The words and the shortcut of a tip; the latter is empty if there is none.
    struct Parts {
        QString words;
        QString shortcut;
        bool operator==(const Parts&) const = default;
    };
    [[nodiscard]] static Parts parts(const QString& tip);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void present(QWidget& owner, const QPoint& position, const QString& text, const QRect& area);

    QWidget& m_window;
    Parts m_parts;
    QPointer<QWidget> m_owner;
    QRect m_area;
};

} // namespace Bralto
