#pragma once

#include <QWidget>

namespace Bralto {

/// Stands in for a page in pictures: four stations of a tide table.
class SamplePage final : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace Bralto
