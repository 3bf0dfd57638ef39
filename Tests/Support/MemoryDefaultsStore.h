#pragma once

#include "Base/DefaultsStore.h"

namespace Bralto {

/// A domain that is kept in memory only, with the rules of the real one.
class MemoryDefaultsStore final : public DefaultsStore {
public:
    using DefaultsStore::DefaultsStore;

    [[nodiscard]] QVariant value(const QString& key) const override { return m_values.value(key); }

    void set(const QString& key, const QVariant& value) override
    {
        Q_ASSERT(isStorable(value));
        if (isSame(m_values.value(key), value))
            return;
        m_values.insert(key, value);
        ++m_writes;
        emit changed(key);
    }

    void remove(const QString& key) override
    {
        if (m_values.remove(key) == 0)
            return;
        ++m_writes;
        emit changed(key);
    }

    [[nodiscard]] QStringList keys() const { return m_values.keys(); }
    /// How often a value was written or removed, equal values not counted.
    [[nodiscard]] int writes() const { return m_writes; }

private:
    QVariantMap m_values;
    int m_writes = 0;
};

} // namespace Bralto
