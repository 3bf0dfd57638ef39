#pragma once

#include "Views/Kit/ThemedWidget.h"

namespace Bralto {

/// Where the link below the pointer leads, in the lower left corner of a page.
class LinkPill final : public ThemedWidget {
    Q_OBJECT

public:
    LinkPill(Theme& theme, QWidget* parent);

    /// Empty hides it.
    void setText(const QString& text);
    /// Puts itself in the corner of `area`, in the parent's coordinates.
    void placeIn(const QRect& area);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_text;
    QRect m_area;
};

} // namespace Bralto
