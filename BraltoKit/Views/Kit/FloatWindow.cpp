#include "Views/Kit/FloatWindow.h"

#include "Views/Kit/Theme.h"

#include <QBitmap>
#include <QPainter>

namespace Bralto::Float {
namespace {

const QString CutName = QStringLiteral("bralto.cut");

/// Cuts a window to its panel and the edge around that, at every size.
class Cut final : public QObject {
public:
    Cut(QWidget& window, const Theme& theme, int margin, int radius)
        : QObject(&window)
        , m_window(window)
        , m_theme(theme)
        , m_margin(margin - 1)
        , m_radius(radius + 1)
    {
        setObjectName(CutName);
        window.installEventFilter(this);
    }

private:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Resize || event->type() == QEvent::Show)
            apply();
        return QObject::eventFilter(watched, event);
    }

    void apply()
    {
        if (m_theme.isComposited() == m_window.mask().isEmpty() &&
            (m_theme.isComposited() || m_size == m_window.size()))
            return;
        m_size = m_window.size();
        if (m_theme.isComposited()) {
            m_window.clearMask();
            return;
        }
        QBitmap shape(m_size);
        shape.clear();
        QPainter painter(&shape);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::color1);
        painter.drawRoundedRect(m_window.rect().adjusted(m_margin, m_margin, -m_margin, -m_margin),
                                m_radius, m_radius);
        painter.end();
        m_window.setMask(shape);
    }

    QWidget& m_window;
    const Theme& m_theme;
    int m_margin;
    int m_radius;
    QSize m_size; ///< What the mask was made for.
};

} // namespace

void makeWindow(QWidget& window, const Theme& theme, int margin, int radius)
{
    if (window.findChild<QObject*>(CutName, Qt::FindDirectChildrenOnly))
        return;
    window.setAttribute(Qt::WA_TranslucentBackground);
    new Cut(window, theme, margin, radius);
}

} // namespace Bralto::Float
