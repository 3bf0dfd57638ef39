#include "Kovalt/Keyboard/KittyKeyboardEncoder.h"

#include "Kovalt/Keyboard/KeySequences.h"
#include "Kovalt/Utf8.h"

namespace Kovalt {

namespace {

using Modifiers = KittyKeyboardModifiers;
using Flags = KittyKeyboardFlags;
using KittyKeyboardEventType::Release;

constexpr auto NoTextModifiers =
    Modifiers::Alt | Modifiers::Ctrl | Modifiers::Super | Modifiers::Hyper | Modifiers::Meta;

bool isTextEditingKey(const KittyKey& key)
{
    return key.is(KittyFunctionalKey::Enter) || key.is(KittyFunctionalKey::Tab) ||
           key.is(KittyFunctionalKey::Backspace);
}

bool isModifier(const KittyKey& key)
{
    return key.kind() == KittyKey::Kind::Functional && isModifierKey(key.function());
}

bool holdsControls(std::string_view text)
{
    for (std::size_t position = 0; position < text.size();) {
        const auto code = Utf8::next(text, position);
        if (code < 32 || (code >= 127 && code <= 159))
            return true;
    }
    return false;
}

std::optional<std::string> encodeNonTextFunction(Flags flags, const KittyKeyEvent& event,
                                                 const KeyboardOptions& options,
                                                 const KeySequences::CsiContent& content)
{
    const auto key = event.key.function();
    if (flags.isEmpty())
        return KeySequences::legacyFunctional(key, event, options);

    const auto form = formOf(key);
    const auto disambiguate = flags.hasAny(Flags::Disambiguate | Flags::ReportAllKeys);
    const auto isPlain = content.modifiers.isEmpty() &&
                         !(content.eventType && event.eventType != KittyKeyboardEventType::Press);
    if (isTextEditingKey(event.key) && (!disambiguate || isPlain))
        return KeySequences::legacySpecial(key, event, options);
    if (key == KittyFunctionalKey::Escape && !disambiguate)
        return KeySequences::legacySpecial(key, event, options);
    if (form.kind == KittyKeyForm::Kind::Code)
        return KeySequences::encodeCsiU(form.number, event, content);
    if (form.kind == KittyKeyForm::Kind::Letter && !disambiguate && isPlain) {
        const auto isFunctionKey = key >= KittyFunctionalKey::F1;
        return KeySequences::legacyNavigation(form.letter, 1,
                                              isFunctionKey || options.applicationCursor);
    }
    return KeySequences::encodeCsiWithModifier(form, event.eventType, content);
}

/// A key that types nothing, or whose text is not what is sent.
std::optional<std::string> encodeNonText(Flags flags, const KittyKeyEvent& event,
                                         const KeyboardOptions& options)
{
    KeySequences::CsiContent content;
    content.modifiers =
        flags.isEmpty() ? event.modifiers.without(Modifiers::Locks) : event.modifiers;
    content.eventType = flags.hasAny(Flags::ReportEvents);
    content.alternates = flags.hasAny(Flags::ReportAlternates);

    switch (event.key.kind()) {
    case KittyKey::Kind::None:
        return KeySequences::encodeCsiU(0, event, content);
    case KittyKey::Kind::Unicode:
        if (!flags.hasAny(Flags::Disambiguate | Flags::ReportAllKeys)) {
            if (auto text = KeySequences::legacyText(event))
                return text;
        }
        return KeySequences::encodeCsiU(event.key.code(), event, content);
    case KittyKey::Kind::Functional:
        return encodeNonTextFunction(flags, event, options, content);
    }
    return std::nullopt;
}

/// Every key as an escape sequence.
std::string encodeFull(Flags flags, const KittyKeyEvent& event, bool wantsText)
{
    const KeySequences::CsiContent content{event.modifiers, flags.hasAny(Flags::ReportEvents),
                                           flags.hasAny(Flags::ReportAlternates),
                                           wantsText && !event.key.is(KittyFunctionalKey::Escape)};
    if (event.key.kind() != KittyKey::Kind::Functional)
        return KeySequences::encodeCsiU(event.key.code(), event, content);
    const auto form = formOf(event.key.function());
    return form.kind == KittyKeyForm::Kind::Code
               ? KeySequences::encodeCsiU(form.number, event, content)
               : KeySequences::encodeCsiWithModifier(form, event.eventType, content);
}

/// The event is of no interest to a program that asked for these flags.
bool isSilent(Flags flags, const KittyKeyEvent& event)
{
    const auto allKeys = flags.hasAny(Flags::ReportAllKeys);
    if (event.eventType == Release) {
        if (!flags.hasAny(Flags::ReportEvents))
            return true;
        if (!allKeys && isTextEditingKey(event.key))
            return true;
    }
    if (isModifier(event.key))
        return !allKeys;
    return event.composing;
}

} // namespace

std::optional<std::string> KittyKeyboardEncoder::encode(Flags flags, const KittyKeyEvent& event,
                                                        const KeyboardOptions& options)
{
    if (isSilent(flags, event))
        return std::nullopt;

    const auto allKeys = flags.hasAny(Flags::ReportAllKeys);
    if (event.text && !event.text->empty()) {
        const auto isEnter = event.key.is(KittyFunctionalKey::Enter);
        const auto isBackspace = event.key.is(KittyFunctionalKey::Backspace);
        // Such text comes from an input method that used the key for itself.
        if ((isEnter || isBackspace) && !holdsControls(*event.text))
            return isEnter ? event.text : std::nullopt;
        if (!allKeys) {
            const auto isFunctional = event.key.kind() == KittyKey::Kind::Functional;
            const auto isChord = flags.hasAny(Flags::Disambiguate) &&
                                 event.modifiers.hasAny(Modifiers::Alt | Modifiers::Ctrl);
            if (isFunctional || isChord)
                return encodeNonText(flags, event, options);
            return event.eventType == Release ? std::nullopt : event.text;
        }
    }
    if (!allKeys)
        return encodeNonText(flags, event, options);
    const auto wantsText = flags.hasAny(Flags::ReportText) && event.eventType != Release &&
                           !event.modifiers.hasAny(NoTextModifiers);
    return encodeFull(flags, event, wantsText);
}

} // namespace Kovalt
