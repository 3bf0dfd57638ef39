#pragma once

#include "Views/Kit/ThemedWidget.h"

namespace Bralto {

/// Says above a page that it stands still, and offers to stop it.
class StuckStrip final : public ThemedWidget {
    Q_OBJECT

public:
    StuckStrip(Theme& theme, QWidget* parent);

signals:
    void stopRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace Bralto
