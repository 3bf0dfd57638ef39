#pragma once

#include "Chat/ChatMessage.h"
#include "Views/Kit/Tokens.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class QPainter;

namespace Bralto {

/// How far something has come, as a shape in a colour: a turning ring, a tick, a cross.
namespace StatusMark {

/// `turn` goes from 0 to 1 once in 0.9 s.
void draw(QPainter& painter, const QRectF& rect, ChatToolStatus status, const Tokens& tokens,
          double turn);

/// A part of a ring, from the top clockwise; the rest is faint.
void drawRing(QPainter& painter, const QRectF& rect, double lineWidth, double fraction,
              double start, const QColor& ink, const QColor& track);

} // namespace StatusMark

/// The one clock of all that turns. It runs while somebody holds it and motion is wanted.
class SpinnerClock final : public QObject {
    Q_OBJECT

public:
    static SpinnerClock& shared();

    /// 0 to 1.
    [[nodiscard]] double turn() const;

    /// `owner` shows something that turns, or no longer does.
    void hold(QObject* owner, bool holds);

signals:
    void ticked();

private:
    SpinnerClock();

    QTimer m_timer;
    QElapsedTimer m_elapsed;
    QList<QObject*> m_owners;
};

} // namespace Bralto
