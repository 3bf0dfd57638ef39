#include "Tests/Support/WebHarness.h"

#include <QApplication>
#include <QFileDialog>
#include <QMouseEvent>
#include <QWidget>

namespace Bralto {
namespace {

using Kind = PageQuestion::Kind;

constexpr auto Plain = "<!doctype html><title>Plain</title>Hello";

class WebQuestionsTest : public WebTest {
protected:
    /// Has the page run `script` on its own and waits until it asks something.
    PageQuestion questionOf(const QString& script)
    {
        const auto before = notes.questions.size();
        page->call({QStringLiteral("setTimeout(() => { %1 })").arg(script), {}},
                   std::chrono::seconds(5), [](const PageScriptResult&) {});
        if (!spinUntil([&] { return notes.questions.size() > before; })) {
            ADD_FAILURE() << "Nothing was asked";
            return {};
        }
        return notes.questions.back();
    }
    QString origin() const { return QStringLiteral("http://127.0.0.1:%1").arg(site.port()); }
};

TEST_F(WebQuestionsTest, AnAlertWaitsUntilItIsSeen)
{
    ASSERT_TRUE(show(Plain));

    const PageQuestion question = questionOf(QStringLiteral("alert('look'); document.title = 'seen'"));

    EXPECT_EQ(question.kind, Kind::Alert);
    EXPECT_EQ(question.text, QStringLiteral("look"));
    EXPECT_EQ(question.origin, origin());
    EXPECT_NE(question.id, 0U);
    EXPECT_EQ(page->title(), QStringLiteral("Plain"));
    page->answer(question.id, {});
    EXPECT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("seen"); }));
    EXPECT_TRUE(notes.withdrawn.empty());
}

TEST_F(WebQuestionsTest, AConfirmationGivesTheAnswer)
{
    ASSERT_TRUE(show(Plain));
    for (const bool yes : {true, false}) {
        const PageQuestion question = questionOf(QStringLiteral("document.title = confirm('Sure?')"));
        EXPECT_EQ(question.kind, Kind::Confirm);

        page->answer(question.id, {yes});

        EXPECT_TRUE(spinUntil([&] {
            return page->title() == (yes ? QStringLiteral("true") : QStringLiteral("false"));
        }));
    }
}

TEST_F(WebQuestionsTest, APromptGivesTheText)
{
    ASSERT_TRUE(show(Plain));
    const PageQuestion question = questionOf(QStringLiteral("document.title = prompt('Name?', 'Ada')"));
    EXPECT_EQ(question.kind, Kind::Prompt);
    EXPECT_EQ(question.suggestion, QStringLiteral("Ada"));

    page->answer(question.id, {true, QStringLiteral("Grace")});

    EXPECT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("Grace"); }));
    const PageQuestion again = questionOf(QStringLiteral("document.title = prompt('Name?', 'Ada')"));
    page->answer(again.id, {});
    EXPECT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("null"); }));
}

TEST_F(WebQuestionsTest, ACallThatADialogStopsEndsWithItsText)
{
    ASSERT_TRUE(show(Plain));

    const PageScriptError stopped = error(QStringLiteral("alert('look'); return 1"));

    EXPECT_EQ(stopped, (PageScriptError{PageScriptError::Kind::Asking, {}, QStringLiteral("look")}));
    EXPECT_EQ(error(QStringLiteral("return 2")).kind, PageScriptError::Kind::Asking);
    EXPECT_EQ(error(QStringLiteral("return 2")).message, QStringLiteral("look"));
    page->answer(notes.questions.front().id, {});
    EXPECT_EQ(value(QStringLiteral("return 3")), 3);
}

TEST_F(WebQuestionsTest, APageThatAsksHasAPictureOfWhatItShowedLast)
{
    ASSERT_TRUE(show("<!doctype html><body style='background:#0f0'>"));
    ASSERT_EQ(picture(PageExtent::Visible).pixelColor(5, 5), QColor(0, 255, 0));
    questionOf(QStringLiteral("alert('look')"));

    EXPECT_EQ(picture(PageExtent::Visible).pixelColor(5, 5), QColor(0, 255, 0));
    EXPECT_EQ(picture(PageExtent::Whole).pixelColor(5, 5), QColor(0, 255, 0));
}

