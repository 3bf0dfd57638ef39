// Whatever an agent or a window writes: an answer is one line of JSON, and nothing else happens.
// Seeds: Tests/Fixtures/Mcp.

#include "Base/Json.h"
#include "Browser/BraltoMCP.h"

#include <cstdlib>

using namespace Bralto;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    // The first byte tells where the agent's line ends and the window's begins.
    if (size == 0)
        return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::size_t cut = bytes.size() * data[0] / 255;
    const std::string_view line = bytes.substr(0, cut);
    const std::string_view window = bytes.substr(cut);
    if (line.find('\n') != std::string_view::npos)
        return 0;

    const BraltoMCP::Server server{
        "0",
        [window](const QString&, std::string_view arguments) -> Expected<QByteArray, ControlError> {
            JsonReader reader;
            const auto value = reader.value(arguments);
            if (!value || !value->object() || arguments.find('\n') != std::string_view::npos)
                std::abort();
            return QByteArray(window.data(), qsizetype(window.size()));
        }};
    if (const auto answer = BraltoMCP::handle(line, server)) {
        JsonReader reader;
        if (answer->contains('\n') ||
            !reader.value({answer->constData(), std::size_t(answer->size())}))
            std::abort();
    }
    return 0;
}
