#include "Kovalt/HyperlinkPayload.h"

#include "Kovalt/Ascii.h"

namespace Kovalt {

std::string_view HyperlinkPayload::id() const
{
    constexpr std::string_view Key = "id=";
    auto rest = parameters;
    while (!rest.empty()) {
        const auto parameter = Ascii::takeField(rest, ':');
        if (parameter.starts_with(Key))
            return parameter.substr(Key.size());
    }
    return {};
}

std::optional<HyperlinkPayload> parseHyperlinkPayload(std::string_view payload)
{
    const auto separator = payload.find(';');
    if (separator == payload.npos || separator + 1 == payload.size())
        return std::nullopt;
    return HyperlinkPayload{payload.substr(0, separator), payload.substr(separator + 1)};
}

} // namespace Kovalt
