#pragma once

#include "Views/Kit/ThemedWidget.h"

#include <QImage>

namespace Bralto {

/// A picture of the conversation as large as the pane allows. A click or Escape puts it away.
class ImageOverlay final : public ThemedWidget {
    Q_OBJECT

public:
    /// Covers `pane`, to which it belongs, while it is shown.
    ImageOverlay(Theme& theme, QWidget& pane);

    void present(const QImage& image);

signals:
    void dismissed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void dismiss();

    QWidget& m_pane;
    QImage m_image;
};

} // namespace Bralto
