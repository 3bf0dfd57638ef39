#include "Tests/Support/WebHarness.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QKeyEvent>
#include <QMainWindow>

namespace Bralto {
namespace {

/// Stands in for the programs of the desktop.
class Elsewhere final : public QObject {
    Q_OBJECT

public:
    Elsewhere()
    {
        QDesktopServices::setUrlHandler(QStringLiteral("bralto-elsewhere"), this, "open");
    }
    ~Elsewhere() override { QDesktopServices::unsetUrlHandler(QStringLiteral("bralto-elsewhere")); }

    std::vector<QUrl> opened;

public slots:
    void open(const QUrl& url) { opened.push_back(url); }
};

/// A page that lies in a window, as a user has it.
class WebWindowTest : public WebTest {
protected:
    WebWindowTest()
    {
        m_window.resize(600, 400);
        page->widget()->setParent(&m_window);
        page->widget()->setGeometry(0, 0, 600, 400);
        m_window.show();
        QApplication::setActiveWindow(&m_window);
    }
    ~WebWindowTest() override
    {
        if (page)
            page->widget()->setParent(nullptr);
    }

    QWidget& target()
    {
        QWidget* view = page->widget()->focusProxy();
        return *(view->focusProxy() ? view->focusProxy() : view);
    }
    void moveTo(QPoint at)
    {
        QMouseEvent event(QEvent::MouseMove, at, target().mapToGlobal(at), Qt::NoButton,
                          Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&target(), &event);
    }
    void press(Qt::Key key, const QString& text = {})
    {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier, text);
            QCoreApplication::sendEvent(&target(), &event);
        }
    }
    std::pair<int, int>
    find(const QString& text,
         PageEngine::FindDirection direction = PageEngine::FindDirection::Forward)
    {
        std::optional<std::pair<int, int>> result;
        page->find(text, direction, [&](int active, int count) { result = {active, count}; });
        spinUntil([&] { return result.has_value(); });
        return result.value_or(std::pair(-1, -1));
    }

    QWidget m_window;
};

TEST_F(WebWindowTest, ThePageLiesWhereItsWidgetLies)
{
    ASSERT_TRUE(show("<!doctype html>words"));
    EXPECT_TRUE(page->isPlaced());
    EXPECT_EQ(value(QStringLiteral("return [innerWidth, innerHeight].join()")),
              QStringLiteral("600,400"));

    page->widget()->resize(500, 300);

    EXPECT_EQ(page->size(), QSize(500, 300));
    EXPECT_TRUE(spinUntil([this] {
        return value(QStringLiteral("return [innerWidth, innerHeight].join()")) ==
               QStringLiteral("500,300");
    }));
    page->widget()->setParent(nullptr);
    EXPECT_FALSE(page->isPlaced());
}

TEST_F(WebWindowTest, AHiddenPageRestsUntilItIsDriven)
{
    ASSERT_TRUE(show("<!doctype html>words<script>window.seen = [];"
                     "addEventListener('visibilitychange', () => "
                     "seen.push(document.visibilityState))</script>"));
    EXPECT_EQ(value(QStringLiteral("return document.visibilityState")), QStringLiteral("visible"));

    m_window.hide();
    m_window.show();
    page->widget()->hide();

    EXPECT_TRUE(spinUntil([this] {
        return value(QStringLiteral("return document.visibilityState")) ==
               QStringLiteral("visible");
    }));
    page->widget()->show();
    EXPECT_EQ(value(QStringLiteral("return document.visibilityState")), QStringLiteral("visible"));
    EXPECT_TRUE(target().window() == &m_window);
}

