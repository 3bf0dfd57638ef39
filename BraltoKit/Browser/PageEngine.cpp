#include "Browser/PageEngine.h"

#include <algorithm>

namespace Bralto {

QSize PagePicture::fitted(QSize size)
{
    if (size.isEmpty())
        return {};
    const double scale =
        std::min({1.0, double(LargestWidth) / size.width(), double(LargestHeight) / size.height()});
    return {std::max(1, int(size.width() * scale)), std::max(1, int(size.height() * scale))};
}

} // namespace Bralto
