#pragma once

#include "Views/Kit/Tokens.h"

#include <QImage>
#include <QPixmap>
#include <QWidget>

namespace Bralto {

namespace Grain {

/// The frame's texture for a display scale: 256 units square, the same pixels in every process.
/// Cached by scale.
[[nodiscard]] const QImage& tile(double scale);

} // namespace Grain

/// The picture of a window's frame, gradient and grain, made once for each size and colour.
/// Whoever needs a piece of it, such as the corner of a sheet, paints it from here.
class SpaceBackdrop final : public QObject {
    Q_OBJECT

public:
    explicit SpaceBackdrop(QWidget& window);

    /// The picture for the present size of the window.
    [[nodiscard]] const QPixmap& picture(const Tokens::Frame& frame);

    /// The picture that was made last; null if there is none.
    [[nodiscard]] const QPixmap& lastPicture() const { return m_picture; }

    /// Paints the part of the frame that lies behind `area` of `widget`. Nothing in a window
    /// without a backdrop.
    static void paintBehind(QPainter& painter, const QWidget& widget, const QRect& area,
                            const Tokens::Frame& frame);

private:
    struct Key {
        QSize size;
        double ratio = 0;
        std::array<QColor, 3> stops;
        double grain = 0;
        bool operator==(const Key&) const = default;
    };

    QWidget& m_window;
    Key m_key;
    QPixmap m_picture;
};

} // namespace Bralto
