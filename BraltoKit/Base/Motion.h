#pragma once

#include "Base/Scheduler.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSize>
#include <QString>

#include <chrono>
#include <optional>

namespace Bralto {

class Motion;

/// A spring that moves a value from 0 to 1.
struct Spring {
    std::chrono::milliseconds response{240}; ///< The period of the spring without damping.
    double damping = 1.0;                    ///< 1 comes to rest without swinging over, 0 never.

    /// The value at a time after the start. At least 0 and, with a damping below 1, now and then
    /// more than 1.
    [[nodiscard]] double progress(std::chrono::duration<double> since) const;
    /// The time after which the value stays within a thousandth of 1.
    [[nodiscard]] std::chrono::milliseconds settlingTime() const;
};

/// A view whose contents are costly to lay out. While an animation resizes it, it shows what it
/// has and takes its true size once, at the end. It may go away at any time.
class HeldView {
public:
    HeldView() = default;
    HeldView(const HeldView&) = delete;
    HeldView& operator=(const HeldView&) = delete;
    virtual ~HeldView();

    /// Lays out for the last size that was asked for. The hold is over when this is called.
    virtual void takeSize(const QSize& size) = 0;

private:
    friend class Motion;
    Motion* m_motion = nullptr; ///< Where this view is being held.
};

/// Knows whether an animated layout or a live resize is under way. Main thread.
class Motion final : public QObject {
    Q_OBJECT

public:
    /// What a view that appears or disappears on a command moves with.
    static constexpr Spring ToggleSpring{std::chrono::milliseconds(240), 0.85};

    /// `scheduler` must outlive this object.
    explicit Motion(Scheduler& scheduler, QObject* parent = nullptr);
    ~Motion() override;

    /// `ToggleSpring`, or nothing when the user wants no motion: then the change is shown at once.
    [[nodiscard]] std::optional<Spring> toggle() const;
    void setReduced(bool reduced) { m_isReduced = reduced; }
    [[nodiscard]] bool isReduced() const { return m_isReduced; }

    /// A motion starts. With a timeout it ends by itself, so that an animation that never
    /// completes can't leave views held. The token is never 0.
    quint64 begin(const QString& action, std::optional<std::chrono::milliseconds> timeout);
    /// A token that has ended already is ignored.
    void end(quint64 token);

    /// The user drags an edge of a window. Calls come in pairs and may be nested.
    void beginLiveResize();
    void endLiveResize();

    [[nodiscard]] int inFlight() const { return int(m_running.size()); }
    [[nodiscard]] int liveResizes() const { return m_liveResizes; }

    /// Whether `view` has to keep the size it is laid out for. If so, it gets `size`, or the one
    /// it asks for last, when everything has come to rest.
    [[nodiscard]] bool holdsResize(HeldView& view, const QSize& size);

signals:
    /// Something to measure starts; it is over after `limit` at the latest.
    void began(quint64 token, const QString& action, std::chrono::milliseconds limit);
    void ended(quint64 token);

private:
    friend class HeldView;

    void releaseIfAtRest();

    Scheduler& m_scheduler;
    QHash<quint64, quint64> m_running; ///< From token to the call that ends it, 0 if there is none.
    QHash<HeldView*, QSize> m_held;
    quint64 m_lastToken = 0;
    quint64 m_liveResizeToken = 0;
    int m_liveResizes = 0;
    bool m_isReduced = false;
};

/// One claim on `Motion` for the length of a drag; it ends with this object at the latest.
class ResizeHold {
public:
    explicit ResizeHold(Motion& motion)
        : m_motion(&motion)
    {
    }
    ResizeHold(const ResizeHold&) = delete;
    ResizeHold& operator=(const ResizeHold&) = delete;
    ~ResizeHold() { end(); }

    /// Has no effect while a claim is held already.
    void begin(const QString& action);
    void end();

private:
    QPointer<Motion> m_motion;
    std::optional<quint64> m_token;
};

} // namespace Bralto
