#include "Terminals/PanelSnapshot.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using Bralto::PanelSnapshot;
    const auto snapshot = PanelSnapshot::decode(
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size)));
    // What was understood once is understood in the same way ever after.
    if (snapshot && PanelSnapshot::decode(snapshot->encode()) != snapshot)
        __builtin_trap();
    return 0;
}
