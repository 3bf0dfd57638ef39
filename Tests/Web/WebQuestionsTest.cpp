#include "Tests/Support/WebHarness.h"

#include <QApplication>
#include <QFileDialog>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QWidget>

namespace Bralto {
namespace {

using Kind = PageQuestion::Kind;

/// Read when the first page is made: cameras that are none.
const bool HasDevices = qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--use-fake-device-for-media-stream");

constexpr auto Plain = "<!doctype html><title>Plain</title>Hello";

class WebQuestionsTest : public WebTest {
protected:
    /// What happens in the turn after a question. While a dialog is open its page waits in an event
    /// loop of its own, so this is where a test goes on.
    void whenAsked(const std::function<void(const PageQuestion&)>& act)
    {
        notes.asked = [act](const PageQuestion& question) {
            QTimer::singleShot(0, [act, question] { act(question); });
        };
    }
    /// Has the page run `script` on its own.
    void run(const QString& script)
    {
        page->call({QStringLiteral("setTimeout(() => { %1 })").arg(script), {}},
                   std::chrono::seconds(5), [](const PageScriptResult&) {});
    }
    bool titleBecomes(const QString& title)
    {
        return spinUntil([&] { return page && page->title() == title; });
    }
    QString origin() const { return QStringLiteral("http://127.0.0.1:%1").arg(site.port()); }
};

TEST_F(WebQuestionsTest, AnAlertWaitsUntilItIsSeen)
{
    ASSERT_TRUE(show(Plain));
    whenAsked([this](const PageQuestion& question) {
        EXPECT_EQ(page->title(), QStringLiteral("Plain"));
        page->answer(question.id, {});
    });

    run(QStringLiteral("alert('look'); document.title = 'seen'"));

    EXPECT_TRUE(titleBecomes(QStringLiteral("seen")));
    ASSERT_EQ(notes.questions.size(), 1U);
    EXPECT_EQ(notes.questions[0].kind, Kind::Alert);
    EXPECT_EQ(notes.questions[0].text, QStringLiteral("look"));
    EXPECT_EQ(notes.questions[0].origin, origin());
    EXPECT_NE(notes.questions[0].id, 0U);
    EXPECT_TRUE(notes.withdrawn.empty());
}

TEST_F(WebQuestionsTest, AConfirmationGivesTheAnswer)
{
    ASSERT_TRUE(show(Plain));
    for (const bool yes : {true, false}) {
        whenAsked([this, yes](const PageQuestion& question) {
            EXPECT_EQ(question.kind, Kind::Confirm);
            page->answer(question.id, {yes});
        });

        run(QStringLiteral("document.title = confirm('Sure?')"));

        EXPECT_TRUE(titleBecomes(yes ? QStringLiteral("true") : QStringLiteral("false")));
    }
}

TEST_F(WebQuestionsTest, APromptGivesTheText)
{
    ASSERT_TRUE(show(Plain));
    whenAsked([this](const PageQuestion& question) {
        EXPECT_EQ(question.kind, Kind::Prompt);
        EXPECT_EQ(question.suggestion, QStringLiteral("Ada"));
        page->answer(question.id, {true, QStringLiteral("Grace")});
    });
    run(QStringLiteral("document.title = prompt('Name?', 'Ada')"));
    EXPECT_TRUE(titleBecomes(QStringLiteral("Grace")));

    whenAsked([this](const PageQuestion& question) { page->answer(question.id, {}); });
    run(QStringLiteral("document.title = prompt('Name?', 'Ada')"));

    EXPECT_TRUE(titleBecomes(QStringLiteral("null")));
}

TEST_F(WebQuestionsTest, ACallThatADialogStopsEndsWithItsText)
{
    ASSERT_TRUE(show(Plain));
    const PageScriptError asking{PageScriptError::Kind::Asking, {}, QStringLiteral("look")};
    whenAsked([&](const PageQuestion& question) {
        EXPECT_EQ(error(QStringLiteral("return 2")), asking);
        page->answer(question.id, {});
    });

    EXPECT_EQ(error(QStringLiteral("alert('look'); return 1")), asking);

    EXPECT_EQ(value(QStringLiteral("return 3")), 3);
}

TEST_F(WebQuestionsTest, APageThatAsksHasAPictureOfWhatItShowedLast)
{
    ASSERT_TRUE(show("<!doctype html><body style='background:#0f0'>"));
    ASSERT_EQ(picture(PageExtent::Visible).pixelColor(5, 5), QColor(0, 255, 0));
    whenAsked([this](const PageQuestion& question) {
        EXPECT_EQ(picture(PageExtent::Visible).pixelColor(5, 5), QColor(0, 255, 0));
        EXPECT_EQ(picture(PageExtent::Whole).pixelColor(5, 5), QColor(0, 255, 0));
        page->answer(question.id, {});
    });

    run(QStringLiteral("alert('look'); document.title = 'seen'"));

    EXPECT_TRUE(titleBecomes(QStringLiteral("seen")));
}

TEST_F(WebQuestionsTest, ALoadWithdrawsWhatThePageAsked)
{
    ASSERT_TRUE(show(Plain));
    site.page(QStringLiteral("/next"), "<!doctype html><title>Next</title>");
    whenAsked([this](const PageQuestion&) { page->load(site.url(QStringLiteral("/next"))); });

    run(QStringLiteral("alert('look')"));

    EXPECT_TRUE(titleBecomes(QStringLiteral("Next")));
    EXPECT_EQ(notes.withdrawn, std::vector<quint64>{notes.questions.at(0).id});
    page->answer(notes.questions.at(0).id, {true});
}

TEST_F(WebQuestionsTest, TheEndOfTheProcessWithdrawsWhatThePageAsked)
{
    ASSERT_TRUE(show(Plain));
    whenAsked([this](const PageQuestion&) { page->terminate(); });

    run(QStringLiteral("confirm('look')"));

    ASSERT_TRUE(spinUntil([this] { return notes.ends == 1; }));
    EXPECT_EQ(notes.withdrawn.size(), 1U);
    ASSERT_TRUE(show(Plain));
}

TEST_F(WebQuestionsTest, AnEngineMayGoWhileItsPageAsks)
{
    ASSERT_TRUE(show(Plain));
    whenAsked([this](const PageQuestion&) { page.reset(); });

    run(QStringLiteral("confirm('look')"));

    ASSERT_TRUE(spinUntil([this] { return !page; }));
    EXPECT_EQ(notes.withdrawn.size(), 1U);
    page = engines.make(notes);
    ASSERT_TRUE(show(Plain));
    EXPECT_EQ(value(QStringLiteral("return 1")), 1);
}

TEST_F(WebQuestionsTest, AnEngineMayGoInTheMomentItsPageAsks)
{
    ASSERT_TRUE(show(Plain));
    notes.asked = [this](const PageQuestion&) { page.reset(); };

    run(QStringLiteral("prompt('look')"));

    EXPECT_TRUE(spinUntil([this] { return !page; }));
    EXPECT_EQ(notes.withdrawn.size(), 1U);
}

TEST_F(WebQuestionsTest, AnAnswerMayComeAtOnce)
{
    ASSERT_TRUE(show(Plain));
    notes.asked = [this](const PageQuestion& question) { page->answer(question.id, {true}); };

    run(QStringLiteral("document.title = confirm('now')"));

    EXPECT_TRUE(titleBecomes(QStringLiteral("true")));
}

TEST_F(WebQuestionsTest, TwoPagesMayAskAtOnce)
{
    PageNotes otherNotes;
    const std::unique_ptr<PageEngine> other = engines.make(otherNotes);
    ASSERT_TRUE(show(Plain));
    other->load(site.url(QStringLiteral("/"), QStringLiteral("localhost")));
    ASSERT_TRUE(spinUntil([&] { return !other->isLoading(); }));
    otherNotes.asked = [&](const PageQuestion& question) {
        QTimer::singleShot(0, [&, question] {
            page->answer(notes.questions.at(0).id, {true});
            other->answer(question.id, {true});
        });
    };
    whenAsked([&](const PageQuestion&) {
        other->call({QStringLiteral("document.title = confirm('second')"), {}},
                    std::chrono::seconds(5), [](const PageScriptResult&) {});
    });

    run(QStringLiteral("document.title = confirm('first')"));

    EXPECT_TRUE(spinUntil([&] {
        return page->title() == QStringLiteral("true") && other->title() == QStringLiteral("true");
    }));
}

TEST_F(WebQuestionsTest, DocumentsOfEveryKindAsk)
{
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("page.html")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(Plain);
    file.close();
    site.route(QStringLiteral("/strict"), [](const SiteServer::Request&) {
        return SiteServer::Response{200,
                                    "<!doctype html>words",
                                    "text/html",
                                    {{"Content-Security-Policy", "default-src 'none'"}}};
    });
    site.page(QStringLiteral("/frame"), "<!doctype html><iframe srcdoc='words'></iframe>");
    for (const QUrl& url :
         {QUrl::fromLocalFile(file.fileName()), QUrl(QStringLiteral("data:text/html,words")),
          QUrl(QStringLiteral("about:blank")), site.url(QStringLiteral("/strict")),
          site.url(QStringLiteral("/frame"))}) {
        SCOPED_TRACE(url.toString().toStdString());
        ASSERT_TRUE(load(url));
        notes.questions.clear();
        whenAsked([this](const PageQuestion& question) {
            page->answer(question.id, {true, QStringLiteral("ä\"")});
        });

        run(QStringLiteral("const w = self.length ? self[0] : self; document.title = "
                           "w.prompt('a&b\\ud800', 'c')"));

        EXPECT_TRUE(titleBecomes(QStringLiteral("ä\"")));
        ASSERT_EQ(notes.questions.size(), 1U);
        EXPECT_TRUE(notes.questions[0].text.startsWith(QStringLiteral("a&b")));
        std::printf("%s from %s\n", qPrintable(url.scheme()),
                    qPrintable(notes.questions[0].origin));
    }
}

TEST_F(WebQuestionsTest, OtherPagesRunWhileOneAsks)
{
    site.page(QStringLiteral("/other"), "<!doctype html><title>Other</title>words");
    PageNotes otherNotes;
    const std::unique_ptr<PageEngine> other = engines.make(otherNotes);
    ASSERT_TRUE(show(Plain));
    run(QStringLiteral("alert('look')"));
    ASSERT_TRUE(spinUntil([this] { return notes.questions.size() == 1; }));

    other->load(site.url(QStringLiteral("/other")));

    EXPECT_TRUE(spinUntil(
        [&] { return other->title() == QStringLiteral("Other") && !other->isLoading(); }));
    page->answer(notes.questions[0].id, {});
    EXPECT_EQ(value(QStringLiteral("return 1")), 1);
}

TEST_F(WebQuestionsTest, WhoeverIsNotAllowedMayNot)
{
    ASSERT_TRUE(show(Plain));
    run(QStringLiteral("navigator.geolocation.getCurrentPosition(() => {}, e => document.title = "
                       "'refused ' + e.code)"));
    ASSERT_TRUE(spinUntil([this] { return notes.questions.size() == 1; }));
    const PageQuestion question = notes.questions.front();

    EXPECT_EQ(question.kind, Kind::Permission);
    EXPECT_EQ(question.text, QStringLiteral("know your location"));
    EXPECT_EQ(question.origin, origin());
    EXPECT_FALSE(question.blocksPage());
    EXPECT_EQ(value(QStringLiteral("return 1")), 1);
    page->answer(question.id, {false});
    EXPECT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("refused 1"); }));
}

