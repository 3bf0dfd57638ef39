#include "Views/Terminal/LinkPointer.h"

#include "Base/Background.h"
#include "Views/Terminal/TerminalView.h"

#include <QDir>

#include <utility>

namespace Bralto {

namespace {

TerminalLinks::Folders foldersOf(const TerminalSession& session)
{
    TerminalLinks::Folders folders{QDir::homePath(), {}};
    const auto add = [&folders](const QString& folder) {
        if (!folder.isEmpty() && !folders.current.contains(folder))
            folders.current.append(folder);
    };
    if (const auto& told = session.terminal().hostCurrentDirectory())
        add(TerminalLinks::localPath(QString::fromStdString(*told)));
    add(session.currentDirectory());
    add(session.startDirectory());
    return folders;
}

} // namespace

LinkPointer::LinkPointer(TerminalView& view)
    : QObject(&view)
    , m_view(view)
{
    connect(&view.session(), &TerminalSession::changed, this, [this] {
        if (m_match)
            lookAgain();
    });
}

void LinkPointer::moveTo(Kovalt::Position viewCell, bool ctrl)
{
    if (m_cell == viewCell && m_ctrl == ctrl)
        return;
    m_cell = viewCell;
    m_ctrl = ctrl;
    lookAgain();
}

void LinkPointer::leave()
{
    m_cell.reset();
    m_ctrl = false;
    m_follows = false;
    lookAgain();
}

void LinkPointer::lookAgain()
{
    using Mode = Kovalt::LinkLookupMode;
    const Kovalt::Terminal& terminal = m_view.session().terminal();
    std::optional<Kovalt::LinkMatch> match;
    if (m_cell)
        match = terminal.link({Kovalt::LinkLookupLocation::Space::Screen, *m_cell},
                              m_ctrl ? Mode::ExplicitAndImplicit : Mode::ExplicitOnly);
    const QString tip = match ? TerminalLinks::tip(terminal, *match) : QString();
    if (tip != m_view.toolTip())
        m_view.setToolTip(tip);
    setMatch(m_ctrl ? match : std::nullopt);
}

void LinkPointer::setMatch(const std::optional<Kovalt::LinkMatch>& match)
{
    if (match == m_match)
        return;
    const bool leadsTheSameWay = match && m_match && match->text == m_match->text;
    m_match = match;
    if (leadsTheSameWay) {
        if (m_resolved)
            m_view.setHoveredLink(m_match);
        return;
    }
    ++m_generation;
    m_follows = false;
    if (std::exchange(m_resolved, std::nullopt)) {
        m_view.setHoveredLink(std::nullopt);
        emit marked(false);
    }
    if (m_match)
        resolve(*m_match);
}

void LinkPointer::resolve(const Kovalt::LinkMatch& match)
{
    const auto target =
        TerminalLinks::target(QString::fromStdString(match.text), foldersOf(m_view.session()));
    if (!target)
        return;
    if (const auto* const url = std::get_if<QString>(&*target)) {
        setResolved(*url);
        return;
    }
    inBackground(
        this,
        [places = std::get<std::vector<TerminalLinks::FilePlace>>(*target)] {
            return TerminalLinks::existing(places);
        },
        [this, generation = m_generation](const std::optional<TerminalLinks::FilePlace>& found) {
            if (found && generation == m_generation)
                setResolved(*found);
        });
}

void LinkPointer::setResolved(Resolved resolved)
{
    m_resolved = std::move(resolved);
    m_view.setHoveredLink(m_match);
    emit marked(true);
    if (std::exchange(m_follows, false))
        activate();
}

void LinkPointer::follow()
{
    if (m_resolved)
        activate();
    else
        m_follows = m_match.has_value();
}

void LinkPointer::activate()
{
    if (const auto* const url = std::get_if<QString>(&*m_resolved)) {
        emit urlActivated(*url);
        return;
    }
    const auto& place = std::get<TerminalLinks::FilePlace>(*m_resolved);
    emit fileActivated(place.path, place.line, place.column);
}

} // namespace Bralto
