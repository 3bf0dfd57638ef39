#include "Views/Window/DropFrame.h"

#include "Views/Kit/Icon.h"
#include "Views/Kit/Ink.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QMimeData>
#include <QPainter>
#include <QUrl>

namespace Bralto {
namespace {

constexpr int Inset = 4;
constexpr double SheetOpacity = 0.92;

} // namespace

DropFrame::DropFrame(Theme& theme, QWidget* parent)
    : ThemedWidget(theme, parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAccessibleName(tr("Drop to open"));
    hide();
}

QStringList DropFrame::files(const QMimeData& data)
{
    QStringList paths;
    const QList<QUrl> urls = data.urls();
    for (const QUrl& url : urls) {
        if (url.isLocalFile())
            paths.append(url.toLocalFile());
    }
    return paths;
}

void DropFrame::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRectF sheet = QRectF(rect()).adjusted(Measure::FrameInset, Measure::FrameInset,
                                                 -Measure::FrameInset, -Measure::FrameInset);
    Shape::fill(painter, sheet, Measure::SheetRadius, Ink::faded(tokens().sheet, SheetOpacity));
    Shape::ring(painter, QRectF(rect()).adjusted(Inset, Inset, -Inset, -Inset),
                Measure::SheetRadius + Inset, Measure::FocusRing, tokens().frame.label);

    const QPointF middle = sheet.center();
    QRectF icon(0, 0, Measure::PlaceIcon, Measure::PlaceIcon);
    icon.moveCenter(middle - QPointF(0, 26));
    Icon::draw(painter, icon, QStringLiteral("folder"), tokens().ink2);
    const QRectF words(sheet.left(), middle.y() + 2, sheet.width(), 20);
    TextLine::draw(painter, words, TextRole::BodyStrong, tokens().ink2, tr("Drop to open"),
                   Qt::ElideRight, Qt::AlignHCenter);
}

} // namespace Bralto
