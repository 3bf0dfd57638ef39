// Which control sequence is whose.

#include "Kovalt/Terminal.h"

#include <algorithm>

namespace Kovalt {

namespace {

/// A count or a position: left out and 0 mean 1.
int countOf(const CsiSequence& sequence)
{
    return std::max(1, int(sequence.parameters[0]));
}

/// The second parameter, where left out and 0 mean 1.
int secondOf(const CsiSequence& sequence)
{
    return sequence.parameters.size() > 1 ? std::max(1, int(sequence.parameters[1])) : 1;
}

/// Up to two collected bytes as one number, so that a switch can ask for them; 0 without any.
constexpr unsigned key(char first, char second = 0)
{
    return static_cast<unsigned char>(first) | unsigned(static_cast<unsigned char>(second)) << 8;
}

unsigned keyOf(std::span<const std::uint8_t> collect)
{
    if (collect.empty())
        return 0;
    if (collect.size() > 2)
        return ~0U;
    return key(char(collect[0]), collect.size() > 1 ? char(collect[1]) : '\0');
}

/// An erasure with a question mark is a selective one.
std::uint8_t guardOf(const CsiSequence& sequence)
{
    return sequence.collect.empty() ? CharacterGuard::Area : CharacterGuard::Selective;
}

bool isSpaced(const CsiSequence& sequence)
{
    return keyOf(sequence.collect) == key(' ');
}

} // namespace

/// The sequences that programs send all the time; others go on to `dispatchRareCsi`.
void Terminal::csi(const CsiSequence& sequence)
{
    const int first = sequence.parameters[0];
    const int count = countOf(sequence);
    switch (sequence.code) {
    case '@':
        if (isSpaced(sequence))
            shiftColumns(false, leftMargin(), count);
        else
            cmdInsertCells(count);
        break;
    case 'A':
        if (isSpaced(sequence))
            shiftColumns(true, leftMargin(), count);
        else
            cursorUp(count);
        break;
    case 'B':
        cursorDown(count);
        break;
    case 'C':
        cursorForward(count);
        break;
    case 'D':
        cursorBackward(count);
        break;
    case 'E':
        cursorDown(count);
        m_buffer->x = leftMargin();
        break;
    case 'F':
        cursorUp(count);
        m_buffer->x = leftMargin();
        break;
    case 'G':
        moveToColumn(count - 1 + (m_modes.originMode ? leftMargin() : 0));
        break;
    case 'H':
    case 'f':
        setCursor(secondOf(sequence) - 1, count - 1);
        break;
    case 'J':
        cmdEraseInDisplay(first, guardOf(sequence));
        break;
    case 'K':
        cmdEraseInLine(first, guardOf(sequence));
        break;
    case 'L':
        cmdInsertLines(count);
        break;
    case 'M':
        cmdDeleteLines(count);
        break;
    case 'P':
        cmdDeleteCells(count);
        break;
    case 'X':
        cmdEraseCells(count);
        break;
    case 'd':
        moveToRow(count - 1);
        break;
    case 'h':
        cmdSetMode(sequence, true);
        break;
    case 'l':
        cmdSetMode(sequence, false);
        break;
    case 'm':
        if (sequence.collect.empty())
            cmdSelectGraphicRendition(sequence);
        break;
    default:
        dispatchRareCsi(sequence);
    }
}

void Terminal::dispatchRareCsi(const CsiSequence& sequence)
{
    const int count = countOf(sequence);
    switch (sequence.code) {
    case 'I':
        cmdTabForward(count);
        break;
    case 'Z':
        cmdTabBackward(count);
        break;
    case '`':
        moveToColumn(count - 1);
        break;
    case 'a':
        moveToColumn(m_buffer->standingColumn() + count);
        break;
    case 'b':
        cmdRepeatPrecedingCharacter(sequence);
        break;
    case 'c':
        cmdSendDeviceAttributes(sequence);
        break;
    case 'e':
        moveToRow(m_buffer->y + count);
        break;
    case 'g':
        cmdTabClear(sequence.parameters[0]);
        break;
    case 'n':
        cmdDeviceStatus(sequence);
        break;
    case 'y':
        cmdRectangleChecksum(sequence);
        break;
    default:
        if (!dispatchMarkedCsi(sequence))
            unknownCsi(sequence);
    }
}

/// Finals whose meaning depends on the collected bytes. False if there is none.
bool Terminal::dispatchMarkedCsi(const CsiSequence& sequence)
{
    const unsigned marks = keyOf(sequence.collect);
    switch (sequence.code) {
    case 'S':
        if (marks == 0)
            cmdScrollUp(countOf(sequence));
        else if (marks == key(' '))
            cmdSelectPresentationDirection(sequence);
        else
            return false;
        return true;
    case 'T':
        if (marks == 0)
            cmdScrollDown(countOf(sequence));
        else if (marks == key('>'))
            cmdSetTitleModes(sequence, false);
        else
            return false;
        return true;
    case 'k':
        if (marks == key(' '))
            cmdSelectCharacterPath(sequence);
        return marks == key(' ');
    case 'p':
        return dispatchRequests(sequence, marks);
    case 'q':
        if (marks == key('>'))
            cmdTerminalVersion(sequence);
        else if (marks == key(' '))
            cmdSetCursorStyle(sequence.parameters[0]);
        else if (marks == key('"'))
            cmdProtectCharacters(sequence.parameters[0]);
        else
            return false;
        return true;
    case 'r':
        if (marks == key('?'))
            cmdRestorePrivateModes(sequence);
        else if (marks == 0)
            cmdSetScrollRegion(sequence);
        else
            return false;
        return true;
    case 's':
        return dispatchSaves(sequence, marks);
    case 't':
        if (marks == 0)
            cmdWindowOptions(sequence);
        else if (marks == key('>'))
            cmdSetTitleModes(sequence, true);
        else
            return false;
        return true;
    case 'u':
        if (marks == 0)
            cmdRestoreCursor();
        else
            cmdKittyKeyboard(sequence);
        return true;
    case '|':
        return dispatchPage(sequence, marks);
    default:
        return dispatchAreas(sequence, marks);
    }
}

/// The size of the page, a whole screen.
bool Terminal::dispatchPage(const CsiSequence& sequence, unsigned marks)
{
    constexpr int UsualColumns = 80;
    const int wanted = sequence.parameters[0];
    if (marks == key('$'))
        requestSize(wanted == 0 ? UsualColumns : wanted, m_rows);
    else if (marks == key('*') && wanted > 0)
        requestSize(m_cols, wanted);
    return marks == key('$') || marks == key('*');
}

bool Terminal::dispatchRequests(const CsiSequence& sequence, unsigned marks)
{
    switch (marks) {
    case key('!'):
        softReset();
        return true;
    case key('"'):
        cmdSetConformanceLevel(sequence);
        return true;
    case key('?', '$'):
        cmdRequestPrivateMode(sequence);
        return true;
    case key('$'):
        cmdRequestAnsiMode(sequence);
        return true;
    default:
        return false;
    }
}

bool Terminal::dispatchSaves(const CsiSequence& sequence, unsigned marks)
{
    switch (marks) {
    case key('>'):
        if (sequence.parameters[0] <= 1)
            m_modes.mouseShiftCapture = sequence.parameters[0] == 1;
        return true;
    case key('?'):
        cmdSavePrivateModes(sequence);
        return true;
    case 0:
        if (m_modes.marginMode)
            cmdSetMargins(sequence);
        else
            cmdSaveCursor();
        return true;
    default:
        return false;
    }
}

/// Rectangles and columns.
bool Terminal::dispatchAreas(const CsiSequence& sequence, unsigned marks)
{
    if (marks == key('$')) {
        switch (sequence.code) {
        case 'v':
            csiCopyRectangularArea(sequence);
            return true;
        case 'x':
            cmdFillRectangle(sequence);
            return true;
        case 'z':
            cmdEraseRectangle(sequence);
            return true;
        case '{':
            cmdSelectiveEraseRectangularArea(sequence);
            return true;
        default:
            return false;
        }
    }
    if (marks == key('\'') && (sequence.code == '}' || sequence.code == '~')) {
        columnScroll(sequence.code == '}', m_buffer->standingColumn(), countOf(sequence));
        return true;
    }
    return tellUnimplemented(sequence, marks);
}

/// Known sequences that do nothing here.
bool Terminal::tellUnimplemented(const CsiSequence& sequence, unsigned marks) const
{
    const bool isAttributeStack =
        marks == key('#') && (sequence.code == '{' || sequence.code == '}');
    const bool isLocator = marks == key('\'') && sequence.code == 'z';
    if (!isAttributeStack && !isLocator)
        return false;
    if (isLocator)
        log({"TODO: Enable Locator Reporting (DECELR)"});
    else if (!m_silentLog)
        log({sequence.code == '{' ? "CSI # { not implemented - XTPUSHSGR with "
                                  : "CSI # } not implemented- XTPOPSGR with ",
             describe(sequence.parameters)});
    return true;
}

} // namespace Kovalt
