#include "Views/Kit/Theme.h"

#include <utility>

namespace Bralto {
namespace {

TokenSource sourceFor(const SpaceTheme& space, const Theme::System& system)
{
    const bool dark = space.appearance == SpaceAppearance::System
                          ? system.dark
                          : space.appearance == SpaceAppearance::Dark;
    return TokenSource::from(space, dark);
}

} // namespace

Theme::Theme(System system, const SpaceTheme& space, QObject* parent)
    : QObject(parent)
    , m_system(system)
    , m_space(space)
    , m_source(sourceFor(space, system))
    , m_tokens(m_source)
{
}

Theme::Theme(const Theme& window, Dress dress, QObject* parent)
    : QObject(parent)
    , m_window(&window)
    , m_dress(std::move(dress))
    , m_space(window.m_space)
    , m_source(window.m_source)
    , m_tokens(m_dress(window.tokens()))
{
    connect(&window, &Theme::changed, this, [this] { setDress(m_dress); });
}

void Theme::setDress(Dress dress)
{
    m_dress = std::move(dress);
    m_space = m_window->m_space;
    m_tokens = m_dress(m_window->tokens());
    emit changed();
}

void Theme::setSpace(const SpaceTheme& space)
{
    if (m_space == space)
        return;
    m_space = space;
    refresh();
}

void Theme::setSystem(System system)
{
    if (m_system == system)
        return;
    m_system = system;
    refresh();
}

void Theme::refresh()
{
    TokenSource source = sourceFor(m_space, m_system);
    if (source == m_source)
        return;
    m_source = source;
    m_tokens = Tokens(m_source);
    emit changed();
}

} // namespace Bralto