TEST_F(WebWindowTest, TheMenuIsTheProgramsOwn)
{
    ASSERT_TRUE(show("<!doctype html><body style='margin:0'>"
                     "<a href=/link style='display:block;height:100px'>link</a>"
                     "<textarea style='display:block;height:100px;width:300px'>text</textarea>"));

    click(QPoint(10, 10), Qt::RightButton);
    ASSERT_TRUE(spinUntil([this] { return notes.menu.has_value(); }));
    EXPECT_EQ(notes.menu->context.link, site.url(QStringLiteral("/link")));
    EXPECT_FALSE(notes.menu->context.isEditable);
    EXPECT_EQ(notes.menu->position, target().mapToGlobal(QPoint(10, 10)));

    notes.menu.reset();
    click(QPoint(20, 150), Qt::RightButton);
    ASSERT_TRUE(spinUntil([this] { return notes.menu.has_value(); }));
    EXPECT_TRUE(notes.menu->context.isEditable);
    EXPECT_TRUE(notes.menu->context.canPaste);
    EXPECT_EQ(notes.menu->context.link, QUrl());
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(WebWindowTest, TheLinkUnderThePointerIsTold)
{
    ASSERT_TRUE(show("<!doctype html><body style='margin:0'><a href=/link "
                     "style='display:block;height:100px'>link</a>"));
    value(QStringLiteral(
        "await new Promise(r => requestAnimationFrame(() => requestAnimationFrame(r)))"));

    moveTo(QPoint(10, 10));
    EXPECT_TRUE(spinUntil([this] { return notes.hovered == site.url(QStringLiteral("/link")); }));

    moveTo(QPoint(10, 300));
    EXPECT_TRUE(spinUntil([this] { return notes.hovered.isEmpty(); }));
}

TEST_F(WebWindowTest, AProgramOfTheDesktopIsStartedOnlyByTheUser)
{
    Elsewhere elsewhere;
    ASSERT_TRUE(show("<!doctype html><body style='margin:0'>"
                     "<a href='bralto-elsewhere:x' style='display:block;height:100px'>x</a>"));

    value(QStringLiteral("document.querySelector('a').click()"));
    value(QStringLiteral("location = 'bralto-elsewhere:y'"));
    value(QStringLiteral("document.body.append(Object.assign(document.createElement('iframe'),"
                         "{src: 'bralto-elsewhere:z'}))"));
    value(QStringLiteral("await new Promise(r => setTimeout(r, 200))"));
    EXPECT_TRUE(elsewhere.opened.empty());
    click(QPoint(10, 10));

    EXPECT_TRUE(spinUntil([&] { return !elsewhere.opened.empty(); }));
    EXPECT_EQ(elsewhere.opened, std::vector<QUrl>{QUrl(QStringLiteral("bralto-elsewhere:x"))});
    EXPECT_EQ(page->url(), site.url());
    EXPECT_EQ(value(QStringLiteral("return document.querySelector('a').innerText")),
              QStringLiteral("x"));
}

TEST_F(WebWindowTest, AnAddressForAnotherProgramIsAFailure)
{
    Elsewhere elsewhere;
    ASSERT_TRUE(show("<!doctype html>words"));

    ASSERT_TRUE(load(QUrl(QStringLiteral("bralto-elsewhere:x"))));
    ASSERT_TRUE(load(QUrl(QStringLiteral("javascript:document.title='x'"))));

    ASSERT_EQ(notes.failures.size(), 2U);
    EXPECT_EQ(notes.failures[0].text,
              QStringLiteral("Pages have no addresses that begin with “bralto-elsewhere:”."));
    EXPECT_EQ(page->url(), QUrl(QStringLiteral("javascript:document.title='x'")));
    EXPECT_TRUE(elsewhere.opened.empty());
    EXPECT_EQ(value(QStringLiteral("return document.title")), QString());
    ASSERT_TRUE(show("<!doctype html><title>Next</title>"));
    EXPECT_EQ(page->title(), QStringLiteral("Next"));
}

TEST_F(WebWindowTest, TheMousesOwnButtonsGoThroughTheHistory)
{
    ASSERT_TRUE(show("<!doctype html><title>One</title>words", QStringLiteral("/1")));
    ASSERT_TRUE(show("<!doctype html><title>Two</title>words", QStringLiteral("/2")));

    click(QPoint(50, 50), Qt::BackButton);
    ASSERT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("One"); }));
    ASSERT_TRUE(spinUntil([this] { return !page->isLoading(); }));
    click(QPoint(50, 50), Qt::ForwardButton);

    EXPECT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("Two"); }));
}

TEST_F(WebWindowTest, TextIsFoundAndCounted)
{
    ASSERT_TRUE(show("<!doctype html><p>one two one</p><p>One</p>"));

    EXPECT_EQ(find(QStringLiteral("one")), std::pair(1, 3));
    EXPECT_EQ(find(QStringLiteral("one")), std::pair(2, 3));
    EXPECT_EQ(find(QStringLiteral("one"), PageEngine::FindDirection::Backward), std::pair(1, 3));
    EXPECT_EQ(find(QStringLiteral("none")), std::pair(0, 0));
    EXPECT_EQ(find({}), std::pair(0, 0));
}

TEST_F(WebWindowTest, ASearchThatAnotherReplacesEndsToo)
{
    ASSERT_TRUE(show("<!doctype html><p>one two one</p>"));
    std::vector<int> counts;
    for (const char* text : {"one", "two", "three"})
        page->find(QString::fromLatin1(text), PageEngine::FindDirection::Forward,
                   [&counts](int, int count) { counts.push_back(count); });

    ASSERT_TRUE(spinUntil([&counts] { return counts.size() == 3; }));
    EXPECT_EQ(counts.back(), 0);
}

TEST_F(WebWindowTest, AnEngineThatGoesEndsItsSearch)
{
    ASSERT_TRUE(show("<!doctype html><p>one</p>"));
    int ends = 0;
    page->find(QStringLiteral("one"), PageEngine::FindDirection::Forward,
               [&ends](int, int) { ++ends; });

    page.reset();

    EXPECT_EQ(ends, 1);
}

TEST_F(WebWindowTest, FullScreenIsTheUsersClickAndEscapeEndsIt)
{
    ASSERT_TRUE(
        show("<!doctype html><body style='height:100vh'>words<script>"
             "addEventListener('click', () => document.body.requestFullscreen())</script>"));

    click(QPoint(50, 50));
    ASSERT_TRUE(spinUntil([this] { return notes.fullScreen == std::vector<bool>{true}; }));
    press(Qt::Key_Escape);
    EXPECT_TRUE(spinUntil([this] { return notes.fullScreen == std::vector<bool>{true, false}; }));

    click(QPoint(50, 50));
    ASSERT_TRUE(spinUntil([this] { return notes.fullScreen.size() == 3; }));
    page->leaveFullScreen();
    EXPECT_TRUE(spinUntil([this] { return notes.fullScreen.size() == 4; }));
    EXPECT_TRUE(value(QStringLiteral("return document.fullscreenElement")).isNull());
}

