#include "Kovalt/Keyboard/KittyKey.h"

#include <array>

namespace Kovalt {

namespace {

using enum KittyFunctionalKey;

/// The first keys, up to F12, have a form each.
constexpr std::array EarlyForms = {
    KittyKeyForm{KittyKeyForm::Kind::Code, 'u', 27},
    KittyKeyForm{KittyKeyForm::Kind::Code, 'u', 13},
    KittyKeyForm{KittyKeyForm::Kind::Code, 'u', 9},
    KittyKeyForm{KittyKeyForm::Kind::Code, 'u', 127},
    KittyKeyForm{KittyKeyForm::Kind::Tilde, '~', 2},
    KittyKeyForm{KittyKeyForm::Kind::Tilde, '~', 3},
    KittyKeyForm{KittyKeyForm::Kind::Letter, 'A', 1},
    KittyKeyForm{KittyKeyForm::Kind::Letter, 'B', 1},
    KittyKeyForm{KittyKeyForm::Kind::Letter, 'D', 1},
    KittyKeyForm{KittyKeyForm::Kind::Letter, 'C', 1},
    KittyKeyForm{KittyKeyForm::Kind::Letter, 'H', 1},
    KittyKeyForm{KittyKeyForm::Kind::Letter, 'F', 1},
    KittyKeyForm{KittyKeyForm::Kind::Tilde, '~', 5},
    KittyKeyForm{KittyKeyForm::Kind::Tilde, '~', 6},
    KittyKeyForm{KittyKeyForm::Kind::Letter, 'P', 1},
    KittyKeyForm{KittyKeyForm::Kind::Letter, 'Q', 1},
    KittyKeyForm{KittyKeyForm::Kind::Tilde, '~', 13},
    KittyKeyForm{KittyKeyForm::Kind::Letter, 'S', 1},
    KittyKeyForm{KittyKeyForm::Kind::Tilde, '~', 15},
    KittyKeyForm{KittyKeyForm::Kind::Tilde, '~', 17},
    KittyKeyForm{KittyKeyForm::Kind::Tilde, '~', 18},
    KittyKeyForm{KittyKeyForm::Kind::Tilde, '~', 19},
    KittyKeyForm{KittyKeyForm::Kind::Tilde, '~', 20},
    KittyKeyForm{KittyKeyForm::Kind::Tilde, '~', 21},
    KittyKeyForm{KittyKeyForm::Kind::Tilde, '~', 23},
    KittyKeyForm{KittyKeyForm::Kind::Tilde, '~', 24},
};
static_assert(EarlyForms.size() == static_cast<std::size_t>(F13));

/// The rest count up from these.
struct Group {
    KittyFunctionalKey first;
    std::uint16_t number;
};
constexpr std::array Groups = {
    Group{Keypad0, 57399},
    Group{CapsLock, 57358},
    Group{Menu, 57363},
    Group{F13, 57376},
};

} // namespace

KittyKeyForm formOf(KittyFunctionalKey key)
{
    const auto index = static_cast<std::size_t>(key);
    if (index < EarlyForms.size())
        return EarlyForms[index];
    for (const auto& group : Groups) {
        if (key >= group.first) {
            const auto step = index - static_cast<std::size_t>(group.first);
            return {KittyKeyForm::Kind::Code, 'u', static_cast<std::uint16_t>(group.number + step)};
        }
    }
    return {};
}

} // namespace Kovalt
