#include "Base/PropertyList.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    using namespace Bralto;
    const QByteArray xml(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto read = PropertyList::decode(xml);
    if (!read)
        return 0;
    PropertyList::Entries entries;
    for (auto entry = read->begin(); entry != read->end(); ++entry)
        entries.append({entry.key(), entry.value()});
    if (PropertyList::decode(PropertyList::encode(entries)) != read)
        std::abort();
    return 0;
}
