#include "Views/Chat/StatusMark.h"

#include "Views/Kit/Icon.h"

#include <QPainter>

namespace Bralto {

namespace {

constexpr int TurnMs = 900;
constexpr int TickMs = 33;
constexpr double RingLine = 2;
constexpr double Quarter = 0.25;

} // namespace

namespace StatusMark {

void drawRing(QPainter& painter, const QRectF& rect, double lineWidth, double fraction,
              double start, const QColor& ink, const QColor& track)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const double inset = lineWidth / 2;
    const QRectF line = rect.adjusted(inset, inset, -inset, -inset);
    painter.setPen(QPen(track, lineWidth));
    painter.drawEllipse(line);
    painter.setPen(QPen(ink, lineWidth, Qt::SolidLine, Qt::RoundCap));
    // Sixteenths of a degree, counted from three o'clock against the clock.
    const int from = int((90 - start * 360) * 16);
    painter.drawArc(line, from, -int(fraction * 360 * 16));
    painter.restore();
}

void draw(QPainter& painter, const QRectF& rect, ChatToolStatus status, const Tokens& tokens,
          double turn)
{
    switch (status) {
    case ChatToolStatus::Running: {
        const double inset = rect.width() / 14;
        drawRing(painter, rect.adjusted(inset, inset, -inset, -inset), RingLine, Quarter, turn,
                 tokens.accentInk, tokens.separator);
        break;
    }
    case ChatToolStatus::Done:
        Icon::draw(painter, rect, QStringLiteral("checkmark"), tokens.done);
        break;
    case ChatToolStatus::Failed:
        Icon::draw(painter, rect, QStringLiteral("xmark"), tokens.failed);
        break;
    }
}

} // namespace StatusMark

SpinnerClock& SpinnerClock::shared()
{
    static SpinnerClock clock;
    return clock;
}

SpinnerClock::SpinnerClock()
{
    m_timer.setInterval(TickMs);
    connect(&m_timer, &QTimer::timeout, this, &SpinnerClock::ticked);
}

double SpinnerClock::turn() const
{
    return m_timer.isActive() ? double(m_elapsed.elapsed() % TurnMs) / TurnMs : 0;
}

void SpinnerClock::hold(QObject* owner, bool holds)
{
    const bool held = m_owners.contains(owner);
    if (holds && !held) {
        m_owners.append(owner);
        connect(owner, &QObject::destroyed, this, [this, owner] { hold(owner, false); });
    } else if (!holds && held) {
        m_owners.removeAll(owner);
        disconnect(owner, &QObject::destroyed, this, nullptr);
    }
    if (m_owners.isEmpty()) {
        m_timer.stop();
    } else if (!m_timer.isActive()) {
        m_elapsed.start();
        m_timer.start();
    }
}

} // namespace Bralto
