#include "KeyScript.h"

#include "WholeNumber.h"

#include <map>

namespace KovaltTool {
namespace {

using Kovalt::KittyFunctionalKey;
using Kovalt::KittyKey;
using Kovalt::KittyKeyboardModifiers;
using Kovalt::KittyKeyEvent;

constexpr int FunctionKeys = 35;

const std::map<std::string_view, KittyFunctionalKey>& names()
{
    using enum KittyFunctionalKey;
    static const std::map<std::string_view, KittyFunctionalKey> all{
        {"Enter", Enter}, {"Tab", Tab},       {"Esc", Escape}, {"BS", Backspace},
        {"Ins", Insert},  {"Del", Delete},    {"Up", Up},      {"Down", Down},
        {"Left", Left},   {"Right", Right},   {"Home", Home},  {"End", End},
        {"PgUp", PageUp}, {"PgDn", PageDown}, {"Menu", Menu},  {"Pause", Pause}};
    return all;
}

KittyKeyboardModifiers takeModifiers(std::string_view& name)
{
    KittyKeyboardModifiers modifiers;
    while (name.size() > 2 && name[1] == '-') {
        if (name[0] == 'C')
            modifiers = modifiers | KittyKeyboardModifiers::Ctrl;
        else if (name[0] == 'A')
            modifiers = modifiers | KittyKeyboardModifiers::Alt;
        else if (name[0] == 'S')
            modifiers = modifiers | KittyKeyboardModifiers::Shift;
        else
            break;
        name.remove_prefix(2);
    }
    return modifiers;
}

std::optional<KittyKey> keyOf(std::string_view name)
{
    if (const auto known = names().find(name); known != names().end())
        return KittyKey::functional(known->second);
    if (name.size() > 1 && name[0] == 'F') {
        const auto index = wholeNumber(name.substr(1));
        if (index && *index >= 1 && *index <= FunctionKeys)
            return KittyKey::functional(
                KittyFunctionalKey(int(KittyFunctionalKey::F1) + *index - 1));
    }
    if (name.size() == 1 && name[0] > ' ' && name[0] <= '~')
        return KittyKey::unicode(char32_t(name[0]));
    if (name == "Space")
        return KittyKey::unicode(U' ');
    return std::nullopt;
}

std::optional<KeyStep> stepOf(std::string_view name)
{
    if (name == "lt")
        return KeyStep(std::string("<"));
    if (name.starts_with("Wait ")) {
        const auto time = wholeNumber(name.substr(5));
        if (!time || *time < 0)
            return std::nullopt;
        return KeyStep(std::chrono::milliseconds(*time));
    }
    if (name.starts_with("Until ") && name.size() > 6)
        return KeyStep(AwaitedText{std::string(name.substr(6))});
    KittyKeyEvent event;
    event.modifiers = takeModifiers(name);
    const auto key = keyOf(name);
    if (!key)
        return std::nullopt;
    event.key = *key;
    if (event.modifiers == KittyKeyboardModifiers() && key->kind() == KittyKey::Kind::Unicode)
        event.text = std::string(1, char(key->code()));
    return KeyStep(event);
}

} // namespace

std::optional<std::vector<KeyStep>> readKeys(std::string_view text)
{
    std::vector<KeyStep> steps;
    while (!text.empty()) {
        const std::size_t open = text.find('<');
        if (open != 0)
            steps.emplace_back(std::string(text.substr(0, open)));
        if (open == std::string_view::npos)
            break;
        const std::size_t close = text.find('>', open);
        if (close == std::string_view::npos)
            return std::nullopt;
        const auto step = stepOf(text.substr(open + 1, close - open - 1));
        if (!step)
            return std::nullopt;
        steps.push_back(*step);
        text.remove_prefix(close + 1);
    }
    return steps;
}

} // namespace KovaltTool
