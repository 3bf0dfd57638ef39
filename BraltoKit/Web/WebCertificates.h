#pragma once

#include <QByteArray>
#include <QUrl>
#include <QWebEngineCertificateError>

#include <set>
#include <tuple>

namespace Bralto {

/// The certificates that the user took although they are not to be trusted, each for one server,
/// as long as the program runs.
class WebCertificates {
public:
    using Entry = std::tuple<QString, int, QByteArray>; ///< Host, port, digest.

    [[nodiscard]] static Entry entryFor(const QWebEngineCertificateError& error);

    [[nodiscard]] bool isTaken(const Entry& entry) const { return m_taken.contains(entry); }
    void take(const Entry& entry) { m_taken.insert(entry); }

private:
    std::set<Entry> m_taken;
};

} // namespace Bralto
