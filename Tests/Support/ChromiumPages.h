#pragma once

#include "Browser/PageEngine.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>

#include <unistd.h>

namespace Bralto {

/// The system's Chromium behind its driver: one window for all the tests of a program.
class ChromiumDriver {
public:
    static ChromiumDriver& shared()
    {
        if (!m_shared)
            m_shared = std::make_unique<ChromiumDriver>();
        return *m_shared;
    }
    static void end() { m_shared.reset(); }

    ChromiumDriver()
    {
        m_driver.setProcessChannelMode(QProcess::MergedChannels);
        m_driver.start(QStringLiteral("chromedriver"), {QStringLiteral("--port=0")});
        QByteArray said;
        const QRegularExpression started(QStringLiteral("started successfully on port (\\d+)"));
        while (!m_port && m_driver.waitForReadyRead(20000)) {
            said += m_driver.readAll();
            m_port = started.match(QString::fromUtf8(said)).captured(1).toInt();
        }
        QJsonArray switches{"--headless=new", "--disable-gpu",
                            "--user-data-dir=" + m_profile.path(), "--no-first-run"};
        if (geteuid() == 0)
            switches.append("--no-sandbox");
        const QJsonObject wanted{
            {"browserName", "chrome"},
            {"pageLoadStrategy", "none"},
            {"unhandledPromptBehavior", "ignore"},
            {"goog:chromeOptions", QJsonObject{{"args", switches}}},
        };
        const QJsonObject session =
            await("POST", "/session", {{"capabilities", QJsonObject{{"alwaysMatch", wanted}}}});
        m_session = "/session/" + session["sessionId"].toString().toLatin1();
        fitWindow();
    }
    ~ChromiumDriver()
    {
        await("DELETE", m_session);
        m_driver.terminate();
        m_driver.waitForFinished(5000);
    }
    ChromiumDriver(const ChromiumDriver&) = delete;
    ChromiumDriver& operator=(const ChromiumDriver&) = delete;

    /// `done` gets the answer's `value`.
    void send(const QByteArray& method, const QByteArray& path, const QJsonObject& body,
              QObject* context, std::function<void(const QJsonValue&)> done)
    {
        QNetworkReply* reply = request(method, m_session + path, body);
        QObject::connect(reply, &QNetworkReply::finished, context,
                         [reply, done = std::move(done)] { done(value(reply)); });
    }
    /// The `value` of the answer, waited for. A path of its own begins with "/session".
    QJsonObject await(const QByteArray& method, const QByteArray& path,
                      const QJsonObject& body = {})
    {
        QNetworkReply* reply = request(method, path, body);
        QEventLoop loop;
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        return value(reply).toObject();
    }
    [[nodiscard]] const QByteArray& session() const { return m_session; }

private:
    QNetworkReply* request(const QByteArray& method, const QByteArray& path,
                           const QJsonObject& body)
    {
        QNetworkRequest request(QUrl(
            QStringLiteral("http://127.0.0.1:%1%2").arg(m_port).arg(QString::fromLatin1(path))));
        request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
        const QByteArray text =
            method == "POST" ? QJsonDocument(body).toJson(QJsonDocument::Compact) : QByteArray();
        QNetworkReply* reply = m_network.sendCustomRequest(request, method, text);
        QObject::connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
        return reply;
    }
    static QJsonValue value(QNetworkReply* reply)
    {
        return QJsonDocument::fromJson(reply->readAll()).object()["value"];
    }
    /// Makes the page, not the window, 1280 by 800.
    void fitWindow()
    {
        const QJsonObject metrics{
            {"width", 1280}, {"height", 800}, {"deviceScaleFactor", 1}, {"mobile", false}};
        await("POST", m_session + "/goog/cdp/execute",
              {{"cmd", "Emulation.setDeviceMetricsOverride"}, {"params", metrics}});
    }

    static inline std::unique_ptr<ChromiumDriver> m_shared;

    QTemporaryDir m_profile;
    QProcess m_driver;
    QNetworkAccessManager m_network;
    int m_port = 0;
    QByteArray m_session;
};

/// A page of the system's Chromium, as far as tools on pages need one.
class ChromiumPage final : public QObject, public PageEngine {
public:
    explicit ChromiumPage(PageDelegate& delegate)
        : m_delegate(delegate)
    {
        look();
    }

    void load(const QUrl& url) override
    {
        setState(url, {}, true);
        m_ignored = 1;
        m_driver.send("POST", "/url", {{"url", url.toString(QUrl::FullyEncoded)}}, this,
                      [this](const QJsonValue&) { m_delegate.pageCommitted(); });
    }
    void goBack() override { move("/back"); }
    void goForward() override { move("/forward"); }
    void reload() override { move("/refresh"); }
    void stop() override {}
    void visitDespiteCertificate() override {}

    [[nodiscard]] QUrl url() const override { return m_url; }
    [[nodiscard]] QString title() const override { return m_title; }
    [[nodiscard]] bool canGoBack() const override { return true; }
    [[nodiscard]] bool canGoForward() const override { return true; }
    [[nodiscard]] bool isLoading() const override { return m_isLoading; }
    [[nodiscard]] double progress() const override { return m_isLoading ? 0.5 : 1; }