TEST_F(WebQuestionsTest, ALoadWithdrawsWhatThePageAsked)
{
    ASSERT_TRUE(show(Plain));
    site.page(QStringLiteral("/next"), "<!doctype html><title>Next</title>");
    const PageQuestion question = questionOf(QStringLiteral("alert('look')"));

    ASSERT_TRUE(load(site.url(QStringLiteral("/next"))));

    EXPECT_EQ(notes.withdrawn, std::vector<quint64>{question.id});
    EXPECT_EQ(page->title(), QStringLiteral("Next"));
    page->answer(question.id, {true});
}

TEST_F(WebQuestionsTest, TheEndOfTheProcessWithdrawsWhatThePageAsked)
{
    ASSERT_TRUE(show(Plain));
    const PageQuestion question = questionOf(QStringLiteral("confirm('look')"));

    page->terminate();

    ASSERT_TRUE(spinUntil([this] { return notes.ends == 1; }));
    EXPECT_EQ(notes.withdrawn, std::vector<quint64>{question.id});
    ASSERT_TRUE(show(Plain));
}

TEST_F(WebQuestionsTest, AnEngineMayGoWhileItsPageAsks)
{
    ASSERT_TRUE(show(Plain));
    questionOf(QStringLiteral("confirm('look')"));

    page.reset();

    EXPECT_EQ(notes.withdrawn.size(), 1U);
    page = engines.make(notes);
    ASSERT_TRUE(show(Plain));
    EXPECT_EQ(value(QStringLiteral("return 1")), 1);
}

TEST_F(WebQuestionsTest, AnEngineMayGoInTheMomentItsPageAsks)
{
    ASSERT_TRUE(show(Plain));
    notes.asked = [this](const PageQuestion&) { page.reset(); };

    questionOf(QStringLiteral("prompt('look')"));

    EXPECT_EQ(page, nullptr);
    EXPECT_EQ(notes.withdrawn.size(), 1U);
}

TEST_F(WebQuestionsTest, AnAnswerMayComeAtOnce)
{
    ASSERT_TRUE(show(Plain));
    notes.asked = [this](const PageQuestion& question) { page->answer(question.id, {true}); };

    questionOf(QStringLiteral("document.title = confirm('now')"));

    EXPECT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("true"); }));
}

TEST_F(WebQuestionsTest, TwoPagesMayAskAtOnce)
{
    PageNotes otherNotes;
    const std::unique_ptr<PageEngine> other = engines.make(otherNotes);
    ASSERT_TRUE(show(Plain));
    other->load(site.url(QStringLiteral("/"), QStringLiteral("localhost")));
    ASSERT_TRUE(spinUntil([&] { return !other->isLoading(); }));
    const PageQuestion first = questionOf(QStringLiteral("document.title = confirm('first')"));
    other->call({QStringLiteral("document.title = confirm('second')"), {}}, std::chrono::seconds(5),
                [](const PageScriptResult&) {});
    ASSERT_TRUE(spinUntil([&] { return otherNotes.questions.size() == 1; }));

    page->answer(first.id, {true});
    other->answer(otherNotes.questions.front().id, {true});

    EXPECT_TRUE(spinUntil([&] {
        return page->title() == QStringLiteral("true") && other->title() == QStringLiteral("true");
    }));
}

TEST_F(WebQuestionsTest, WhoeverIsNotAllowedMayNot)
{
    ASSERT_TRUE(show(Plain));
    const QString ask = QStringLiteral(
        "navigator.geolocation.getCurrentPosition(() => {}, e => document.title = 'refused ' + e.code)");

    const PageQuestion question = questionOf(ask);

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

    const PageQuestion question = questionOf(QStringLiteral(
        "navigator.mediaDevices.getUserMedia({video: true}).catch(e => document.title = e.name)"));

    EXPECT_EQ(question.text, QStringLiteral("use your camera"));
    page->answer(question.id, {});
    EXPECT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("NotAllowedError"); }));
}

