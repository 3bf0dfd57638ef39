#pragma once

#include <QList>
#include <QString>

namespace Bralto {

enum class WindowButton { Minimize, Maximize, Close };

/// Which window buttons stand on which side of the bar, from left to right.
struct WindowButtonLayout {
    QList<WindowButton> left;
    QList<WindowButton> right = {WindowButton::Minimize, WindowButton::Maximize,
                                 WindowButton::Close};

    /// The layout that a desktop writes as "close:minimize,maximize". Unknown and repeated words
    /// are passed over; with no window button left it is the one above.
    [[nodiscard]] static WindowButtonLayout parse(const QString& text);

    /// What is left of it in a window that is `width` wide: a narrow one keeps only the close
    /// button.
    [[nodiscard]] WindowButtonLayout fitting(int width) const;

    bool operator==(const WindowButtonLayout&) const = default;
};

} // namespace Bralto
