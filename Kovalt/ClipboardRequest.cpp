#include "Kovalt/ClipboardRequest.h"

#include "Kovalt/Ascii.h"
#include "Kovalt/Base64.h"

namespace Kovalt {

std::optional<ClipboardRequest> parseClipboardRequest(std::string_view payload)
{
    const auto separator = payload.find(';');
    if (separator == payload.npos)
        return std::nullopt;
    const auto selection = payload.substr(0, separator);
    ClipboardRequest request;
    request.selection = selection.empty() || !Ascii::isAscii(selection) ? "c" : selection;
    const auto data = payload.substr(separator + 1);
    if (data == "?")
        return request;
    request.copied = Base64::decode(data);
    if (!request.copied)
        return std::nullopt;
    return request;
}

} // namespace Kovalt
