#pragma once

#include "Kovalt/Links.h"
#include "Views/Terminal/TerminalLinks.h"

#include <QObject>

#include <optional>
#include <variant>

namespace Bralto {

class TerminalView;

/// The link under the pointer: marks it while Ctrl is held, and follows it. Whether a file is there
/// is looked up on a worker; a link is marked as soon as it is known to lead somewhere.
class LinkPointer final : public QObject {
    Q_OBJECT

public:
    /// Belongs to `view`.
    explicit LinkPointer(TerminalView& view);

    /// The pointer is over a cell of the view, with Ctrl held or not.
    void moveTo(Kovalt::Position viewCell, bool ctrl);
    void leave();
    /// Whether the link under the pointer leads somewhere.
    [[nodiscard]] bool isOnLink() const { return m_resolved.has_value(); }
    /// Follows the link under the pointer, as soon as it is known to lead somewhere.
    void follow();

signals:
    void urlActivated(const QString& url);
    void fileActivated(const QString& path, int line, int column);
    /// Whether a link is marked now.
    void marked(bool isMarked);

private:
    using Resolved = std::variant<QString, TerminalLinks::FilePlace>;

    void lookAgain();
    void setMatch(const std::optional<Kovalt::LinkMatch>& match);
    void resolve(const Kovalt::LinkMatch& match);
    void setResolved(Resolved resolved);
    void activate();

    TerminalView& m_view;
    std::optional<Kovalt::Position> m_cell; ///< Of the view; absent while the pointer is elsewhere.
    bool m_ctrl = false;
    std::optional<Kovalt::LinkMatch> m_match;
    std::optional<Resolved> m_resolved;
    bool m_follows = false; ///< It was clicked before it was known where it leads.
    quint64 m_generation = 0;
};

} // namespace Bralto
