#include "Kovalt/BuildInfo.h"

#include <cstddef>

namespace Kovalt {

namespace {

/// Nothing that goes into a report may hold a control.
std::string printable(std::string_view text)
{
    std::string result;
    for (const char c : text)
        if (c >= 0x20 && c <= 0x7E)
            result += c;
    return result;
}

} // namespace

std::string xtVersionIdentity(std::string_view tag, std::string_view branch,
                              std::string_view commit)
{
    constexpr std::size_t Longest = 256;
    std::string identity = "Kovalt";
    const auto append = [&identity](char before, std::string_view part) {
        if (!part.empty())
            (identity += before) += part;
    };
    const auto cleanTag = printable(tag);
    append(' ', std::string_view(cleanTag).substr(cleanTag.starts_with('v') ? 1 : 0));
    append('-', printable(branch));
    if (commit != "unknown")
        append('+', printable(commit));
    identity += ':';
    if (identity.size() > Longest) {
        identity.resize(Longest - 1);
        identity += ':';
    }
    return identity;
}

} // namespace Kovalt
