#include "Views/Chat/ChatStrip.h"

#include "Views/Chat/StatusMark.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace Bralto {

namespace {

constexpr int Height = 28;
constexpr int Side = 6;
constexpr int Gap = 12;
constexpr int SymbolGap = 5;
constexpr int RingSide = 14;
constexpr double RingLine = 2.2;
constexpr double DotSide = 8;
constexpr double HaloSide = 14;

QString capitalised(const QString& word)
{
    if (word == QLatin1String("xhigh"))
        return QStringLiteral("Extra High");
    return word.isEmpty() ? word : word.left(1).toUpper() + word.mid(1);
}

} // namespace

ChatStrip::ChatStrip(Theme& theme, QWidget* parent)
    : ThemedWidget(theme, parent)
{
    setFixedHeight(Height);
    connect(&SpinnerClock::shared(), &SpinnerClock::ticked, this,
            [this] { update(0, 0, 40, Height); });
}

QSize ChatStrip::sizeHint() const
{
    return {240, Height};
}

void ChatStrip::setInfo(const ChatStatusInfo& info)
{
    if (info == m_info)
        return;
    m_info = info;
    const bool turns =
        info.state.kind == ChatState::Kind::Working || info.state.kind == ChatState::Kind::Starting;
    SpinnerClock::shared().hold(this, turns);
    setAccessibleName(ChatStatusTexts::stateLabel(info.state));
    update();
}

QList<ChatStrip::Fact> ChatStrip::facts() const
{
    QList<Fact> result;
    if (!m_info.runningAgents.empty())
        result.append({Fact::Kind::Words,
                       QStringLiteral("person.2"),
                       ChatStatusTexts::agentsRunning(qsizetype(m_info.runningAgents.size())),
                       {}});
    if (m_info.permissionMode)
        result.append({Fact::Kind::Mode, ChatStatusTexts::modeSymbol(*m_info.permissionMode),
                       ChatStatusTexts::modeName(*m_info.permissionMode), tr("Permission mode")});
    if (m_info.effort)
        result.append({Fact::Kind::Effort, QStringLiteral("brain"), capitalised(*m_info.effort),
                       tr("Effort")});
    if (m_info.modelName)
        result.append({Fact::Kind::Model, {}, *m_info.modelName, tr("Model")});
    if (m_info.contextFraction())
        result.append({Fact::Kind::Context,
                       {},
                       ChatStatusTexts::tokens(*m_info.contextUsed),
                       ChatStatusTexts::contextHelp(*m_info.contextUsed, *m_info.contextWindow)});
    if (m_info.cost)
        result.append({Fact::Kind::Cost,
                       {},
                       ChatStatusTexts::cost(*m_info.cost),
                       tr("What this conversation has cost")});
    return result;
}

double ChatStrip::widthOf(const Fact& fact)
{
    double width = TextLine::width(TextRole::Caption, fact.text);
    if (fact.kind == Fact::Kind::Context)
        width += RingSide + SymbolGap;
    else if (!fact.symbol.isEmpty())
        width += Measure::CaptionIcon + (fact.text.isEmpty() ? 0 : SymbolGap);
    return width;
}

void ChatStrip::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QString label = ChatStatusTexts::stateLabel(m_info.state);
    const double left =
        Side + RingSide + SymbolGap + TextLine::width(TextRole::CaptionMedium, label) + Gap;
    paintState(painter, QRectF(Side, 0, left - Side, Height));

    m_shown = facts();
    const auto total = [this] {
        double width = 0;
        for (const Fact& fact : m_shown)
            width += widthOf(fact) + Gap;
        return width;
    };
    // What goes first where there is little room: agents' words, effort, the words of the mode,
    // then whole facts from the left.
    const double room = width() - Side - left;
    for (const Fact::Kind kind : {Fact::Kind::Words, Fact::Kind::Effort, Fact::Kind::Mode}) {
        if (total() <= room)
            break;
        for (Fact& fact : m_shown) {
            if (fact.kind == kind)
                fact.text = kind == Fact::Kind::Words ? QString::number(m_info.runningAgents.size())
                                                      : QString();
        }
        m_shown.removeIf([](const Fact& fact) {
            return fact.kind == Fact::Kind::Effort && fact.text.isEmpty();
        });
    }
    while (!m_shown.isEmpty() && total() > room)
        m_shown.removeFirst();

    double right = width() - Side;
    for (qsizetype index = m_shown.size() - 1; index >= 0; --index) {
        Fact& fact = m_shown[index];
        const double wide = widthOf(fact);
        fact.area = QRectF(right - wide, 0, wide, Height);
        paintFact(painter, fact);
        right -= wide + Gap;
    }
}

void ChatStrip::paintState(QPainter& painter, const QRectF& area) const
{
    const QRectF mark(area.left(), (Height - RingSide) / 2.0, RingSide, RingSide);
    switch (m_info.state.kind) {
    case ChatState::Kind::Starting:
    case ChatState::Kind::Working:
        StatusMark::draw(painter, mark, ChatToolStatus::Running, tokens(),
                         SpinnerClock::shared().turn());
        break;
    case ChatState::Kind::Waiting:
        Shape::disc(painter, mark.center(), HaloSide, tokens().pillHalo);
        Shape::disc(painter, mark.center(), DotSide, tokens().pillDot);
        break;
    case ChatState::Kind::Failed:
        Icon::draw(painter, mark, QStringLiteral("exclamationmark.triangle.fill"), tokens().failed);
        break;
    case ChatState::Kind::Idle:
        Shape::ring(painter, mark.adjusted(2, 2, -2, -2), RingSide / 2.0, 1.2, tokens().ink3);
        break;
    }
    TextLine::draw(painter, area.adjusted(RingSide + SymbolGap, 0, 0, 0), TextRole::CaptionMedium,
                   tokens().label, ChatStatusTexts::stateLabel(m_info.state));
}

void ChatStrip::paintFact(QPainter& painter, const Fact& fact) const
{
    QRectF area = fact.area;
    if (fact.kind == Fact::Kind::Context) {
        const QRectF ring(area.left(), (Height - RingSide) / 2.0, RingSide, RingSide);
        StatusMark::drawRing(painter, ring, RingLine, *m_info.contextFraction(), 0,
                             tokens().accentInk, tokens().pressed);
        area.setLeft(ring.right() + SymbolGap);
    } else if (!fact.symbol.isEmpty()) {
        const QRectF symbol(area.left(), (Height - Measure::CaptionIcon) / 2.0,
                            Measure::CaptionIcon, Measure::CaptionIcon);
        Icon::draw(painter, symbol, fact.symbol, tokens().ink2);
        area.setLeft(symbol.right() + SymbolGap);
    }
    TextLine::draw(painter, area.adjusted(0, 0, 1, 0), TextRole::Caption, tokens().ink2, fact.text,
                   Qt::ElideNone);
}

bool ChatStrip::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return ThemedWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    for (const Fact& fact : m_shown) {
        if (fact.area.contains(help->pos()) && !fact.help.isEmpty()) {
            QToolTip::showText(help->globalPos(), fact.help, this, fact.area.toRect());
            return true;
        }
    }
    QToolTip::hideText();
    return true;
}

} // namespace Bralto
