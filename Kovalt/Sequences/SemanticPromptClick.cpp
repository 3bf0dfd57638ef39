// Clicks into the input of a shell that marks its prompts, and what a view looks up.

#include "Kovalt/Terminal.h"

#include <algorithm>

namespace Kovalt {

namespace {

using Mode = SemanticPromptClickMode;

/// The keypad's cursor keys by their codes in the keyboard protocol: a shell binds them to plain
/// motion, while its arrow keys may do more.
constexpr std::string_view SpecialLeft = "\x1b[57417u";
constexpr std::string_view SpecialRight = "\x1b[57418u";
constexpr std::string_view SpecialUp = "\x1b[57419u";
constexpr std::string_view SpecialDown = "\x1b[57420u";

/// The keys that this terminal has for the four directions.
struct CursorKeys {
    std::string_view left;
    std::string_view right;
    std::string_view up;
    std::string_view down;
};

CursorKeys cursorKeys(bool special, bool application)
{
    if (special)
        return {SpecialLeft, SpecialRight, SpecialUp, SpecialDown};
    if (application)
        return {"\x1bOD", "\x1bOC", "\x1bOA", "\x1bOB"};
    return {"\x1b[D", "\x1b[C", "\x1b[A", "\x1b[B"};
}

void repeat(std::string& keys, std::string_view key, int count)
{
    for (int i = 0; i < count; ++i)
        keys += key;
}

} // namespace

std::optional<LinkMatch> Terminal::link(const LinkLookupLocation& location,
                                        LinkLookupMode mode) const
{
    Position position = location.position;
    if (location.space == LinkLookupLocation::Space::Screen)
        position.row += m_buffer->yDisp;
    if (auto match = Links::explicitLinkMatch(*m_buffer, position))
        return match;
    if (mode == LinkLookupMode::ExplicitOnly)
        return std::nullopt;
    return Links::implicitLinkMatch(*m_buffer, m_graphemes, position);
}

SemanticCode Terminal::semanticContent(Position position) const
{
    return m_buffer->getCharAtBufferRelative(position).semantic;
}

bool Terminal::allowsPromptClick(MouseModifiers modifiers) const
{
    using namespace SemanticPromptClickModifiers;
    using Kind = SemanticPromptClickBehavior::Kind;
    // A program that tracks the mouse gets the click itself.
    if (m_modes.mouseMode != MouseMode::Off || m_promptClickBehavior.kind == Kind::Disabled)
        return false;
    if (m_promptClickBehavior.kind == Kind::Enabled)
        return true;
    const unsigned held = (modifiers.shift ? Shift : 0U) | (modifiers.meta ? Meta : 0U) |
                          (modifiers.control ? Control : 0U);
    return (held & m_promptClickBehavior.modifiers) == m_promptClickBehavior.modifiers;
}

bool Terminal::handleSemanticPromptClick(Position at, MouseModifiers modifiers)
{
    if (!allowsPromptClick(modifiers))
        return false;
    at.row += m_buffer->yDisp;
    switch (m_buffer->semantic.clickMode) {
    case Mode::None:
        return false;
    case Mode::ClickEventsAbsolute:
    case Mode::ClickEventsRelative:
        return sendPromptClickEvent(at);
    default:
        return sendPromptCursorKeys(at);
    }
}

/// The event is a press of the left button as the SGR encoding of the mouse writes it. Relative
/// rows count from the prompt's first.
bool Terminal::sendPromptClickEvent(Position at)
{
    const auto rows = PromptClick::inputRows(*m_buffer);
    const auto prompt = PromptClick::promptRow(*m_buffer);
    const bool isInside = rows && prompt && at.row >= *prompt && at.row <= rows->second &&
                          at.col >= 0 && at.col < m_cols;
    if (!isInside)
        return false;
    const bool isRelative = m_buffer->semantic.clickMode == Mode::ClickEventsRelative;
    const int row = at.row - (isRelative ? *prompt : m_buffer->yBase);
    // What has scrolled off the screen has no place on it.
    if (row < 0)
        return false;
    sendCsi("<0;" + std::to_string(at.col + 1) + ';' + std::to_string(row + 1) + 'M');
    return true;
}

bool Terminal::sendPromptCursorKeys(Position at)
{
    const auto steps = PromptClick::stepsTo(*m_buffer, at);
    if (!steps)
        return false;
    const auto key =
        cursorKeys(m_buffer->semantic.usesSpecialCursorKeys, m_modes.applicationCursor);
    std::string keys;
    repeat(keys, key.left, steps->home);
    repeat(keys, key.down, steps->vertical);
    repeat(keys, key.up, -steps->vertical);
    repeat(keys, key.right, steps->sideways);
    repeat(keys, key.left, -steps->sideways);
    if (!keys.empty())
        sendResponse(keys);
    return true;
}

} // namespace Kovalt
