#pragma once

#include "Web/WebQuestions.h"

#include <QPointer>
#include <QWebEngineUrlSchemeHandler>

#include <map>

namespace Bralto {

/// Takes the questions that dialogs.js asks in a page: each is a request that is answered once the
/// user has. Main thread.
class WebAsking final : public QWebEngineUrlSchemeHandler {
    Q_OBJECT

public:
    static constexpr char Scheme[] = "bralto-ask";

    /// Once, before the process's first profile.
    static void registerScheme();

    /// Documents that know `key` ask `questions`.
    void add(const QString& key, WebQuestions& questions);

    void requestStarted(QWebEngineUrlRequestJob* job) override;

    /// What a request asks; absent if that is no question. `address` is "bralto-ask:KEY?KIND&TEXT&
    /// SUGGESTION", each percent-encoded.
    [[nodiscard]] static std::optional<PageQuestion> questionFrom(const QUrl& address);

private:
    std::map<QString, QPointer<WebQuestions>> m_questions;
};

} // namespace Bralto
