#include "Tests/Support/MemoryDefaultsStore.h"
#include "Workspace/SessionStore.h"

#include <QJsonDocument>

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace Bralto;
    const QVariant stored =
        QJsonDocument::fromJson(
            QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size)))
            .toVariant();
    if (!DefaultsStore::isStorable(stored))
        return 0;
    MemoryDefaultsStore shared;
    shared.set(SessionStore::key("/p"), stored);

    const SessionStore::Session session = SessionStore::load(shared, "/p");
    (void)SessionStore::chatSessions(session.tabs);
    SessionStore::save(shared, session, "/p");
    if (SessionStore::load(shared, "/p") != session)
        __builtin_trap();
    return 0;
}
