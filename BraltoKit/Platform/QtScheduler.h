#pragma once

#include "Base/Scheduler.h"

#include <QHash>
#include <QObject>

class QTimer;

namespace Bralto {

/// Delayed calls by the event loop of the main thread. What is still waiting when this object ends
/// never runs.
class QtScheduler final : public QObject, public Scheduler {
    Q_OBJECT

public:
    using QObject::QObject;

    quint64 after(std::chrono::milliseconds delay, QObject* context,
                  std::function<void()> action) override;
    void cancel(quint64 call) override;

private:
    QHash<quint64, QTimer*> m_waiting;
    quint64 m_lastCall = 0;
};

} // namespace Bralto
