#pragma once

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QWebEnginePage>

#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace Bralto {

/// The engine's developer protocol with one page, spoken through a developer page in this process,
/// so that no port is open. It costs more than 100 MB while it lives. What it hooks into is the
/// engine's own affair and may change: whoever uses it needs another way as well.
class DevToolsLink final : public QObject {
    Q_OBJECT

public:
    /// The result of a command; absent if it failed.
    using Reply = std::function<void(const std::optional<QJsonObject>&)>;

    explicit DevToolsLink(QWebEnginePage& inspected);
    ~DevToolsLink() override;

    /// A reply comes in a later turn, or never: set a time-out.
    void send(const QString& method, const QJsonObject& parameters, Reply reply);

private:
    class Page;
    void hook();
    void post(const QString& message);
    void read(const QString& reply);

    QPointer<Page> m_page; ///< Goes with the inspected page at the latest.
    bool m_isHooked = false;
    int m_lastId;
    std::vector<QString> m_waiting; ///< Until the developer page has loaded.
    std::map<int, Reply> m_replies;
};

} // namespace Bralto
