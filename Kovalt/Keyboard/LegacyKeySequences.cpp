#include "Kovalt/Keyboard/KeySequences.h"
#include "Kovalt/Utf8.h"

#include <array>

namespace Kovalt {

namespace {

using Modifiers = KittyKeyboardModifiers;
using Key = KittyFunctionalKey;

constexpr auto Known = Modifiers::Shift | Modifiers::Alt | Modifiers::Ctrl | Modifiers::Locks;
constexpr int NumberedFunctionKeys = 12;

bool isScalar(char32_t code)
{
    return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

/// The control that a terminal makes of a key under ctrl.
std::optional<char> controlOfExactly(char32_t key)
{
    if (key >= 'a' && key <= 'z')
        return static_cast<char>(key - 'a' + 1);
    switch (key) {
    case ' ':
    case '@':
    case '2':
        return '\x00';
    case '[':
    case '3':
        return '\x1b';
    case '\\':
    case '4':
        return '\x1c';
    case ']':
    case '5':
        return '\x1d';
    case '^':
    case '6':
    case '~':
        return '\x1e';
    case '_':
    case '/':
    case '7':
        return '\x1f';
    case '?':
    case '8':
        return '\x7f';
    case '0':
    case '1':
    case '9':
        return static_cast<char>(key);
    default:
        return std::nullopt;
    }
}

std::optional<char> controlOf(char32_t key)
{
    return controlOfExactly(key >= 'A' && key <= 'Z' ? key - 'A' + 'a' : key);
}

/// Function key `base`, 1 to 12.
std::optional<std::string> functionSequence(int base, unsigned modifier)
{
    constexpr std::array<int, 8> Tildes = {15, 17, 18, 19, 20, 21, 23, 24};
    if (base < 1 || base > NumberedFunctionKeys)
        return std::nullopt;
    if (base > 4)
        return KeySequences::legacyTilde(Tildes[static_cast<std::size_t>(base - 5)], modifier);
    return KeySequences::legacyNavigation(static_cast<char>('P' + base - 1), modifier, true);
}

/// Function keys as they are numbered in terminal descriptions: every dozen means the same twelve
/// keys under other modifiers.
std::optional<std::string> functionCapability(int number)
{
    constexpr std::array<unsigned, 6> OfDozen = {1, 2, 5, 6, 3, 4};
    const auto dozen = static_cast<std::size_t>((number - 1) / NumberedFunctionKeys);
    if (number < 1 || dozen >= OfDozen.size())
        return std::nullopt;
    return functionSequence((number - 1) % NumberedFunctionKeys + 1, OfDozen[dozen]);
}

/// By how much the modifiers raise a function key's number; none if no number tells them.
std::optional<int> capabilityShift(Modifiers modifiers)
{
    if (modifiers.isEmpty())
        return 0;
    if (modifiers == Modifiers::Shift)
        return 12;
    if (modifiers == Modifiers::Ctrl)
        return 24;
    if (modifiers == (Modifiers::Shift | Modifiers::Ctrl))
        return 36;
    if (modifiers == Modifiers::Alt)
        return 48;
    if (modifiers == (Modifiers::Shift | Modifiers::Alt))
        return 60;
    return std::nullopt;
}

std::optional<std::string> functionKey(int number, Modifiers modifiers)
{
    const auto shift = capabilityShift(modifiers);
    if (shift && (*shift == 0 || number <= NumberedFunctionKeys))
        return functionCapability(number + *shift);
    return functionSequence(number, modifiers.bits() + 1);
}

} // namespace

std::string KeySequences::legacyTilde(int number, unsigned modifier)
{
    std::string bytes = "\x1b[" + std::to_string(number);
    if (modifier != 1)
        bytes += ";" + std::to_string(modifier);
    return bytes + '~';
}

std::string KeySequences::legacyNavigation(char letter, unsigned modifier, bool application)
{
    if (modifier == 1)
        return std::string(application ? "\x1bO" : "\x1b[") + letter;
    return "\x1b[1;" + std::to_string(modifier) + letter;
}

std::optional<std::string> KeySequences::legacyText(const KittyKeyEvent& event)
{
    const auto key = event.key.code();
    const auto shift = event.modifiers.hasAny(Modifiers::Shift);
    const auto ctrl = event.modifiers.hasAny(Modifiers::Ctrl);
    if (event.eventType == KittyKeyboardEventType::Release ||
        event.key.kind() != KittyKey::Kind::Unicode || !isScalar(key) ||
        !Known.hasAll(event.modifiers) || (shift && ctrl))
        return std::nullopt;

    std::string bytes = event.modifiers.hasAny(Modifiers::Alt) ? "\x1b" : "";
    if (ctrl) {
        if (const auto control = controlOf(key))
            return bytes + *control;
    }
    if (event.text && !event.text->empty())
        return bytes + *event.text;
    Utf8::append(bytes, shift ? event.shiftedKey.value_or(key) : key);
    return bytes;
}

std::optional<std::string> KeySequences::legacySpecial(Key key, const KittyKeyEvent& event,
                                                       const KeyboardOptions& options)
{
    if (event.eventType == KittyKeyboardEventType::Release)
        return std::nullopt;
    std::string bytes = event.modifiers.hasAny(Modifiers::Alt) ? "\x1b" : "";
    switch (key) {
    case Key::Escape:
        return bytes + '\x1b';
    case Key::Enter:
        return bytes + '\r';
    case Key::Tab:
        return bytes + (event.modifiers.hasAny(Modifiers::Shift) ? "\x1b[Z" : "\t");
    case Key::Backspace:
        return bytes + (options.backspaceSendsBackspace || event.modifiers.hasAny(Modifiers::Ctrl)
                            ? '\x08'
                            : '\x7f');
    default:
        return std::nullopt;
    }
}

std::optional<std::string> KeySequences::legacyFunctional(Key key, const KittyKeyEvent& event,
                                                          const KeyboardOptions& options)
{
    if (event.eventType == KittyKeyboardEventType::Release || !Known.hasAll(event.modifiers))
        return std::nullopt;
    const auto modifiers = event.modifiers.without(Modifiers::Locks);
    const auto modifier = modifiers.bits() + 1;

    if (key >= Key::Keypad0 && key <= Key::KeypadBegin)
        return legacyKeypad(key, event, modifiers, options);
    if (key >= Key::F1 && key <= Key::F35)
        return functionKey(static_cast<int>(key) - static_cast<int>(Key::F1) + 1, modifiers);
    if (key <= Key::Backspace)
        return legacySpecial(key, event, options);
    if (key > Key::PageDown)
        return std::nullopt;
    const auto form = formOf(key);
    return form.kind == KittyKeyForm::Kind::Tilde
               ? legacyTilde(form.number, modifier)
               : legacyNavigation(form.letter, modifier, options.applicationCursor);
}

} // namespace Kovalt
