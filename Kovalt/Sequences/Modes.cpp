// Modes that are set and reset.

#include "Kovalt/Terminal.h"

namespace Kovalt {

void Terminal::cmdSetMode(const CsiSequence& sequence, bool on)
{
    const bool isPrivate = sequence.collect.size() == 1 && sequence.collect[0] == '?';
    for (const int mode : sequence.parameters) {
        if (sequence.collect.empty())
            setAnsiMode(mode, on);
        else if (isPrivate)
            setPrivateMode(mode, on);
        else
            unknownPrivateMode(mode, on);
    }
}

void Terminal::unknownPrivateMode(int mode, bool on) const
{
    if (!m_silentLog)
        log({on ? "Unhandled DEC Private Mode Set (DECSET) with "
                : "Unhandled DEC Private Mode Reset (DECRST) with ",
             std::to_string(mode)});
}

void Terminal::setAnsiMode(int mode, bool on)
{
    using Support = BidiPresentationState::SupportMode;
    switch (mode) {
    case 2:
        break;
    case 4:
        setInsertMode(on);
        break;
    case 8:
        m_currentBidiState.supportMode = on ? Support::Implicit : Support::Explicit;
        applyBidiState();
        break;
    case 20:
        m_modes.lineFeedMode = on;
        break;
    default:
        if (!m_silentLog)
            log({"Unhandled verbatim setMode with ", std::to_string(mode), " and ",
                 on ? "set" : "reset"});
    }
}

void Terminal::setPrivateMode(int mode, bool on)
{
    switch (mode) {
    case 1:
        m_modes.applicationCursor = on;
        break;
    case 2:
        if (on)
            m_charsets.gCharsets = {};
        break;
    case 3:
        if (m_modes.allow80To132)
            setColumnMode(on);
        break;
    case 4:
        m_modes.smoothScroll = on;
        break;
    case 5:
        setReverseColors(on);
        break;
    case 6:
        m_modes.originMode = on;
        setCursor(0, 0);
        break;
    case 7:
        setWraparound(on);
        break;
    case 12:
        m_modes.cursorBlink = on;
        break;
    case 25:
        setCursorHidden(!on);
        break;
    case 40:
        m_modes.allow80To132 = on;
        break;
    case 41:
    case 63:
    case 95:
    case 1034:
        break;
    case 45:
        m_modes.reverseWraparound = on && m_modes.wraparound;
        break;
    case 1045:
        m_modes.extendedReverseWraparound = on;
        break;
    case 66:
        m_modes.applicationKeypad = on;
        break;
    case 69:
        setMarginMode(on && m_modes.conformance >= TerminalConformance::Vt400);
        break;
    case 1004:
        m_modes.sendFocus = on;
        if (on)
            sendFocusReport();
        break;
    case 1007:
        m_modes.alternateScrollMode = on;
        break;
    case 2004:
        m_modes.bracketedPasteMode = on;
        break;
    case 2026:
        setSynchronizedOutput(on);
        break;
    default:
        if (!setMouseModes(mode, on) && !setScreenMode(mode, on) && !setBidiMode(mode, on))
            unknownPrivateMode(mode, on);
    }
}

bool Terminal::setMouseModes(int mode, bool on)
{
    const auto track = [&](MouseMode wanted) { setMouseMode(on ? wanted : MouseMode::Off); };
    const auto encode = [&](MouseProtocolEncoding wanted) {
        m_modes.mouseProtocol = on ? wanted : MouseProtocolEncoding::X10;
    };
    switch (mode) {
    case 9:
        track(MouseMode::X10);
        return true;
    case 1000:
        track(MouseMode::Vt200);
        return true;
    case 1002:
        track(MouseMode::ButtonEventTracking);
        return true;
    case 1003:
        track(MouseMode::AnyEvent);
        return true;
    case 1005:
        encode(MouseProtocolEncoding::Utf8);
        return true;
    case 1006:
        encode(MouseProtocolEncoding::Sgr);
        return true;
    case 1015:
        encode(MouseProtocolEncoding::Urxvt);
        return true;
    case 1016:
        encode(MouseProtocolEncoding::SgrPixel);
        return true;
    default:
        return false;
    }
}

/// Modes of the alternate screen and of the saved cursor.
bool Terminal::setScreenMode(int mode, bool on)
{
    switch (mode) {
    case 47:
    case 1047:
    case 1049:
        break;
    case 1048:
        if (on)
            cmdSaveCursor();
        else
            cmdRestoreCursor();
        return true;
    default:
        return false;
    }
    if (on) {
        if (mode == 1049)
            cmdSaveCursor();
        activateAltBuffer(erasedCell().attribute);
    } else {
        activateNormalBuffer(mode != 47);
        if (mode == 1049)
            cmdRestoreCursor();
    }
    noteBufferSwitch();
    return true;
}

bool Terminal::setBidiMode(int mode, bool on)
{
    switch (mode) {
    case 1243:
        m_modes.bidiArrowKeySwap = on;
        return true;
    case 2500:
        m_currentBidiState.boxMirroring = on;
        break;
    case 2501:
        m_currentBidiState.autodetectDirection = on;
        break;
    default:
        return false;
    }
    applyBidiState();
    updateFullScreen();
    return true;
}

/// 132 or 80 columns, on a screen as after a reset.
void Terminal::setColumnMode(bool wide)
{
    const auto tell = [this] {
        if (m_delegate)
            m_delegate->sizeChanged(*this);
    };
    resize(wide ? 132 : 80, m_rows);
    if (!wide)
        tell();
    resetToInitialState();
    // Or there would be no way back.
    m_modes.allow80To132 = true;
    if (wide)
        tell();
}

void Terminal::cmdSavePrivateModes(const CsiSequence& sequence)
{
    for (const int mode : sequence.parameters) {
        if (mode == 1243)
            m_savedBidiPrivateModes[mode] = m_modes.bidiArrowKeySwap;
        else if (mode == 2500)
            m_savedBidiPrivateModes[mode] = m_currentBidiState.boxMirroring;
        else if (mode == 2501)
            m_savedBidiPrivateModes[mode] = m_currentBidiState.autodetectDirection;
    }
}

void Terminal::cmdRestorePrivateModes(const CsiSequence& sequence)
{
    for (const int mode : sequence.parameters) {
        const auto saved = m_savedBidiPrivateModes.find(mode);
        if (saved != m_savedBidiPrivateModes.end())
            setBidiMode(mode, saved->second);
    }
}

/// Text to come has the current state, and so has the paragraph that begins at the cursor.
void Terminal::applyBidiState()
{
    m_normalBuffer.defaultBidiState = m_altBuffer.defaultBidiState = m_currentBidiState;
    BufferLine& line = m_buffer->cursorLine();
    if (m_buffer->x == 0 && !line.isWrapped())
        line.setBidiState(m_currentBidiState);
}

void Terminal::cmdSelectPresentationDirection(const CsiSequence& sequence)
{
    using Direction = BidiPresentationState::Direction;
    const int direction = sequence.parameters[0];
    if (direction != 0 && direction != 3)
        return;
    m_currentBidiState.fallbackDirection =
        direction == 0 ? Direction::LeftToRight : Direction::RightToLeft;
    applyBidiState();
    updateFullScreen();
}

void Terminal::cmdSelectCharacterPath(const CsiSequence& sequence)
{
    using Direction = BidiPresentationState::Direction;
    const int path = sequence.parameters[0];
    if (path > 2)
        return;
    m_currentBidiState.fallbackDirection =
        path == 0 ? m_options.initialBidiState.fallbackDirection
                  : (path == 1 ? Direction::LeftToRight : Direction::RightToLeft);
    applyBidiState();
    updateFullScreen();
}

void Terminal::cmdSetConformanceLevel(const CsiSequence& sequence)
{
    const int level = sequence.parameters[0];
    if (level < 61 || level > 65)
        return;
    m_modes.conformance = static_cast<TerminalConformance>(level - 61);
    if (m_modes.conformance < TerminalConformance::Vt400)
        setMarginMode(false);
    if (level == 61)
        m_modes.controlForm = ControlForm::SevenBit;
    else if (sequence.parameters.size() > 1)
        m_modes.controlForm =
            sequence.parameters[1] == 1 ? ControlForm::SevenBit : ControlForm::EightBit;
}

void Terminal::cmdKittyKeyboard(const CsiSequence& sequence)
{
    if (sequence.collect.size() != 1)
        return;
    const auto reply =
        handleKittyKeyboardProtocol(activeKeyboardMode(), sequence.collect[0], sequence.parameters);
    if (reply)
        sendCsi(*reply);
}

} // namespace Kovalt
