#pragma once

#include "Browser/LocalServers.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace Bralto {

/// Servers as the kernel tells of them: who listens, and in which folder that process works.
class ProcLocalServers final : public QObject, public LocalServers {
    Q_OBJECT

public:
    /// Where to look: each folder inside `projects`, and `project` itself.
    struct Places {
        QString projects;
        QString project;
    };

    /// `places` is asked on the main thread before each search.
    explicit ProcLocalServers(std::function<Places()> places, QObject* parent = nullptr);

    void scan(std::function<void(const std::vector<LocalServer>&)> done) override;

    /// The search itself, on the calling thread. A server belongs to the first of `projects` whose
    /// folder it works in or below; each port of a project is told once.
    [[nodiscard]] static std::vector<LocalServer> search(const QStringList& projects);

private:
    std::function<Places()> m_places;
};

} // namespace Bralto