TEST_F(WebQuestionsTest, TheCameraIsAskedFor)
{
    ASSERT_TRUE(show(Plain));

    whenAsked([this](const PageQuestion& question) {
        EXPECT_EQ(question.text, QStringLiteral("use your camera"));
        page->answer(question.id, {});
    });

    run(QStringLiteral(
        "navigator.mediaDevices.getUserMedia({video: true}).catch(e => document.title = e.name)"));

    EXPECT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("NotAllowedError"); }));
}

TEST_F(WebQuestionsTest, NotificationsAndTheScreenAreNobodys)
{
    ASSERT_TRUE(show(Plain));

    EXPECT_EQ(value(QStringLiteral("return await Notification.requestPermission()")),
              QStringLiteral("denied"));
    EXPECT_EQ(
        value(QStringLiteral("return await navigator.mediaDevices.getDisplayMedia({video: true})"
                             ".then(() => 'shown', () => 'refused')")),
        QStringLiteral("refused"));
    EXPECT_TRUE(notes.questions.empty());
}

TEST_F(WebQuestionsTest, ANavigationWithdrawsAPermission)
{
    ASSERT_TRUE(show(Plain));
    run(QStringLiteral("navigator.geolocation.getCurrentPosition(() => {})"));
    ASSERT_TRUE(spinUntil([this] { return notes.questions.size() == 1; }));

    ASSERT_TRUE(show(Plain, QStringLiteral("/next")));

    EXPECT_EQ(notes.withdrawn, std::vector<quint64>{notes.questions.front().id});
}

