#include "Base/DefaultsStore.h"
#include "Platform/DefaultsFormat.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    using namespace Bralto;
    const QByteArray text(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto values = DefaultsFormat::decode(text);
    if (!values)
        return 0;
    const auto again = DefaultsFormat::decode(DefaultsFormat::encode(*values));
    if (!again || !DefaultsStore::isSame(*again, *values))
        std::abort();
    return 0;
}
