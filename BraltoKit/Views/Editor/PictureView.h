#pragma once

#include "Views/Kit/ThemedWidget.h"

#include <QImage>

namespace Bralto {

/// A picture file, as large as it is or as the room allows. It is read at the size that shows.
class PictureView final : public ThemedWidget {
    Q_OBJECT

public:
    PictureView(Theme& theme, const QString& path, QWidget* parent = nullptr);

    /// Whether the file holds a picture of a kind that can be drawn, and not an absurd size.
    [[nodiscard]] static bool canShow(const QString& path);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void read(const QSize& wanted);

    QString m_path;
    QSize m_whole;  ///< Of the picture in the file, pixels.
    QImage m_image; ///< As it was read last.
};

} // namespace Bralto
