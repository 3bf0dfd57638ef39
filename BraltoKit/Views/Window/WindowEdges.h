#pragma once

#include <QObject>

class QWidget;

namespace Bralto {

/// The edges of a frameless window, six units wide, by which it is resized.
class WindowEdges final : public QObject {
    Q_OBJECT

public:
    explicit WindowEdges(QWidget& window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void place();

    QWidget& m_window;
    QList<QPair<Qt::Edges, QWidget*>> m_grips;
};

} // namespace Bralto
