#pragma once

#include "Browser/PageEngine.h"

#include <QStringList>

#include <deque>
#include <map>
#include <vector>

namespace Bralto {

/// A page that is and does what the test says, and writes down what it is told.
class FakePage final : public PageEngine {
public:
    FakePage(PageDelegate& tab, std::vector<FakePage*>& alive)
        : delegate(tab)
        , m_alive(alive)
    {
        m_alive.push_back(this);
    }
    ~FakePage() override { std::erase(m_alive, this); }

    void load(const QUrl& url) override
    {
        loads.push_back(url);
        address = url;
        loading = true;
        delegate.pageChanged();
    }
    void goBack() override { told << "back"; }
    void goForward() override { told << "forward"; }
    void reload() override { told << "reload"; }
    void stop() override { told << "stop"; }
    void visitDespiteCertificate() override { told << "visit despite certificate"; }

    [[nodiscard]] QUrl url() const override { return address; }
    [[nodiscard]] QString title() const override { return name; }
    [[nodiscard]] bool canGoBack() const override { return back; }
    [[nodiscard]] bool canGoForward() const override { return forward; }
    [[nodiscard]] bool isLoading() const override { return loading; }
    [[nodiscard]] double progress() const override { return loaded; }

    void call(const PageScript& script, std::chrono::milliseconds timeout,
              std::function<void(PageScriptResult)> done) override
    {
        scripts.push_back(script);
        timeouts.push_back(timeout);
        waiting.push_back(std::move(done));
    }
    void picture(PageExtent extent, std::function<void(PagePictureResult)> done) override
    {
        extents.push_back(extent);
        waitingPictures.push_back(std::move(done));
    }

    void setZoomFactor(double factor) override { zoom = factor; }
    void setDark(bool isDark) override { dark = isDark; }
    void find(const QString& text, FindDirection direction,
              std::function<void(int, int)> done) override
    {
        searches.push_back({text, direction});
        waitingSearches.push_back(std::move(done));
    }
    void perform(PageAction action) override { actions.push_back(action); }
    void answer(quint64 question, const PageAnswer& answer) override { answers[question] = answer; }
    void leaveFullScreen() override { told << "leave full screen"; }
    void terminate() override { told << "terminate"; }
    void inspect() override { told << "inspect"; }

    [[nodiscard]] QWidget* widget() const override { return shown; }
    [[nodiscard]] QSize size() const override { return room; }
    void resize(QSize size) override { room = size; }
    [[nodiscard]] bool isPlaced() const override { return placed; }

    /// The load that is under way ends well, under this title.
    void finish(const QString& title = {})
    {
        if (!title.isNull())
            name = title;
        delegate.pageCommitted();
        loading = false;
        loaded = 1;
        delegate.pageChanged();
    }
    /// Answers the oldest script that waits.
    void reply(const PageScriptResult& result)
    {
        const auto done = std::move(waiting.front());
        waiting.pop_front();
        done(result);
    }
    void replyPicture(const PagePictureResult& result)
    {
        const auto done = std::move(waitingPictures.front());
        waitingPictures.pop_front();
        done(result);
    }

    PageDelegate& delegate;
    QUrl address;
    QString name;
    bool back = false;
    bool forward = false;
    bool loading = false;
    double loaded = 0;
    double zoom = 0;
    bool dark = false;
    bool placed = true;
    QSize room{800, 600};
    QWidget* shown = nullptr;

    std::vector<QUrl> loads;
    QStringList told;
    std::vector<PageScript> scripts;
    std::vector<std::chrono::milliseconds> timeouts;
    std::deque<std::function<void(PageScriptResult)>> waiting;
    std::vector<PageExtent> extents;
    std::deque<std::function<void(PagePictureResult)>> waitingPictures;
    std::vector<std::pair<QString, FindDirection>> searches;
    std::deque<std::function<void(int, int)>> waitingSearches;
    std::vector<PageAction> actions;
    std::map<quint64, PageAnswer> answers;

private:
    std::vector<FakePage*>& m_alive;
};

/// Makes pages that a test holds in its hand.
class FakePages final : public PageEngines {
public:
    [[nodiscard]] std::unique_ptr<PageEngine> make(PageDelegate& delegate) override
    {
        if (isMissing)
            return nullptr;
        auto page = std::make_unique<FakePage>(delegate, alive);
        if (dress)
            dress(*page);
        return page;
    }
    void clearBrowsingData(std::function<void()> done) override
    {
        ++clearings;
        done();
    }

    std::vector<FakePage*> alive;         ///< In the order in which they were made.
    std::function<void(FakePage&)> dress; ///< What a page is given before anybody has it.
    bool isMissing = false;               ///< The engine can't be loaded.
    int clearings = 0;
};

} // namespace Bralto
