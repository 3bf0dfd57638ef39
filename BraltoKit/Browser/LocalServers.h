#pragma once

#include <QString>

#include <functional>
#include <vector>

namespace Bralto {

/// A server of a project that listens on this machine.
struct LocalServer {
    int port = 0;
    QString project; ///< The folder's path.

    bool operator==(const LocalServer&) const = default;
};

/// Finds the servers of all projects. Main thread; the search itself runs off it.
class LocalServers {
public:
    virtual ~LocalServers() = default;

    /// `done` is called once, in a later turn, sorted by port.
    virtual void scan(std::function<void(const std::vector<LocalServer>&)> done) = 0;
};

} // namespace Bralto