TEST_F(WebQuestionsTest, NotificationsAndTheScreenAreNobodys)
{
    ASSERT_TRUE(show(Plain));

    EXPECT_EQ(value(QStringLiteral("return await Notification.requestPermission()")),
              QStringLiteral("denied"));
    EXPECT_EQ(value(QStringLiteral("return await navigator.mediaDevices.getDisplayMedia({video: true})"
                                   ".then(() => 'shown', () => 'refused')")),
              QStringLiteral("refused"));
    EXPECT_TRUE(notes.questions.empty());
}

TEST_F(WebQuestionsTest, ANavigationWithdrawsAPermission)
{
    ASSERT_TRUE(show(Plain));
    const PageQuestion question =
        questionOf(QStringLiteral("navigator.geolocation.getCurrentPosition(() => {})"));

    ASSERT_TRUE(show(Plain, QStringLiteral("/next")));

    EXPECT_EQ(notes.withdrawn, std::vector<quint64>{question.id});
}

TEST_F(WebQuestionsTest, AServerMayAskForAName)
{
    site.protect(QStringLiteral("/inside"), "The Vault", "ada:secret", "<!doctype html><title>Inside</title>");
    page->load(site.url(QStringLiteral("/inside")));
    ASSERT_TRUE(spinUntil([this] { return notes.questions.size() == 1; }));
    const PageQuestion question = notes.questions.front();
    EXPECT_EQ(question.kind, Kind::Login);
    EXPECT_EQ(question.text, QStringLiteral("The Vault"));
    EXPECT_EQ(question.origin, origin());

    page->answer(question.id, {true, QStringLiteral("ada"), QStringLiteral("secret")});

    EXPECT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("Inside"); }));
}

TEST_F(WebQuestionsTest, WhoeverGivesNoNameSeesTheServersRefusal)
{
    site.protect(QStringLiteral("/inside"), "The Vault", "ada:secret", "<!doctype html><title>Inside</title>");
    notes.asked = [this](const PageQuestion& question) { page->answer(question.id, {}); };

    ASSERT_TRUE(load(site.url(QStringLiteral("/inside"))));

    EXPECT_EQ(value(QStringLiteral("return document.body.innerText")), QStringLiteral("Not for you"));
}

TEST_F(WebQuestionsTest, AnotherLoadWithdrawsALogin)
{
    site.protect(QStringLiteral("/inside"), "The Vault", "ada:secret", "x");
    page->load(site.url(QStringLiteral("/inside")));
    ASSERT_TRUE(spinUntil([this] { return notes.questions.size() == 1; }));

    ASSERT_TRUE(show(Plain));

    EXPECT_EQ(notes.withdrawn.size(), 1U);
    EXPECT_EQ(page->title(), QStringLiteral("Plain"));
}

TEST_F(WebQuestionsTest, UnsavedWorkIsAskedForBeforeItIsLost)
{
    QWidget window;
    window.resize(600, 400);
    page->widget()->setParent(&window);
    page->widget()->setGeometry(0, 0, 600, 400);
    window.show();
    ASSERT_TRUE(show("<!doctype html><body style='height:100vh'><script>"
                     "addEventListener('beforeunload', e => { e.preventDefault(); e.returnValue = 'x' })</script>"));
    click(QPoint(100, 100));

    site.page(QStringLiteral("/next"), Plain);
    value(QStringLiteral("setTimeout(() => { location = '/next' })"));
    ASSERT_TRUE(spinUntil([this] { return notes.questions.size() == 1; }));
    EXPECT_EQ(notes.questions.front().kind, Kind::LeavePage);
    page->answer(notes.questions.front().id, {false});
    EXPECT_EQ(value(QStringLiteral("return location.pathname")), QStringLiteral("/"));
    value(QStringLiteral("setTimeout(() => { location = '/next' })"));
    ASSERT_TRUE(spinUntil([this] { return notes.questions.size() == 2; }));
    page->answer(notes.questions.back().id, {true});

    EXPECT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("Plain"); }));
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
    ASSERT_TRUE(show("<!doctype html><input type=file accept='.txt,image/*' style='position:absolute;"
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
