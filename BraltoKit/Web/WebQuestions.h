#pragma once

#include "Browser/PageEngine.h"

#include <QObject>

#include <functional>
#include <vector>

class QEventLoop;

namespace Bralto {

/// What a page asks the user, until it is answered or nobody needs the answer any more. Who asks by
/// calling waits in an event loop of its own, so the window goes on. Main thread.
class WebQuestions final : public QObject {
    Q_OBJECT

public:
    explicit WebQuestions(PageDelegate& delegate, QObject* parent = nullptr);
    ~WebQuestions() override; ///< Withdraws all; whoever still waits gets a no.

    /// Waits for the answer, which is no if the question is withdrawn. This object may be gone
    /// once it returns.
    [[nodiscard]] PageAnswer ask(PageQuestion question);
    /// One of the two is called once. The question's id.
    quint64 ask(PageQuestion question, std::function<void(const PageAnswer&)> answered,
                std::function<void()> withdrawn = {});

    void answer(quint64 question, const PageAnswer& answer);
    void withdraw(quint64 question);
    void withdrawAll();
    /// What a document asked that is gone. A login is its server's.
    void withdrawDocuments();

    /// The newest question for which the page's scripts stand still; null if there is none.
    [[nodiscard]] const PageQuestion* blocking() const;

signals:
    void changed();

private:
    struct Open {
        PageQuestion question;
        std::function<void(const PageAnswer&)> answered;
        std::function<void()> withdrawn = {};
        QEventLoop* loop = nullptr; ///< Of who waits; null if nobody does.
    };
    [[nodiscard]] std::vector<Open>::iterator find(quint64 question);

    PageDelegate& m_delegate;
    std::vector<Open> m_open;
    quint64 m_lastId = 0;
};

} // namespace Bralto
