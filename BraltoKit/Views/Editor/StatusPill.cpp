#include "Views/Editor/StatusPill.h"

#include "Views/Kit/FloatShadow.h"
#include "Views/Kit/Fonts.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QPainter>

#include <cmath>

namespace Bralto {
namespace {

constexpr int Padding = 11;
constexpr int Gap = 10;
constexpr int LineHeight = 10;
constexpr int SymbolGap = 5;

double partWidth(const QString& text)
{
    return std::ceil(Tabular::width(font(TextRole::Caption), text));
}

} // namespace

StatusPill::StatusPill(Theme& theme, QWidget* parent)
    : ThemedWidget(theme, parent)
{
    setContent({});
}

QStringList StatusPill::parts(const Content& content)
{
    QStringList parts;
    if (!content.problem.isEmpty())
        parts.append(tr("Not saved"));
    parts.append(tr("Ln %1, Col %2").arg(content.line).arg(content.column));
    if (content.words >= 0)
        parts.append(tr("%1 words").arg(content.words));
    parts.append(content.language);
    return parts;
}

void StatusPill::setContent(const Content& content)
{
    m_content = content;
    setToolTip(content.problem);
    setAccessibleName(parts(content).join(QStringLiteral(", ")));
    setFixedSize(sizeHint());
    update();
}

QSize StatusPill::sizeHint() const
{
    double width = 2.0 * Padding;
    const QStringList texts = parts(m_content);
    for (const QString& text : texts)
        width += partWidth(text);
    width += double(texts.size() - 1) * (2 * Gap + 1);
    if (!m_content.problem.isEmpty())
        width += Measure::CaptionIcon + SymbolGap;
    // The edge lies outside.
    return {int(std::ceil(width)) + 2, Measure::Pill + 2};
}

void StatusPill::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRectF pill = QRectF(rect()).adjusted(1, 1, -1, -1);
    Float::drawPanel(painter, pill, Measure::Pill / 2, tokens());
    double x = pill.left() + Padding;
    if (!m_content.problem.isEmpty()) {
        Icon::draw(painter,
                   QRectF(x, pill.center().y() - Measure::CaptionIcon / 2.0, Measure::CaptionIcon,
                          Measure::CaptionIcon),
                   QStringLiteral("exclamationmark.triangle.fill"), tokens().failed);
        x += Measure::CaptionIcon + SymbolGap;
    }
    const QStringList texts = parts(m_content);
    for (qsizetype at = 0; at < texts.size(); ++at) {
        const double width = partWidth(texts[at]);
        painter.setFont(Bralto::font(TextRole::Caption));
        painter.setPen(at == 0 && !m_content.problem.isEmpty() ? tokens().failed : tokens().ink2);
        Tabular::draw(painter, QRectF(x, pill.top(), width, pill.height()), Qt::AlignVCenter,
                      texts[at]);
        x += width;
        if (at + 1 < texts.size())
            painter.fillRect(QRectF(x + Gap, pill.center().y() - LineHeight / 2.0,
                                    Shape::hairline(painter), LineHeight),
                             tokens().separator);
        x += 2 * Gap + 1;
    }
}

} // namespace Bralto
