// Which sequence is whose. Everything that the parser cuts comes through here.

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

} // namespace

std::string Terminal::describe(std::span<const std::int32_t> parameters)
{
    std::string text = "[";
    for (const std::int32_t parameter : parameters) {
        if (text.size() > 1)
            text += ", ";
        text += std::to_string(parameter);
    }
    return text += ']';
}

std::string Terminal::describe(std::span<const std::uint8_t> bytes)
{
    std::string text;
    for (const std::uint8_t byte : bytes.first(std::min<std::size_t>(bytes.size(), 256)))
        text += byte >= 0x20 && byte < 0x7F ? char(byte) : '?';
    return text;
}

void Terminal::execute(std::uint8_t code)
{
    switch (code) {
    case 0x07:
        if (m_delegate)
            m_delegate->bell(*this);
        break;
    case 0x08:
        cmdBackspace();
        break;
    case 0x09:
        cmdTab();
        break;
    case 0x0A:
    case 0x0B:
    case 0x0C:
        cmdLineFeedBasic();
        break;
    case 0x0D:
        cmdCarriageReturn();
        break;
    case 0x0E:
        setgLevel(1);
        break;
    case 0x0F:
        setgLevel(0);
        break;
    case 0x84:
        cmdIndex();
        break;
    case 0x85:
        cmdNextLine();
        break;
    case 0x88:
        m_buffer->tabSet(m_buffer->x);
        break;
    default:
        log({"Kovalt: Unknown EXECUTE code"});
    }
}

void Terminal::esc(std::span<const std::uint8_t> collect, std::uint8_t code)
{
    if (collect.empty()) {
        dispatchPlainEsc(code);
        return;
    }
    if (collect.size() == 1) {
        const bool isCharset = CharSets::forDesignator(code).has_value();
        switch (collect[0]) {
        case '#':
            if (setLineLooks(code))
                return;
            break;
        case '%':
            if (code == '@' || code == 'G') {
                setgLevel(0);
                setgCharset(0, CharSetId::Ascii);
                return;
            }
            break;
        case '(':
        case ')':
        case '*':
        case '+':
        case '-':
        case '.':
        case '/':
            if (isCharset) {
                selectCharset(collect[0], code);
                return;
            }
            break;
        case ' ':
            if (code == 'F' || code == 'G') {
                m_modes.controlForm = code == 'F' ? ControlForm::SevenBit : ControlForm::EightBit;
                return;
            }
            break;
        default:
            break;
        }
    }
    unknownEsc(collect, code);
}

void Terminal::unknownEsc(std::span<const std::uint8_t> collect, std::uint8_t code) const
{
    if (!m_silentLog)
        log({"Kovalt: Unknown ESC Code: ESC + ", describe(std::span(&code, 1)),
             " txt=", describe(collect)});
}

void Terminal::dispatchPlainEsc(std::uint8_t code)
{
    switch (code) {
    case '6':
        columnIndex(true);
        break;
    case '7':
        cmdSaveCursor();
        break;
    case '8':
        cmdRestoreCursor();
        break;
    case '9':
        columnIndex(false);
        break;
    case '=':
        m_modes.applicationKeypad = true;
        break;
    case '>':
        m_modes.applicationKeypad = false;
        break;
    case 'D':
        cmdIndex();
        break;
    case 'E':
        cmdNextLine();
        break;
    case 'H':
        m_buffer->tabSet(m_buffer->x);
        break;
    case 'M':
        reverseIndex();
        break;
    case '\\':
        break;
    case 'c':
        m_parser.reset();
        resetToInitialState();
        break;
    case 'n':
    case '}':
        setgLevel(2);
        break;
    case 'o':
    case '|':
        setgLevel(3);
        break;
    case '~':
        setgLevel(1);
        break;
    default:
        unknownEsc({}, code);
    }
}

/// Double width and height, and the test pattern. False for any other code.
bool Terminal::setLineLooks(std::uint8_t code)
{
    switch (code) {
    case '3':
        m_buffer->cursorLine().setRenderMode(RenderLineMode::DoubledTop);
        break;
    case '4':
        m_buffer->cursorLine().setRenderMode(RenderLineMode::DoubledDown);
        break;
    case '5':
        m_buffer->cursorLine().setRenderMode(RenderLineMode::Single);
        break;
    case '6':
        m_buffer->cursorLine().setRenderMode(RenderLineMode::DoubleWidth);
        break;
    case '8':
        cmdScreenAlignmentPattern();
        break;
    default:
        return false;
    }
    updateRange(m_buffer->y);
    return true;
}

void Terminal::apc(std::uint8_t command, std::span<const std::uint8_t>)
{
    // Pictures are taken whole and ignored.
    if (command != 'G' && !m_silentLog)
        log({"Kovalt: Unknown APC code: ", describe(std::span(&command, 1))});
}

void Terminal::osc(std::int64_t code, std::span<const std::uint8_t> data)
{
    dispatchOsc(code, data);
}

DcsHandler* Terminal::dcsHandler(std::span<const std::uint8_t> collect, std::uint8_t code)
{
    return requestHandler(collect, code);
}

void Terminal::error(ParsingState& state)
{
    if (!m_silentLog)
        log({"Kovalt: Parsing error, state: ", std::to_string(static_cast<int>(state.currentState)),
             " code=", std::to_string(state.code)});
}

void Terminal::unknownCsi(const CsiSequence& sequence) const
{
    if (m_silentLog)
        return;
    const std::string code = describe(std::span(&sequence.code, 1));
    const std::string collect = describe(sequence.collect);
    const std::string parameters = describe(sequence.parameters);
    switch (sequence.code) {
    case 'T':
        log({"Unhandled csiT ", collect});
        break;
    case 'p':
        log({"Unhandled CSI ", collect, " with pars=", parameters});
        break;
    case 'x':
        log({"Not implemented CSI x with collect: collect=", collect, " and pars=", parameters});
        break;
    default:
        log({"Kovalt: Unknown CSI Code (collect=", collect, " code=", code, " pars=", parameters,
             ")"});
    }
}

/// The sequences that programs send all the time; others go on to `dispatchRareCsi`.
void Terminal::csi(const CsiSequence& sequence)
{
    const int first = sequence.parameters[0];
    const int count = countOf(sequence);
    switch (sequence.code) {
    case '@':
        cmdInsertCells(count);
        break;
    case 'A':
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
        m_buffer->x = count - 1 + (m_modes.originMode ? leftMargin() : 0);
        restrictCursor();
        break;
    case 'H':
    case 'f':
        setCursor(secondOf(sequence) - 1, count - 1);
        break;
    case 'J':
        cmdEraseInDisplay(first);
        break;
    case 'K':
        cmdEraseInLine(first);
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
        m_buffer->x = count - 1;
        restrictCursor();
        break;
    case 'a':
        m_buffer->x = std::min(m_buffer->x, m_cols - 1) + count;
        restrictCursor();
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
    default:
        return dispatchAreas(sequence, marks);
    }
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
        columnScroll(sequence.code == '}', m_buffer->x, countOf(sequence));
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
