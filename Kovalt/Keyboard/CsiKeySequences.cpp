#include "Kovalt/Keyboard/KeySequences.h"
#include "Kovalt/Utf8.h"

namespace Kovalt {

namespace {

void appendNumber(std::string& bytes, char32_t number)
{
    bytes += std::to_string(static_cast<std::uint32_t>(number));
}

bool tellsEventType(KittyKeyboardEventType type, const KeySequences::CsiContent& content)
{
    return content.eventType && type != KittyKeyboardEventType::Press;
}

/// ";" modifiers ":" type, or nothing when there is nothing to tell.
std::string modifierField(KittyKeyboardEventType type, const KeySequences::CsiContent& content)
{
    const auto withType = tellsEventType(type, content);
    if (content.modifiers.isEmpty() && !withType)
        return {};
    std::string field = ";" + std::to_string(content.modifiers.bits() + 1);
    if (withType)
        field += ":" + std::to_string(static_cast<unsigned>(type) + 1);
    return field;
}

std::string alternatesField(const KittyKeyEvent& event)
{
    std::string field;
    if (event.modifiers.hasAny(KittyKeyboardModifiers::Shift) && event.shiftedKey) {
        field += ':';
        appendNumber(field, *event.shiftedKey);
    }
    if (event.baseLayoutKey) {
        field += field.empty() ? "::" : ":";
        appendNumber(field, *event.baseLayoutKey);
    }
    return field;
}

/// The code points without controls, joined by ":".
std::string textField(std::string_view text)
{
    std::string field;
    for (std::size_t position = 0; position < text.size();) {
        const auto code = Utf8::next(text, position);
        if (code < 32 || (code >= 127 && code <= 159))
            continue;
        if (!field.empty())
            field += ':';
        appendNumber(field, code);
    }
    return field;
}

} // namespace

std::string KeySequences::encodeCsiU(char32_t code, const KittyKeyEvent& event,
                                     const CsiContent& content)
{
    std::string bytes = "\x1b[";
    appendNumber(bytes, code);
    if (content.alternates)
        bytes += alternatesField(event);
    const auto modifiers = modifierField(event.eventType, content);
    bytes += modifiers;
    if (content.text && event.text) {
        if (const auto text = textField(*event.text); !text.empty())
            bytes += (modifiers.empty() ? ";;" : ";") + text;
    }
    return bytes + 'u';
}

std::string KeySequences::encodeCsiWithModifier(const KittyKeyForm& form,
                                                KittyKeyboardEventType eventType,
                                                const CsiContent& content)
{
    const auto modifiers = modifierField(eventType, content);
    std::string bytes = "\x1b[";
    if (form.kind != KittyKeyForm::Kind::Letter || !modifiers.empty())
        bytes += std::to_string(form.number);
    return bytes + modifiers + form.letter;
}

} // namespace Kovalt
