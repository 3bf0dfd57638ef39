#pragma once

#include "Views/Kit/ThemedWidget.h"

#include <QImage>

namespace Bralto {

/// A picture file, as large as it is or as the room allows. It is read on another thread, at the
/// size that shows; until it is there, its place is empty.
class PictureView final : public ThemedWidget {
    Q_OBJECT

public:
    PictureView(Theme& theme, const QString& path, QWidget* parent = nullptr);

    /// Whether the file holds a picture of a kind that can be drawn, and not an absurd size.
    [[nodiscard]] static bool canShow(const QString& path);

    /// What shows; null until it is read.
    [[nodiscard]] const QImage& image() const { return m_image; }

signals:
    void imageRead();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// Of the picture as it shows, in pixels; empty without room.
    [[nodiscard]] QSize shownSize() const;
    void read();

    QString m_path;
    QSize m_whole;  ///< Of the picture in the file, pixels.
    QSize m_wanted; ///< What is read, or being read.
    QImage m_image; ///< As it was read last.
};

} // namespace Bralto
