#pragma once

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QMimeDatabase>
#include <QPointer>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace Bralto {

/// A web server on this machine for tests: a folder of files, and answers that a test makes up.
class SiteServer {
public:
    struct Request {
        QByteArray method;
        QString path;                             ///< Decoded, without the query.
        QByteArray query;                         ///< As sent.
        std::map<QByteArray, QByteArray> headers; ///< By lower-case name.
        QByteArray body;
    };
    struct Response {
        int status = 200;
        QByteArray body = {};
        QByteArray type = "text/html; charset=utf-8";
        std::vector<std::pair<QByteArray, QByteArray>> headers = {};
        enum class End {
            Close,  ///< The usual.
            Hold,   ///< Nothing is sent before `releaseHeld`.
            Open,   ///< All of it is sent, and the connection stays open: a page that never ends.
            Silent, ///< The connection is closed without a word.
        };
        End end = End::Close;
    };
    using Handler = std::function<Response(const Request&)>;

    /// Files of `folder` answer what no route does.
    explicit SiteServer(const QString& folder = {})
        : m_folder(folder)
    {
        listen(std::make_unique<QTcpServer>());
    }

    /// Speaks TLS, with a certificate that nobody trusts.
    struct Secure {};
    explicit SiteServer(Secure)
        : m_scheme(QStringLiteral("https"))
    {
        const auto read = [](const char* name) {
            QFile file(QStringLiteral(BRALTO_FIXTURES "/Web/") + QLatin1String(name));
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.setLocalCertificate(QSslCertificate(read("server.crt")));
        configuration.setPrivateKey(QSslKey(read("server.key"), QSsl::Ec));
        auto server = std::make_unique<QSslServer>();
        server->setSslConfiguration(configuration);
        listen(std::move(server));
    }

    [[nodiscard]] int port() const { return m_server->serverPort(); }
    /// `host` may be "localhost" where another origin is wanted.
    [[nodiscard]] QUrl url(const QString& path = QStringLiteral("/"),
                           const QString& host = QStringLiteral("127.0.0.1")) const
    {
        return QUrl(QStringLiteral("%1://%2:%3%4").arg(m_scheme, host).arg(port()).arg(path));
    }

    /// Refuses connections from now on.
    void close() { m_server->close(); }

    void route(const QString& path, Handler handler) { m_routes[path] = std::move(handler); }
    void page(const QString& path, const QByteArray& html)
    {
        route(path, [html](const Request&) { return Response{200, html}; });
    }
    void redirect(const QString& path, const QByteArray& to)
    {
        route(path, [to](const Request&) {
            return Response{302, {}, "text/html", {{"Location", to}}};
        });
    }
    /// Answers nothing before `releaseHeld`.
    void hold(const QString& path, const QByteArray& html = {})
    {
        route(path, [html](const Request&) {
            return Response{200, html, "text/html; charset=utf-8", {}, Response::End::Hold};
        });
    }
    /// Asks for a name and a password.
    void protect(const QString& path, const QByteArray& realm, const QByteArray& nameAndPassword,
                 const QByteArray& html)
    {
        const QByteArray wanted = "Basic " + nameAndPassword.toBase64();
        route(path, [=](const Request& request) {
            const auto found = request.headers.find("authorization");
            if (found != request.headers.end() && found->second == wanted)
                return Response{200, html};
            return Response{401,
                            "Not for you",
                            "text/html",
                            {{"WWW-Authenticate", "Basic realm=\"" + realm + '"'}}};
        });
    }
    void releaseHeld()
    {
        for (auto& [socket, response] : std::exchange(m_held, {}))
            if (socket)
                send(socket, response);
    }

    [[nodiscard]] const std::vector<Request>& requests() const { return m_requests; }
    [[nodiscard]] int count(const QString& path) const
    {
        int result = 0;
        for (const Request& each : m_requests)
            result += each.path == path ? 1 : 0;
        return result;
    }

private:
    void listen(std::unique_ptr<QTcpServer> server)
    {
        m_server = std::move(server);
        const auto take = [this] {
            while (QTcpSocket* socket = m_server->nextPendingConnection())
                serve(socket);
        };
        // One that speaks TLS has a connection once it is encrypted.
        QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(),
                         take);
        m_server->listen(QHostAddress::LocalHost);
    }

    void serve(QTcpSocket* socket)
    {
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QTcpSocket::readyRead, socket,
                         [this, socket, text = QByteArray()]() mutable {
                             text += socket->readAll();
                             if (const auto request = parsed(text)) {
                                 text.clear();
                                 m_requests.push_back(*request);
                                 answer(socket, *request);
                             }
                         });
    }

    static std::optional<Request> parsed(const QByteArray& text)
    {
        const auto headEnd = text.indexOf("\r\n\r\n");
        if (headEnd < 0)
            return std::nullopt;
        const QList<QByteArray> lines = text.left(headEnd).split('\n');
        const QList<QByteArray> first = lines.front().trimmed().split(' ');
        Request request;
        request.method = first.value(0);
        const QByteArray target = first.value(1);
        request.path = QUrl::fromPercentEncoding(target.split('?').front());
        request.query = target.mid(target.indexOf('?') + 1);
        for (const QByteArray& line : lines.mid(1)) {
            const auto colon = line.indexOf(':');
            request.headers[line.left(colon).toLower()] = line.mid(colon + 1).trimmed();
        }
        request.body = text.mid(headEnd + 4);
        if (request.body.size() < request.headers["content-length"].toInt())
            return std::nullopt;
        return request;
    }

    void answer(QTcpSocket* socket, const Request& request)
    {
        const auto found = m_routes.find(request.path);
        const Response response = found != m_routes.end() ? found->second(request) : file(request);
        switch (response.end) {
        case Response::End::Silent:
            socket->abort();
            return;
        case Response::End::Hold:
            m_held.emplace_back(socket, response);
            return;
        default:
            send(socket, response);
        }
    }

    [[nodiscard]] Response file(const Request& request) const
    {
        const QString path = QDir::cleanPath(m_folder + request.path);
        QFile file(path);
        if (m_folder.isEmpty() || !path.startsWith(m_folder) || !file.open(QIODevice::ReadOnly))
            return {404, "<!doctype html><title>Not Found</title>There is nothing here."};
        const QString type =
            QMimeDatabase().mimeTypeForFile(path, QMimeDatabase::MatchExtension).name();
        return {200, file.readAll(),
                type.toLatin1() +
                    (type.startsWith(QStringLiteral("text/")) ? "; charset=utf-8" : "")};
    }

    static void send(QTcpSocket* socket, const Response& response)
    {
        const bool staysOpen = response.end == Response::End::Open;
        QByteArray head = "HTTP/1.1 " + QByteArray::number(response.status) + " Answer\r\n";
        head += "Content-Type: " + response.type + "\r\nConnection: close\r\n";
        if (!staysOpen)
            head += "Content-Length: " + QByteArray::number(response.body.size()) + "\r\n";
        for (const auto& [name, value] : response.headers)
            head += name + ": " + value + "\r\n";
        socket->write(head + "\r\n" + response.body);
        if (!staysOpen)
            socket->disconnectFromHost();
    }

    const QString m_folder;
    const QString m_scheme = QStringLiteral("http");
    std::unique_ptr<QTcpServer> m_server;
    std::map<QString, Handler> m_routes;
    std::vector<Request> m_requests;
    std::vector<std::pair<QPointer<QTcpSocket>, Response>> m_held;
};

} // namespace Bralto
