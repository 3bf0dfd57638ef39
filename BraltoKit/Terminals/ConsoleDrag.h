#pragma once

/// @file
/// Dragging panes and tabs of the panel about: what is dragged, where it would go, and when the
/// drag is over. Main thread.

#include "Base/Motion.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <optional>

namespace Bralto {

class ConsolePane;
class TerminalGroup;
class TerminalPanel;

/// Follows a drag of a pane or of a tab. It knows the end of a drag that was dropped outside of
/// every target too, since no target hears of that. What is dragged is known by identity here;
/// the data that the system carries only says which kind it is.
class ConsoleDrag final : public QObject {
    Q_OBJECT

public:
    enum class Kind { Pane, Group };
    enum class Edge { Leading, Trailing };

    struct Item {
        Kind kind = Kind::Pane;
        QString id;
        bool operator==(const Item&) const = default;
    };
    struct Target {
        enum class Place { Pane, Chip, NewTab };

        Place place = Place::NewTab;
        QString id;               ///< Of the pane or of the chip's tab; empty for a new tab.
        std::optional<Edge> edge; ///< Always there for a pane, for a chip if a tab goes beside it.
        bool operator==(const Target&) const = default;
    };

    /// So many looks in a row without a pressed button end a drag.
    static constexpr int ReleasedTicks = 6;
    static constexpr std::chrono::milliseconds TickPeriod{40};

    /// `isButtonPressed` tells about the mouse.
    ConsoleDrag(Motion& motion, std::function<bool()> isButtonPressed, QObject* parent = nullptr);

    /// The name under which the system carries an item of that kind, and both of them.
    [[nodiscard]] static QString type(Kind kind);
    [[nodiscard]] static QStringList types();
    /// The half of a target of that width in which `x` lies.
    [[nodiscard]] static Edge edge(double x, double width);

    [[nodiscard]] const std::optional<Item>& item() const { return m_item; }
    [[nodiscard]] const std::optional<Target>& target() const { return m_target; }

    /// A drag of that item begins: terminals keep their grid until it is over.
    void start(const Item& item);
    /// The drag would end there.
    void point(const Target& target);
    /// The drag has left `target`; ignored if it is at another one already.
    void leave(const Target& target);
    /// The drag is over, however it ended.
    void finish();
    /// Looks at the mouse. The timer calls it.
    void tick();
    [[nodiscard]] bool isWatching() const { return m_watch.isActive(); }

    /// The pane that data of those types carries; null unless it is being dragged and is one of
    /// `panel`.
    [[nodiscard]] ConsolePane* draggedPane(const TerminalPanel& panel,
                                           const QStringList& formats) const;
    /// The same of a tab.
    [[nodiscard]] TerminalGroup* draggedGroup(const TerminalPanel& panel,
                                              const QStringList& formats) const;

signals:
    void itemChanged();
    void targetChanged();

private:
    [[nodiscard]] bool carries(Kind kind, const QStringList& formats) const;
    void setTarget(const std::optional<Target>& target);

    std::optional<Item> m_item;
    std::optional<Target> m_target;
    ResizeHold m_hold;
    std::function<bool()> m_isButtonPressed;
    QTimer m_watch;
    int m_releasedTicks = 0;
};

} // namespace Bralto