TEST_F(WebQuestionsTest, AServerMayAskForAName)
{
    site.protect(QStringLiteral("/inside"), "The Vault", "ada:secret",
                 "<!doctype html><title>Inside</title>");
    whenAsked([this](const PageQuestion& question) {
        EXPECT_EQ(question.kind, Kind::Login);
        EXPECT_EQ(question.text, QStringLiteral("The Vault"));
        EXPECT_EQ(question.origin, origin());
        page->answer(question.id, {true, QStringLiteral("ada"), QStringLiteral("secret")});
    });

    page->load(site.url(QStringLiteral("/inside")));

    EXPECT_TRUE(titleBecomes(QStringLiteral("Inside")));
}

TEST_F(WebQuestionsTest, AWrongPasswordIsAskedForAgain)
{
    site.protect(QStringLiteral("/inside"), "The Vault", "ada:secret",
                 "<!doctype html><title>Inside</title>");
    whenAsked([this](const PageQuestion& question) {
        const bool isSecond = notes.questions.size() == 2;
        page->answer(question.id, {true, QStringLiteral("ada"),
                                   isSecond ? QStringLiteral("secret") : QStringLiteral("wrong")});
    });

    page->load(site.url(QStringLiteral("/inside")));

    EXPECT_TRUE(titleBecomes(QStringLiteral("Inside")));
    EXPECT_EQ(notes.questions.size(), 2U);
}

