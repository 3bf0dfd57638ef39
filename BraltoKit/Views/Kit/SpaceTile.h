#pragma once

#include "Views/Kit/ThemedWidget.h"

namespace Bralto {

/// The icon of a project as a widget.
class SpaceTile final : public ThemedWidget {
    Q_OBJECT

public:
    SpaceTile(Theme& theme, const SpaceTheme& space, const QString& name, int side,
              QWidget* parent = nullptr);

    void setSpace(const SpaceTheme& space, const QString& name);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    SpaceTheme m_space;
    QString m_name;
};

} // namespace Bralto
