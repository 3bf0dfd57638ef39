#pragma once

#include "Base/DefaultsStore.h"

#include <QObject>
#include <QString>

#include <array>

namespace Bralto {

/// How large the text of each area of a window is. The levels are read once from the shared
/// defaults; a change is written there and told to this process's views. Main thread.
class Zoom final : public QObject {
    Q_OBJECT

public:
    enum class Area { Files, Editor, Browser, Terminal };
    Q_ENUM(Area)

    static constexpr std::array AllAreas{Area::Files, Area::Editor, Area::Browser, Area::Terminal};
    /// What zooming in and out steps through, ascending.
    static constexpr std::array Steps{0.6, 0.7, 0.8, 0.9, 1.0, 1.1, 1.2, 1.35, 1.5, 1.75, 2.0, 2.5};

    /// `shared` must outlive this object.
    explicit Zoom(DefaultsStore& shared, QObject* parent = nullptr);

    /// The factor for the font sizes of `area`, more than 0.
    [[nodiscard]] double level(Area area) const { return m_levels[std::size_t(area)]; }

    /// To the next step in that direction, from a level between two steps too; at the last step
    /// nothing happens.
    void zoomIn(Area area);
    void zoomOut(Area area);
    /// Stores and tells `level`, which is more than 0, unless it is the present one.
    void set(Area area, double level);

    /// The name under which `area` is stored: "files", "editor", "browser" or "terminal".
    [[nodiscard]] static QString name(Area area);

signals:
    /// The level is already stored.
    void changed(Bralto::Zoom::Area area);

private:
    DefaultsStore& m_shared;
    std::array<double, AllAreas.size()> m_levels{};
};

} // namespace Bralto
