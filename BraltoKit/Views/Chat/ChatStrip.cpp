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
constexpr int Side = 2;
constexpr int Gap = 12;
constexpr int SymbolGap = 5;
constexpr int RingSide = 14;
constexpr double RingLine = 2.2;
constexpr double DotSide = 8;
constexpr double HaloSide = 14;

/// Amber when the window is nearly full, red when it is about to be.
QColor ringInk(double fraction, const Tokens& tokens)
{
    if (fraction >= 0.95)
        return tokens.failed;
    return fraction >= 0.8 ? tokens.waiting : tokens.accentInk;
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
    SpinnerClock::shared().hold(this, turns && !theme().reducedMotion());
    QStringList words{ChatStatusTexts::stateLabel(info.state)};
    for (const Fact& fact : facts())
        words.append(fact.text);
    setAccessibleName(words.join(QStringLiteral(", ")));
    fit();
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
        result.append({Fact::Kind::Effort, QStringLiteral("brain"),
                       ChatCommands::effortName(*m_info.effort), tr("Effort")});
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

double ChatStrip::stateWidth() const
{
    return RingSide + SymbolGap + Gap +
           TextLine::width(TextRole::CaptionMedium, ChatStatusTexts::stateLabel(m_info.state));
}

void ChatStrip::resizeEvent(QResizeEvent*)
{
    fit();
}

void ChatStrip::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintState(painter, QRectF(Side, 0, stateWidth(), Height));
    for (const Fact& fact : m_shown)
        paintFact(painter, fact);
}

/// Decides which facts there is room for, and where they stand.
void ChatStrip::fit()
{
    const double left = stateWidth() + Side;
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
        const double fraction = *m_info.contextFraction();
        StatusMark::drawRing(painter, ring, RingLine, fraction, 0, ringInk(fraction, tokens()),
                             tokens().pressed);
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