TEST_F(WebQuestionsTest, WhoeverGivesNoNameSeesTheServersRefusal)
{
    site.protect(QStringLiteral("/inside"), "The Vault", "ada:secret",
                 "<!doctype html><title>Inside</title>");
    notes.asked = [this](const PageQuestion& question) { page->answer(question.id, {}); };

    ASSERT_TRUE(load(site.url(QStringLiteral("/inside"))));

    EXPECT_EQ(value(QStringLiteral("return document.body.innerText")),
              QStringLiteral("Not for you"));
}

TEST_F(WebQuestionsTest, AnotherLoadWithdrawsALogin)
{
    site.protect(QStringLiteral("/inside"), "The Vault", "ada:secret", "x");
    site.page(QStringLiteral("/"), Plain);
    whenAsked([this](const PageQuestion&) { page->load(site.url()); });

    page->load(site.url(QStringLiteral("/inside")));

    EXPECT_TRUE(titleBecomes(QStringLiteral("Plain")));
    EXPECT_EQ(notes.withdrawn.size(), 1U);
}

TEST_F(WebQuestionsTest, UnsavedWorkIsAskedForBeforeItIsLost)
{
    QWidget window;
    window.resize(600, 400);
    page->widget()->setParent(&window);
    page->widget()->setGeometry(0, 0, 600, 400);
    window.show();
    ASSERT_TRUE(show("<!doctype html><body style='height:100vh'>Words<script>"
                     "addEventListener('click', () => document.title = 'clicked');"
                     "addEventListener('beforeunload', e => { e.preventDefault(); e.returnValue = "
                     "'x' })</script>"));
    click(QPoint(100, 100));
    ASSERT_TRUE(titleBecomes(QStringLiteral("clicked")));

    site.page(QStringLiteral("/next"), Plain);
    whenAsked([this](const PageQuestion& question) {
        EXPECT_EQ(question.kind, Kind::LeavePage);
        page->answer(question.id, {false});
    });
    run(QStringLiteral("location = '/next'"));
    ASSERT_TRUE(spinUntil([this] { return notes.questions.size() == 1; }));
    EXPECT_EQ(value(QStringLiteral("return location.pathname")), QStringLiteral("/"));

    whenAsked([this](const PageQuestion& question) { page->answer(question.id, {true}); });
    run(QStringLiteral("location = '/next'"));

    EXPECT_TRUE(titleBecomes(QStringLiteral("Plain")));
    page->widget()->setParent(nullptr);
}

TEST_F(WebQuestionsTest, FilesAreChosenInADialog)
{
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("notes.txt")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("words");
    file.close();
    QWidget window;
    window.resize(600, 400);
    page->widget()->setParent(&window);
    page->widget()->setGeometry(0, 0, 600, 400);
    window.show();
    ASSERT_TRUE(show(
        "<!doctype html><input type=file accept='.txt,image/*' style='position:absolute;"
        "left:0;top:0;width:300px;height:300px' onchange='document.title=this.files[0].name'>"));
    QTimer chooser;
    QObject::connect(&chooser, &QTimer::timeout, [&] {
        for (QWidget* each : QApplication::topLevelWidgets())
            if (auto* dialog = qobject_cast<QFileDialog*>(each)) {
                chooser.stop();
                EXPECT_TRUE(dialog->nameFilters().front().contains(QStringLiteral("*.txt")));
                dialog->selectFile(file.fileName());
                static_cast<QDialog*>(dialog)->accept();
                return;
            }
    });
    chooser.start(20);

    click(QPoint(50, 150));

    EXPECT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("notes.txt"); }));
    page->widget()->setParent(nullptr);
}

} // namespace
} // namespace Bralto
