#include "Views/Window/WindowButtons.h"

#include "Views/Kit/Tokens.h"

#include <optional>

namespace Bralto {
namespace {

std::optional<WindowButton> buttonNamed(const QString& word)
{
    if (word == QLatin1String("minimize"))
        return WindowButton::Minimize;
    if (word == QLatin1String("maximize"))
        return WindowButton::Maximize;
    if (word == QLatin1String("close"))
        return WindowButton::Close;
    return std::nullopt;
}

QList<WindowButton> onlyClose(const QList<WindowButton>& buttons)
{
    return buttons.contains(WindowButton::Close) ? QList{WindowButton::Close}
                                                 : QList<WindowButton>{};
}

} // namespace

WindowButtonLayout WindowButtonLayout::parse(const QString& text)
{
    WindowButtonLayout layout;
    layout.right.clear();
    const QStringList sides = text.split(u':');
    for (qsizetype side = 0; side < std::min<qsizetype>(sides.size(), 2); ++side) {
        const QStringList words = sides[side].split(u',');
        for (const QString& word : words) {
            const std::optional<WindowButton> button = buttonNamed(word.trimmed());
            if (!button || layout.left.contains(*button) || layout.right.contains(*button))
                continue;
            (side == 0 ? layout.left : layout.right).append(*button);
        }
    }
    return layout.left.isEmpty() && layout.right.isEmpty() ? WindowButtonLayout{} : layout;
}

WindowButtonLayout WindowButtonLayout::fitting(int width) const
{
    if (width >= Measure::NarrowWindow)
        return *this;
    return {onlyClose(left), onlyClose(right)};
}

} // namespace Bralto
