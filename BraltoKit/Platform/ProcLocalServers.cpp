#include "Platform/ProcLocalServers.h"

#include "Base/Background.h"
#include "Platform/TcpTable.h"

#include <QDir>
#include <QFile>
#include <QHash>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <filesystem>
#include <string>
#include <string_view>
#include <tuple>

namespace Bralto {

namespace {

namespace fs = std::filesystem;

using PortsByInode = QHash<quint64, int>;

PortsByInode listeningSockets()
{
    PortsByInode result;
    for (const char* table : {"/proc/net/tcp", "/proc/net/tcp6"}) {
        QFile file(QString::fromLatin1(table));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const TcpTable::Listener& listener : TcpTable::listeners(file.readAll()))
            result.insert(listener.inode, listener.port);
    }
    return result;
}

/// Where a symbolic link leads; empty if it can't be read.
std::string target(const fs::path& link)
{
    std::array<char, PATH_MAX> buffer;
    const ssize_t length = ::readlink(link.c_str(), buffer.data(), buffer.size());
    return {buffer.data(), length > 0 ? std::size_t(length) : 0};
}

std::optional<quint64> socketInode(std::string_view link)
{
    constexpr std::string_view Prefix = "socket:[";
    if (!link.starts_with(Prefix))
        return std::nullopt;
    link.remove_prefix(Prefix.size());
    quint64 inode = 0;
    const auto [end, error] = std::from_chars(link.data(), link.data() + link.size(), inode);
    return error == std::errc{} ? std::optional(inode) : std::nullopt;
}

std::vector<int> portsOf(const fs::path& process, const PortsByInode& sockets)
{
    std::vector<int> ports;
    std::error_code error;
    // A process of somebody else, or one that has just ended, has no descriptors to read.
    for (fs::directory_iterator at(process / "fd", error), end; !error && at != end;
         at.increment(error)) {
        const auto inode = socketInode(target(at->path()));
        if (inode && sockets.contains(*inode))
            ports.push_back(sockets.value(*inode));
    }
    return ports;
}

QString projectOf(const QString& folder, const QStringList& projects)
{
    const auto found = std::ranges::find_if(projects, [&](const QString& project) {
        return folder == project || folder.startsWith(project + u'/');
    });
    return found == projects.end() ? QString() : *found;
}

QStringList foldersOf(const ProcLocalServers::Places& places)
{
    QStringList result;
    const QDir root(places.projects);
    for (const QString& name : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        result.append(root.absoluteFilePath(name));
    if (!places.project.isEmpty() && !result.contains(places.project))
        result.append(places.project);
    return result;
}

} // namespace

ProcLocalServers::ProcLocalServers(std::function<Places()> places, QObject* parent)
    : QObject(parent)
    , m_places(std::move(places))
{
}

std::vector<LocalServer> ProcLocalServers::search(const QStringList& projects)
{
    std::vector<LocalServer> result;
    const PortsByInode sockets = listeningSockets();
    if (sockets.isEmpty() || projects.isEmpty())
        return result;
    std::error_code error;
    for (fs::directory_iterator at("/proc", error), end; !error && at != end; at.increment(error)) {
        const std::string name = at->path().filename().string();
        if (name.find_first_not_of("0123456789") != std::string::npos)
            continue;
        const std::vector<int> ports = portsOf(at->path(), sockets);
        if (ports.empty())
            continue;
        const QString folder = QFile::decodeName(target(at->path() / "cwd").c_str());
        const QString project = projectOf(folder, projects);
        if (project.isEmpty())
            continue;
        for (const int port : ports) {
            const LocalServer server{port, project};
            if (std::ranges::find(result, server) == result.end())
                result.push_back(server);
        }
    }
    std::ranges::sort(result, {}, [](const LocalServer& server) {
        return std::tie(server.port, server.project);
    });
    return result;
}

void ProcLocalServers::scan(std::function<void(const std::vector<LocalServer>&)> done)
{
    inBackground(
        this, [places = m_places()] { return search(foldersOf(places)); },
        [done = std::move(done)](const std::vector<LocalServer>& found) { done(found); });
}

} // namespace Bralto
