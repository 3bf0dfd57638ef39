#pragma once

#include "Terminals/PaneStyle.h"
#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace Bralto {

enum class PaneKind { Shell, Claude, Chat };

/// What a pane was when the panel was saved.
struct PaneSnapshot {
    PaneKind kind = PaneKind::Chat;
    std::optional<QString> claudeSessionId; ///< A UUID in lower case; upper case in the file.
    QString directory;
    std::optional<QString> scrollback;
    std::optional<QString> name;
    std::optional<PaneStyle> style; ///< Absent for the default one.

    bool operator==(const PaneSnapshot&) const = default;
};

struct GroupSnapshot {
    std::vector<PaneSnapshot> panes;
    int focusedIndex = 0;
    std::optional<QString> name;

    bool operator==(const GroupSnapshot&) const = default;
};

/// A panel as it is kept between runs.
struct PanelSnapshot {
    bool isVisible = false;
    double editorFraction = 0.5;
    int activeGroupIndex = 0;
    std::vector<GroupSnapshot> groups;

    [[nodiscard]] QByteArray encode() const;
    /// Absent if a required key is missing, if any key has another type, or a kind is unknown.
    [[nodiscard]] static std::optional<PanelSnapshot> decode(const QByteArray& json);

    bool operator==(const PanelSnapshot&) const = default;
};

} // namespace Bralto
