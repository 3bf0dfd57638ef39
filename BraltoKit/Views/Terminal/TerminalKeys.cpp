#include "Views/Terminal/TerminalKeys.h"

#include <QKeyEvent>

#include <algorithm>

namespace Bralto {

namespace {

using Kovalt::KittyFunctionalKey;
using Kovalt::KittyKey;
using Kovalt::KittyKeyboardEventType;
using Kovalt::KittyKeyboardFlags;
using Kovalt::KittyKeyboardModifiers;

constexpr auto ChordModifiers = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

bool isControl(char32_t code)
{
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

bool isLetter(char32_t code)
{
    return QChar::isLetter(code);
}

bool isAscii(char32_t code)
{
    return code != 0 && code < 0x80;
}

/// The text's only character, 0 if it has none or several.
char32_t single(const QString& text)
{
    const auto codes = text.toUcs4();
    return codes.size() == 1 && !isControl(codes[0]) ? char32_t(codes[0]) : 0;
}

bool isText(const QString& text)
{
    const auto codes = text.toUcs4();
    return !codes.isEmpty() && std::ranges::none_of(codes, [](char32_t c) { return isControl(c); });
}

KittyKeyboardModifiers modifiersOf(const TerminalKeyPress& press)
{
    KittyKeyboardModifiers held;
    const auto add = [&held](bool isHeld, KittyKeyboardModifiers modifier) {
        if (isHeld)
            held = held | modifier;
    };
    // The toolkit says "Shift+Tab" by the key alone as well.
    add(press.modifiers.testFlag(Qt::ShiftModifier) || press.key == Qt::Key_Backtab,
        KittyKeyboardModifiers::Shift);
    add(press.modifiers.testFlag(Qt::AltModifier), KittyKeyboardModifiers::Alt);
    add(press.modifiers.testFlag(Qt::ControlModifier), KittyKeyboardModifiers::Ctrl);
    add(press.modifiers.testFlag(Qt::MetaModifier), KittyKeyboardModifiers::Super);
    add(press.locks.caps, KittyKeyboardModifiers::CapsLock);
    add(press.locks.num, KittyKeyboardModifiers::NumLock);
    return held;
}

/// The characters of the key, as far as they can be told without a layout.
KeyboardLayout::Symbols symbolsOf(const TerminalKeyPress& press)
{
    KeyboardLayout::Symbols symbols = press.symbols;
    if (symbols.typed == 0)
        symbols.typed = single(press.text);
    if (symbols.plain == 0 && press.key >= 0x20 && press.key < Qt::Key_Escape)
        symbols.plain = QChar::toLower(char32_t(press.key));
    if (symbols.plain == 0)
        symbols.plain = QChar::toLower(symbols.typed);
    const bool isShifted = press.modifiers.testFlag(Qt::ShiftModifier);
    if (symbols.shifted == 0 && isShifted) {
        symbols.shifted = symbols.typed != 0 ? symbols.typed : QChar::toUpper(symbols.plain);
        if (symbols.shifted == symbols.plain)
            symbols.shifted = 0;
    }
    return symbols;
}

/// Whether the character comes from a level beyond those of shift.
bool isOfThirdLevel(const KeyboardLayout::Symbols& symbols)
{
    const char32_t typed = QChar::toLower(symbols.typed);
    return symbols.typed != 0 && typed != QChar::toLower(symbols.plain) &&
           typed != QChar::toLower(symbols.shifted);
}

/// Whether control makes a control character of it other than of a letter.
bool isControlSign(char32_t code)
{
    return code == U'@' || (code >= U'[' && code <= U'_') || code == U'?' || code == U'~' ||
           code == U'/' || (code >= U'0' && code <= U'9');
}

/// What programs that know only control characters mean by a chord.
void simplify(Kovalt::KittyKeyEvent& event, const KeyboardLayout::Symbols& symbols)
{
    const bool isControlled = event.modifiers.hasAny(KittyKeyboardModifiers::Ctrl);
    const bool isShifted = event.modifiers.hasAny(KittyKeyboardModifiers::Shift);
    char32_t code = event.key.code();
    if (isOfThirdLevel(symbols) && isAscii(symbols.typed)) {
        code = symbols.typed;
        event.modifiers = event.modifiers.without(KittyKeyboardModifiers::Shift);
    } else if (isControlled && isShifted && !isLetter(code) && isControlSign(symbols.shifted)) {
        code = symbols.shifted;
        event.modifiers = event.modifiers.without(KittyKeyboardModifiers::Shift);
    } else if (isControlled && !isAscii(code) && isAscii(symbols.base)) {
        code = symbols.base;
    }
    event.key = KittyKey::unicode(code);
}

Kovalt::KittyKeyEvent characterEvent(const TerminalKeyPress& press, KittyKeyboardFlags flags)
{
    const KeyboardLayout::Symbols symbols = symbolsOf(press);
    Kovalt::KittyKeyEvent event;
    event.modifiers = modifiersOf(press);
    if (symbols.plain != 0 && !isControl(symbols.plain))
        event.key = KittyKey::unicode(symbols.plain);
    if (event.key.kind() == KittyKey::Kind::None)
        return event;
    if (symbols.shifted != 0 && symbols.shifted != symbols.plain)
        event.shiftedKey = symbols.shifted;
    if (symbols.base != 0 && symbols.base != symbols.plain)
        event.baseLayoutKey = symbols.base;
    const auto told = KittyKeyboardFlags::Disambiguate | KittyKeyboardFlags::ReportAllKeys;
    if (press.modifiers & ChordModifiers && !flags.hasAny(told))
        simplify(event, symbols);
    return event;
}

} // namespace

TerminalKeyPress TerminalKeyPress::from(const QKeyEvent& event, const KeyboardLayout* layout,
                                        bool composing)
{
    TerminalKeyPress press;
    press.key = event.key();
    press.scanCode = event.nativeScanCode();
    press.symbol = event.nativeVirtualKey();
    press.modifiers = event.modifiers();
    press.text = event.text();
    press.composing = composing;
    if (event.type() == QEvent::KeyRelease)
        press.type = KittyKeyboardEventType::Release;
    else if (event.isAutoRepeat())
        press.type = KittyKeyboardEventType::RepeatPress;
    if (layout) {
        press.symbols = layout->symbols(press.scanCode, press.symbol);
        press.locks = layout->locks();
    }
    return press;
}

std::optional<Kovalt::KittyKeyEvent> TerminalKeys::event(const TerminalKeyPress& press,
                                                         KittyKeyboardFlags flags)
{
    Kovalt::KittyKeyEvent event;
    const auto functional = function(press);
    if (functional) {
        event.key = KittyKey::functional(*functional);
        event.modifiers = modifiersOf(press);
    } else {
        event = characterEvent(press, flags);
    }
    event.eventType = press.type;
    event.composing = press.composing;

    const bool isKeypad = functional && *functional >= KittyFunctionalKey::Keypad0 &&
                          *functional <= KittyFunctionalKey::KeypadSeparator &&
                          *functional != KittyFunctionalKey::KeypadEnter;
    // On the keypad Alt is told beside the text.
    const auto chord = isKeypad ? Qt::ControlModifier | Qt::MetaModifier : ChordModifiers;
    const bool canType = (!functional || isKeypad) && !(press.modifiers & chord) &&
                         press.type != KittyKeyboardEventType::Release;
    if (canType && isText(press.text))
        event.text = press.text.toStdString();
    if (event.key.kind() == KittyKey::Kind::None && !event.text)
        return std::nullopt;
    return event;
}

} // namespace Bralto
