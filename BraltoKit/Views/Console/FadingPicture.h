#pragma once

#include "Views/Kit/Animated.h"
#include "Views/Kit/ThemedWidget.h"

#include <QPixmap>

namespace Bralto {

/// The picture of something that is gone, in its place. It fades and goes.
class FadingPicture final : public ThemedWidget {
    Q_OBJECT

public:
    /// Over what came, or behind what grows into its place.
    enum class Layer { Above, Below };

    FadingPicture(Theme& theme, QPixmap picture, QWidget* parent);

    /// Once it has its place.
    void start(Layer layer);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap m_picture;
    Animated m_opacity;
};

} // namespace Bralto
