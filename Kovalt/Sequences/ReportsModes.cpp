// Whether a mode is set (DECRQM).

#include "Kovalt/Terminal.h"

namespace Kovalt {

namespace {

/// What is answered: whether a program knows and may change a mode.
enum class ModeReply { Unknown, Set, Reset, AlwaysSet, AlwaysReset };

constexpr ModeReply switched(bool on)
{
    return on ? ModeReply::Set : ModeReply::Reset;
}

std::string modeReport(std::string_view marker, int mode, ModeReply reply)
{
    // Without a parameter the question can't be told from one for mode 0, which nobody has.
    if (mode == 0)
        return ";0$y";
    return std::string(marker) + std::to_string(mode) + ';' + std::to_string(int(reply)) + "$y";
}

ModeReply ansiMode(int mode, const TerminalModes& modes, const BidiPresentationState& bidi)
{
    switch (mode) {
    case 1:
    case 2:
    case 3:
        return ModeReply::Reset;
    case 4:
        return switched(modes.insertMode);
    case 8:
        return switched(bidi.supportMode == BidiPresentationState::SupportMode::Implicit);
    case 12:
        return ModeReply::Set;
    case 20:
        return switched(modes.lineFeedMode);
    case 5:
    case 7:
    case 10:
    case 11:
        return ModeReply::AlwaysReset;
    default:
        return mode >= 13 && mode <= 19 ? ModeReply::AlwaysReset : ModeReply::Unknown;
    }
}

/// Modes whose answer never changes.
ModeReply fixedPrivateMode(int mode)
{
    switch (mode) {
    case 2:
    case 8:
    case 18:
    case 19:
    case 95:
        return ModeReply::Set;
    case 13:
    case 14:
    case 30:
    case 41:
    case 1001:
        return ModeReply::Reset;
    case 10:
    case 42:
    case 44:
    case 46:
    case 67:
    case 80:
    case 1034:
        return ModeReply::AlwaysReset;
    default:
        return ModeReply::Unknown;
    }
}

ModeReply mouseMode(int mode, const TerminalModes& modes)
{
    switch (mode) {
    case 9:
        return switched(modes.mouseMode == MouseMode::X10);
    case 1000:
        return switched(modes.mouseMode == MouseMode::Vt200);
    case 1002:
        return switched(modes.mouseMode == MouseMode::ButtonEventTracking);
    case 1003:
        return switched(modes.mouseMode == MouseMode::AnyEvent);
    case 1005:
        return switched(modes.mouseProtocol == MouseProtocolEncoding::Utf8);
    case 1006:
        return switched(modes.mouseProtocol == MouseProtocolEncoding::Sgr);
    case 1015:
        return switched(modes.mouseProtocol == MouseProtocolEncoding::Urxvt);
    case 1016:
        return switched(modes.mouseProtocol == MouseProtocolEncoding::SgrPixel);
    default:
        return fixedPrivateMode(mode);
    }
}

ModeReply switchedMode(int mode, const TerminalModes& modes)
{
    switch (mode) {
    case 1:
        return switched(modes.applicationCursor);
    case 4:
        return switched(modes.smoothScroll);
    case 5:
        return switched(modes.reverseColors);
    case 6:
        return switched(modes.originMode);
    case 7:
        return switched(modes.wraparound);
    case 12:
        return switched(modes.cursorBlink);
    case 25:
        return switched(!modes.cursorHidden);
    case 40:
        return switched(modes.allow80To132);
    case 45:
        return switched(modes.reverseWraparound);
    case 66:
        return switched(modes.applicationKeypad);
    case 69:
        return switched(modes.marginMode);
    case 1004:
        return switched(modes.sendFocus);
    case 1007:
        return switched(modes.alternateScrollMode);
    case 1243:
        return switched(modes.bidiArrowKeySwap);
    case 2004:
        return switched(modes.bracketedPasteMode);
    default:
        return mouseMode(mode, modes);
    }
}

/// Terminals of the first two levels don't know the request.
bool canRequestModes(TerminalConformance level)
{
    return level >= TerminalConformance::Vt300;
}

} // namespace

void Terminal::cmdRequestAnsiMode(const CsiSequence& sequence)
{
    if (!canRequestModes(m_modes.conformance))
        return;
    const int mode = sequence.parameters[0];
    sendCsi(modeReport("", mode, ansiMode(mode, m_modes, m_currentBidiState)));
}

void Terminal::cmdRequestPrivateMode(const CsiSequence& sequence)
{
    constexpr int WideColumns = 132;
    if (!canRequestModes(m_modes.conformance))
        return;
    const int mode = sequence.parameters[0];
    ModeReply reply = switchedMode(mode, m_modes);
    if (mode == 3)
        reply = switched(m_cols == WideColumns);
    else if (mode == 47)
        reply = switched(isAlternateBufferActive());
    else if (mode == 2026)
        reply = switched(m_synchronizedOutputActive);
    else if (mode == 2500)
        reply = switched(m_currentBidiState.boxMirroring);
    else if (mode == 2501)
        reply = switched(m_currentBidiState.autodetectDirection);
    sendCsi(modeReport("?", mode, reply));
}

} // namespace Kovalt
