#pragma once

#include "Browser/PageEngine.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QPoint>
#include <QTimer>

#include <functional>
#include <optional>
#include <vector>

namespace Bralto {

/// Runs the event loop until `holds` is true; false if it never was.
inline bool spinUntil(const std::function<bool()>& holds, int seconds = 10)
{
    QEventLoop loop;
    QTimer ticks;
    const QDeadlineTimer deadline(seconds * 1000);
    QObject::connect(&ticks, &QTimer::timeout, &loop, [&] {
        if (holds() || deadline.hasExpired())
            loop.quit();
    });
    ticks.start(2);
    if (!holds())
        loop.exec();
    return holds();
}

/// Keeps what a page tells.
class PageNotes final : public PageDelegate {
public:
    struct Menu {
        PageContext context;
        QPoint position;
    };

    void pageChanged() override { ++changes; }
    void pageCommitted() override { ++commits; }
    void pageFailed(const PageLoadError& error) override { failures.push_back(error); }
    void pageLogged(const QString& level, const QString& text) override
    {
        log.push_back(level + QStringLiteral(": ") + text);
    }
    void pageWantsNewPage(const QUrl& url) override { newPages.push_back(url); }
    void pageAsked(const PageQuestion& question) override
    {
        questions.push_back(question);
        if (asked)
            asked(question);
    }
    void pageWithdrew(quint64 question) override { withdrawn.push_back(question); }
    void pageWantsMenu(const PageContext& context, const QPoint& position) override
    {
        menu = Menu{context, position};
    }
    void pageHovered(const QUrl& link) override { hovered = link; }
    void pageWantsFullScreen(bool wants) override { fullScreen.push_back(wants); }
    void pageIconChanged(const QByteArray& png) override { icon = png; }
    void pageEnded() override { ++ends; }
    void pageResponds(bool responds) override { responses.push_back(responds); }

    int changes = 0;
    int commits = 0;
    int ends = 0;
    std::vector<PageLoadError> failures;
    std::vector<QString> log;
    std::vector<QUrl> newPages;
    std::vector<PageQuestion> questions;
    std::vector<quint64> withdrawn;
    std::optional<Menu> menu;
    QUrl hovered;
    std::vector<bool> fullScreen;
    QByteArray icon;
    std::vector<bool> responses;
    std::function<void(const PageQuestion&)> asked;
};

} // namespace Bralto
