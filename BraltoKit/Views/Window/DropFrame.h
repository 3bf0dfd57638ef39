#pragma once

#include "Views/Kit/ThemedWidget.h"

#include <QStringList>

class QMimeData;

namespace Bralto {

/// What the window shows while files hang over it: a frame and where they would go.
class DropFrame final : public ThemedWidget {
    Q_OBJECT

public:
    DropFrame(Theme& theme, QWidget* parent);

    /// The local files among what is dragged, in order.
    [[nodiscard]] static QStringList files(const QMimeData& data);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace Bralto
