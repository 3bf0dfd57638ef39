#include "BraltoShared/BraltoLink.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto link = Bralto::BraltoLink::parse(QUrl(QString::fromUtf8(text)));
    // What was understood once is understood the same when another process gets it.
    if (link && Bralto::BraltoLink::parse(QUrl(QString::fromUtf8(link->url().toEncoded()))) != link)
        std::abort();
    return 0;
}