TEST_F(WebWindowTest, KeysAndTheEditingCommandsReachAField)
{
    ASSERT_TRUE(show("<!doctype html><body style='margin:0'><textarea "
                     "style='height:200px;width:300px'></textarea>words"));
    page->widget()->setFocus();
    click(QPoint(50, 50));
    press(Qt::Key_A, QStringLiteral("a"));
    press(Qt::Key_B, QStringLiteral("b"));
    const auto text = [this] {
        return value(QStringLiteral("return document.querySelector('textarea').value"));
    };
    ASSERT_TRUE(spinUntil([&] { return text() == QStringLiteral("ab"); }));

    page->perform(PageAction::SelectAll);
    page->perform(PageAction::Cut);

    EXPECT_TRUE(spinUntil([&] { return text() == QString(); }));
    EXPECT_TRUE(
        spinUntil([] { return QApplication::clipboard()->text() == QStringLiteral("ab"); }));
    page->perform(PageAction::Paste);
    EXPECT_TRUE(spinUntil([&] { return text() == QStringLiteral("ab"); }));
    page->perform(PageAction::Undo);
    EXPECT_TRUE(spinUntil([&] { return text() == QString(); }));
}

TEST_F(WebWindowTest, TheDeveloperToolsHaveAWindow)
{
    ASSERT_TRUE(show("<!doctype html>words"));
    const auto window = [] {
        for (QWidget* each : QApplication::topLevelWidgets())
            if (each->isVisible() && each->windowTitle() == QStringLiteral("Developer Tools"))
                return each;
        return static_cast<QWidget*>(nullptr);
    };
    page->inspect();
    ASSERT_NE(window(), nullptr);
    page->inspect();

    window()->close();

    EXPECT_TRUE(spinUntil([&] { return window() == nullptr; }));
    EXPECT_EQ(value(QStringLiteral("return 1")), 1);
    page->inspect();
    page.reset();
    EXPECT_EQ(window(), nullptr);
}

TEST_F(WebWindowTest, AnEngineMayGoInTheMiddleOfItsKey)
{
    ASSERT_TRUE(show("<!doctype html>words"));
    struct Closer : QObject {
        std::function<void()> close;
        bool eventFilter(QObject*, QEvent* event) override
        {
            if (event->type() == QEvent::KeyPress && close)
                std::exchange(close, nullptr)();
            return false;
        }
    } closer;
    closer.close = [this] {
        page->widget()->setParent(nullptr);
        page.reset();
    };
    QWidget& target = this->target();
    target.installEventFilter(&closer);

    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
    QCoreApplication::sendEvent(&target, &event);

    EXPECT_EQ(page, nullptr);
    page = engines.make(notes);
    ASSERT_TRUE(show("<!doctype html>words"));
}

TEST_F(WebWindowTest, APageThatStandsStillUnderTheUsersHandsIsNoticed)
{
    PageNotes its;
    WebEngines impatient({}, {.patience = std::chrono::milliseconds(200)});
    const auto stuck = impatient.make(its);
    site.page(QStringLiteral("/"),
              "<!doctype html>words<script>setTimeout(() => { while (true); }, 100)</script>");
    stuck->load(site.url());
    ASSERT_TRUE(spinUntil([&] { return its.commits == 1 && !stuck->isLoading(); }));
    stuck->widget()->show();
    QWidget* view = stuck->widget()->focusProxy();
    QWidget* target = view->focusProxy() ? view->focusProxy() : view;

    ASSERT_TRUE(spinUntil([&] {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
        QCoreApplication::sendEvent(target, &event);
        return its.responses == std::vector<bool>{false};
    }));

    stuck->terminate();
    EXPECT_TRUE(spinUntil([&] { return its.ends == 1; }));
    EXPECT_EQ(its.responses, (std::vector<bool>{false, true}));
}

TEST_F(WebWindowTest, ManyPagesComeAndGo)
{
    site.page(QStringLiteral("/"), "<!doctype html><title>Many</title>words");
    for (int round = 0; round < 3; ++round) {
        std::vector<std::unique_ptr<PageNotes>> allNotes;
        std::vector<std::unique_ptr<PageEngine>> pages;
        for (int i = 0; i < 4; ++i) {
            allNotes.push_back(std::make_unique<PageNotes>());
            pages.push_back(engines.make(*allNotes.back()));
            pages.back()->load(site.url());
        }
        EXPECT_TRUE(spinUntil([&] {
            return std::all_of(pages.begin(), pages.end(), [](const auto& each) {
                return each->title() == QStringLiteral("Many");
            });
        }));
    }
}

} // namespace
} // namespace Bralto

#include "WebWindowTest.moc"
