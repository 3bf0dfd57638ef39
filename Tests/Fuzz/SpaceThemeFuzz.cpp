#include "Projects/SpaceTheme.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    using namespace Bralto;
    const auto theme =
        SpaceTheme::decode(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
    if (!theme)
        return 0;
    if (SpaceTheme::decode(theme->encode()) != theme)
        std::abort();
    const Rgb frame = theme->frameColor(true, 0.05);
    if (!(frame.red >= 0 && frame.red <= 1))
        std::abort();
    SpaceTheme::monogram(theme->displayName("/p/x"));
    return 0;
}
