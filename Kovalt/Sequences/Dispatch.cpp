// Which control and which escape is whose, and what is said of those that are nobody's.

#include "Kovalt/Terminal.h"

#include <algorithm>

namespace Kovalt {

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
        m_buffer->tabSet(m_buffer->standingColumn());
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
        m_buffer->tabSet(m_buffer->standingColumn());
        break;
    case 'M':
        reverseIndex();
        break;
    case '\\':
        break;
    case 'V':
        setGuard(CharacterGuard::Area, true);
        break;
    case 'W':
        setGuard(CharacterGuard::Area, false);
        break;
    case 'Z':
        sendPrimaryAttributes();
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

} // namespace Kovalt
