// A terminal's life: how it begins, changes its size, and begins again.

#include "Kovalt/Terminal.h"

#include "Kovalt/Ascii.h"
#include "Kovalt/TerminalTimer.h"

#include <algorithm>
#include <cstdio>

namespace Kovalt {

namespace {

/// So many links are kept before it is asked which of them are still used.
constexpr std::size_t FirstPayloadCollection = 4096;

TerminalOptions withinLimits(TerminalOptions options)
{
    options.cols = std::clamp(options.cols, Terminal::MinimumCols, BufferLine::MaxSize);
    options.rows = std::clamp(options.rows, Terminal::MinimumRows, BufferLine::MaxSize);
    return options;
}

Buffer::Options bufferOptions(const TerminalOptions& options, std::optional<int> scrollback)
{
    return {options.cols, options.rows, options.tabStopWidth, scrollback, options.initialBidiState};
}

/// The cursor of a screen goes on in the other. One that waits behind a full row still does; the
/// margins of the other screen are its own.
void takeCursor(const Buffer& from, Buffer& to)
{
    to.x = from.x < from.cols() ? from.standingColumn() : from.x;
    to.y = from.y;
    to.waits = from.waits && from.x >= from.cols();
}

} // namespace

Terminal::Terminal(TerminalDelegate* delegate, TerminalOptions options)
    : m_delegate(delegate)
    , m_options(withinLimits(std::move(options)))
    , m_cols(m_options.cols)
    , m_rows(m_options.rows)
    , m_normalBuffer(bufferOptions(m_options, m_options.scrollback))
    , m_altBuffer(bufferOptions(m_options, std::nullopt))
    , m_buffer(&m_normalBuffer)
    , m_parser(*this)
    , m_cursorStyle(m_options.cursorStyle)
    , m_currentBidiState(m_options.initialBidiState)
{
    m_parser.setStringLimit(m_options.stringLimitBytes);
    m_normalBuffer.setHost(this);
    m_altBuffer.setHost(this);
    m_normalBuffer.fillViewportRows();
    setupColors();
    setup(SetupKind::First);
}

Terminal::~Terminal()
{
    if (m_synchronizedOutputActive && m_options.timer)
        m_options.timer->cancel();
    const std::vector<std::uint16_t> codes(m_payloadCodes.begin(), m_payloadCodes.end());
    TinyAtom::release(codes);
}

void Terminal::feed(std::span<const std::uint8_t> bytes) noexcept
{
    m_parser.parse(bytes);
    if (m_payloadCodes.size() >= m_payloadCollectionAt) {
        garbageCollectPayload();
        m_payloadCollectionAt = std::max(FirstPayloadCollection, 2 * m_payloadCodes.size());
    }
}

void Terminal::feed(std::string_view utf8) noexcept
{
    feed(Ascii::bytes(utf8));
}

void Terminal::resize(int cols, int rows)
{
    cols = std::clamp(cols, MinimumCols, BufferLine::MaxSize);
    rows = std::clamp(rows, MinimumRows, BufferLine::MaxSize);
    if (cols == m_cols && rows == m_rows)
        return;
    endSynchronizedOutput();
    const int oldCols = m_cols;
    m_cols = m_options.cols = cols;
    m_rows = m_options.rows = rows;
    for (Buffer* const buffer : {&m_normalBuffer, &m_altBuffer}) {
        buffer->resize(cols, rows);
        if (cols > oldCols)
            buffer->setupTabStops(oldCols, m_options.tabStopWidth);
    }
    updateFullScreen();
}

void Terminal::setup(SetupKind kind)
{
    if (kind == SetupKind::Reset) {
        activateNormalBuffer(false);
        resetSemanticPromptState();
    }
    for (Buffer* const buffer : {&m_normalBuffer, &m_altBuffer}) {
        if (kind == SetupKind::Reset) {
            buffer->clear();
            buffer->setupTabStops(-1, m_options.tabStopWidth);
            buffer->softReset();
        }
        buffer->savedWraparound = true;
        buffer->scrollTop = 0;
        buffer->scrollBottom = m_rows - 1;
        buffer->marginLeft = 0;
        buffer->marginRight = m_cols - 1;
    }
    m_normalBuffer.fillViewportRows();

    setReverseColors(false);
    m_modes = {};
    m_modes.lineFeedMode = m_options.convertEol;
    m_modes.bidiArrowKeySwap = m_options.initialBidiArrowKeySwap;
    setMarginMode(false);
    setInsertMode(false);
    setWraparound(true);
    setMouseMode(MouseMode::Off);

    m_keyboardModeNormal.reset();
    m_keyboardModeAlt.reset();
    m_charsets = {};
    m_curAttr = {};
    m_guardsUsed = 0;
    m_print = {};
    m_activeHyperlink = {};
    m_hostCurrentDirectory.reset();
    m_titles.terminalTitleStack.clear();
    m_titles.terminalIconStack.clear();
    m_titles.setUtf = m_titles.setHex = m_titles.queryUtf = m_titles.queryHex = false;
    setCursorStyle(m_options.cursorStyle);
}

void Terminal::resetToInitialState()
{
    m_currentBidiState = m_options.initialBidiState;
    m_normalBuffer.defaultBidiState = m_altBuffer.defaultBidiState = m_currentBidiState;
    m_savedBidiPrivateModes.clear();
    endSynchronizedOutput();
    const bool wasHidden = m_modes.cursorHidden;
    setup(SetupKind::Reset);
    resetAllColors();
    garbageCollectPayload();
    m_modes.cursorHidden = wasHidden;
    updateFullScreen();
    if (m_delegate)
        m_delegate->bufferActivated(*this);
}

void Terminal::softReset()
{
    m_currentBidiState = m_options.initialBidiState;
    m_normalBuffer.defaultBidiState = m_altBuffer.defaultBidiState = m_currentBidiState;
    m_savedBidiPrivateModes.clear();
    m_modes.bidiArrowKeySwap = m_options.initialBidiArrowKeySwap;
    m_modes.originMode = false;
    m_modes.reverseWraparound = m_modes.extendedReverseWraparound = false;
    m_modes.conformance = TerminalConformance::Vt500;
    m_modes.controlForm = ControlForm::SevenBit;
    m_modes.applicationKeypad = false;
    m_modes.applicationCursor = false;
    m_modes.lineFeedMode = m_options.convertEol;
    setInsertMode(false);
    setWraparound(true);
    for (Buffer* const buffer : {&m_normalBuffer, &m_altBuffer}) {
        buffer->scrollTop = 0;
        buffer->scrollBottom = m_rows - 1;
        buffer->softReset();
        buffer->savedWraparound = true;
    }
    m_curAttr = {};
    resetSemanticPromptState();
    m_charsets = {};
    activeKeyboardMode().reset();
    m_activeHyperlink = {};
    resetAllColors();
    m_modes.cursorHidden = false;
    if (m_delegate)
        m_delegate->showCursor(*this);
}

void Terminal::clearScrollback()
{
    m_buffer->clearScrollback();
    updateFullScreen();
}

void Terminal::changeScrollback(std::optional<int> rows)
{
    m_options.scrollback = rows;
    m_normalBuffer.changeHistorySize(rows);
    updateFullScreen();
}

void Terminal::setMarginMode(bool on)
{
    m_modes.marginMode = on;
    for (Buffer* const buffer : {&m_normalBuffer, &m_altBuffer}) {
        buffer->marginMode = on;
        if (!on) {
            buffer->marginLeft = 0;
            buffer->marginRight = m_cols - 1;
        }
    }
}

void Terminal::setInsertMode(bool on)
{
    m_modes.insertMode = m_normalBuffer.insertMode = m_altBuffer.insertMode = on;
}

void Terminal::setWraparound(bool on)
{
    m_modes.wraparound = m_normalBuffer.wraparound = m_altBuffer.wraparound = on;
}

void Terminal::setCursorHidden(bool hidden)
{
    if (m_modes.cursorHidden == hidden)
        return;
    m_modes.cursorHidden = hidden;
    if (!m_delegate)
        return;
    if (hidden)
        m_delegate->hideCursor(*this);
    else
        m_delegate->showCursor(*this);
}

void Terminal::setCursorStyle(CursorStyle style)
{
    if (m_cursorStyle == style)
        return;
    m_cursorStyle = style;
    if (m_delegate)
        m_delegate->cursorStyleChanged(*this, style);
}

void Terminal::setReverseColors(bool on)
{
    if (m_modes.reverseColors == on)
        return;
    m_modes.reverseColors = on;
    updateFullScreen();
    if (m_delegate)
        m_delegate->colorChanged(*this, std::nullopt);
}

void Terminal::setMouseMode(MouseMode mode)
{
    m_modes.mouseMode = mode;
    if (m_delegate)
        m_delegate->mouseModeChanged(*this);
}

void Terminal::activateNormalBuffer(bool clearAlt)
{
    if (!isAlternateBufferActive())
        return;
    semanticNoteAlternateScreenSwitch();
    takeCursor(m_altBuffer, m_normalBuffer);
    m_buffer = &m_normalBuffer;
    if (clearAlt) {
        // The next program finds neither margins nor a saved cursor of this one.
        m_altBuffer.clear();
        m_altBuffer.softReset();
        m_altBuffer.savedWraparound = true;
    }
}

void Terminal::activateAltBuffer(const Attribute& fill)
{
    if (isAlternateBufferActive())
        return;
    semanticNoteAlternateScreenSwitch();
    takeCursor(m_normalBuffer, m_altBuffer);
    m_altBuffer.fillViewportRows(fill);
    m_buffer = &m_altBuffer;
}

void Terminal::noteBufferSwitch()
{
    updateFullScreen();
    setCursorHidden(false);
    if (m_delegate)
        m_delegate->bufferActivated(*this);
}

KeyboardModeState& Terminal::activeKeyboardMode()
{
    return isAlternateBufferActive() ? m_keyboardModeAlt : m_keyboardModeNormal;
}

const KeyboardModeState& Terminal::keyboardMode() const
{
    return isAlternateBufferActive() ? m_keyboardModeAlt : m_keyboardModeNormal;
}

void Terminal::log(std::initializer_list<std::string_view> parts) const
{
    if (m_silentLog)
        return;
    std::string line = "Info: ";
    for (const std::string_view part : parts)
        line += part;
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
}

} // namespace Kovalt