    void call(const PageScript& script, std::chrono::milliseconds timeout,
              std::function<void(PageScriptResult)> done) override
    {
        QJsonArray values;
        for (const QJsonValue value : script.arguments)
            values.append(value);
        const QByteArray list = QJsonDocument(values).toJson(QJsonDocument::Compact);
        const auto isOver = std::make_shared<bool>(false);
        const auto once = [isOver, done = std::move(done)](const PageScriptResult& result) {
            if (!std::exchange(*isOver, true))
                done(result);
        };
        evaluate("(async function (" + script.arguments.keys().join(", ") + ") {\n" + script.body +
                     "\n}).apply(undefined, " + QString::fromUtf8(list) + ")",
                 [once](const QJsonObject& answer) { once(result(answer)); });
        QTimer::singleShot(timeout, this, [once] {
            once(Unexpected{PageScriptError{.kind = PageScriptError::Kind::TimedOut}});
        });
    }
    void picture(PageExtent, std::function<void(PagePictureResult)> done) override
    {
        m_driver.send("GET", "/screenshot", {}, this,
                      [done = std::move(done)](const QJsonValue& value) {
                          done(QByteArray::fromBase64(value.toString().toLatin1()));
                      });
    }

    void setZoomFactor(double) override {}
    void setDark(bool) override {}
    void find(const QString&, FindDirection, std::function<void(int, int)> done) override
    {
        done(0, 0);
    }
    void perform(PageAction) override {}
    void answer(quint64, const PageAnswer&) override {}
    void leaveFullScreen() override {}
    void terminate() override {}
    void inspect() override {}
    [[nodiscard]] QWidget* widget() const override { return nullptr; }
    [[nodiscard]] QSize size() const override { return {1280, 800}; }
    void resize(QSize) override {}
    [[nodiscard]] bool isPlaced() const override { return true; }

private:
    void move(const QByteArray& path)
    {
        setState(m_url, m_title, true);
        m_ignored = 1;
        m_driver.send("POST", path, {}, this,
                      [this](const QJsonValue&) { m_delegate.pageCommitted(); });
    }
    /// Past the driver's own scripts, which pages can break.
    void evaluate(const QString& expression, std::function<void(const QJsonObject&)> done)
    {
        const QJsonObject parameters{
            {"expression", expression}, {"awaitPromise", true}, {"returnByValue", true}};
        m_driver.send(
            "POST", "/goog/cdp/execute", {{"cmd", "Runtime.evaluate"}, {"params", parameters}},
            this, [done = std::move(done)](const QJsonValue& value) { done(value.toObject()); });
    }
    /// The driver tells nothing by itself, so the page is looked at again and again.
    void look()
    {
        evaluate("[location.href, document.readyState, String(document.title)].join('\\n')",
                 [this](const QJsonObject& answer) {
                     const QString state = answer["result"].toObject()["value"].toString();
                     // What was under way when a load was asked for is of the page before.
                     if (m_ignored > 0)
                         --m_ignored;
                     else if (!state.isEmpty())
                         setState(QUrl(state.section('\n', 0, 0)), state.section('\n', 2),
                                  state.section('\n', 1, 1) != "complete");
                     QTimer::singleShot(20, this, [this] { look(); });
                 });
    }
    void setState(const QUrl& url, const QString& title, bool isLoading)
    {
        if (url == m_url && title == m_title && isLoading == m_isLoading)
            return;
        m_url = url;
        m_title = title;
        m_isLoading = isLoading;
        m_delegate.pageChanged();
    }
    static PageScriptResult result(const QJsonObject& answer)
    {
        using Kind = PageScriptError::Kind;
        const QJsonObject value = answer["result"].toObject();
        const QJsonObject exception = answer["exceptionDetails"].toObject()["exception"].toObject();
        if (!exception.isEmpty()) {
            // "TypeError: message\n    at …", or what was thrown.
            const QString name = exception["className"].toString();
            const QString text = exception["description"].toString().section("\n    at ", 0, 0);
            const QString message =
                name.isEmpty() ? exception["value"].toString() : text.mid(name.size() + 2);
            return Unexpected{PageScriptError{Kind::Exception, name, message}};
        }
        if (value["type"].toString() == "undefined")
            return QJsonValue(QJsonValue::Undefined);
        if (value.contains("value"))
            return value["value"];
        return Unexpected{PageScriptError{Kind::Navigated, {}, answer["message"].toString()}};
    }

    ChromiumDriver& m_driver = ChromiumDriver::shared();
    PageDelegate& m_delegate;
    QUrl m_url;
    QString m_title;
    bool m_isLoading = false;
    int m_ignored = 0;
};

class ChromiumPages final : public PageEngines {
public:
    [[nodiscard]] std::unique_ptr<PageEngine> make(PageDelegate& delegate) override
    {
        return std::make_unique<ChromiumPage>(delegate);
    }
    void clearBrowsingData(std::function<void()> done) override { done(); }
};

} // namespace Bralto
