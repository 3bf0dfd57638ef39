#pragma once

/// @file
/// What the program needs of a page engine, and what it is told by one. Plain interfaces without
/// signals, since the engine lies in a library that is loaded when the first page is wanted.

#include "Base/Expected.h"

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QSize>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>

class QPoint;
class QWidget;

namespace Bralto {

/// A function body that runs in the main frame, in the world of the page's own scripts. It may
/// `await`.
struct PageScript {
    QString body;
    QJsonObject arguments; ///< The function's parameters by name, which are identifiers.
};

/// Why a script gave no value.
struct PageScriptError {
    enum class Kind {
        Exception,      ///< The script threw or its promise was rejected: `name` and `message`.
        Unserialisable, ///< What it returned is no plain data.
        Navigated,      ///< The page went elsewhere in the middle of the call.
        Asking, ///< The page waits for the user's answer to a dialog: `message` is its text.
        TimedOut,
        Ended, ///< The page's process is gone, or the engine with it.
    };

    Kind kind = Kind::Exception;
    QString name = {}; ///< Such as "SyntaxError"; of an exception only.
    QString message = {};

    bool operator==(const PageScriptError&) const = default;
};

/// A value of `undefined` is `QJsonValue::Undefined`.
using PageScriptResult = Expected<QJsonValue, PageScriptError>;

enum class PageExtent { Visible, Whole };

/// Why there is no picture.
enum class PagePictureError { NothingDrawn, Unreadable, Unencodable };

/// A PNG of at most `PagePicture::fitted`.
using PagePictureResult = Expected<QByteArray, PagePictureError>;

namespace PagePicture {

inline constexpr int LargestWidth = 1280;
inline constexpr int LargestHeight = 7800;

/// `size` made no larger than a picture may be, in its own proportions; at least 1 each way. An
/// empty size stays empty.
[[nodiscard]] QSize fitted(QSize size);

} // namespace PagePicture

/// Why a page could not be shown.
struct PageLoadError {
    enum class Kind { Failed, Cancelled, Certificate };

    Kind kind = Kind::Failed;
    QString text = {}; ///< In the user's words, one line.

    bool operator==(const PageLoadError&) const = default;
};

/// Something that a page or its server asks the user. It is open until `PageEngine::answer`, or
/// until `PageDelegate::pageWithdrew`.
struct PageQuestion {
    enum class Kind {
        Alert,      ///< Only to be seen.
        Confirm,    ///< Yes or no.
        Prompt,     ///< A text; `suggestion` stands in the field.
        LeavePage,  ///< Whether unsaved work in the page may be lost.
        Permission, ///< `text` is what it wants to do: "use your camera".
        Login,      ///< A name and a password for `text`, the server's realm.
    };

    quint64 id = 0; ///< Of this engine; never 0.
    Kind kind = Kind::Alert;
    QString origin = {}; ///< Who asks, such as "http://localhost:3000".
    QString text = {};   ///< The page's own words: data, of any length.
    QString suggestion = {};

    /// While it is open the page's scripts stand still.
    [[nodiscard]] bool blocksPage() const
    {
        return kind != Kind::Permission && kind != Kind::Login;
    }

    bool operator==(const PageQuestion&) const = default;
};

struct PageAnswer {
    bool isAccepted = false; ///< What every question gets that nobody answers: no.
    QString text = {};       ///< Of a prompt; of a login, the name.
    QString password = {};

    bool operator==(const PageAnswer&) const = default;
};

/// What lies under the pointer when a page's menu is asked for.
struct PageContext {
    QUrl link = {};         ///< Empty if there is none.
    QUrl image = {};        ///< Empty if there is none.
    QString selection = {}; ///< The selected text.
    bool isEditable = false;
    bool canUndo = false;
    bool canRedo = false;
    bool canCut = false;
    bool canCopy = false;
    bool canPaste = false;

    bool operator==(const PageContext&) const = default;
};

enum class PageAction { Undo, Redo, Cut, Copy, Paste, PasteAsPlainText, SelectAll, CopyImage };

/// Is told what happens to a page. Main thread.
class PageDelegate {
public:
    virtual ~PageDelegate() = default;

    /// Title, address, history, loading or progress are others now.
    virtual void pageChanged() = 0;
    /// The new page took the old one's place.
    virtual void pageCommitted() = 0;
    virtual void pageFailed(const PageLoadError& error) = 0;
    /// `level` is "log", "info", "warn", "error" or "debug".
    virtual void pageLogged(const QString& level, const QString& text) = 0;
    /// A link with a target, or `window.open`.
    virtual void pageWantsNewPage(const QUrl& url) = 0;
    virtual void pageAsked(const PageQuestion& question) = 0;
    virtual void pageWithdrew(quint64 question) = 0;
    /// `position` is global.
    virtual void pageWantsMenu(const PageContext& context, const QPoint& position) = 0;
    virtual void pageHovered(const QUrl& link) = 0; ///< Empty: no link.
    virtual void pageWantsFullScreen(bool wants) = 0;
    /// A PNG of at least 16 x 16; empty if the page has none.
    virtual void pageIconChanged(const QByteArray& png) = 0;
    /// The page's process crashed or was killed. A load or reload starts another.
    virtual void pageEnded() = 0;
    /// Whether the page still takes events; false after some seconds of standing still.
    virtual void pageResponds(bool responds) = 0;
};

/// One page. Main thread. Every `done` is called exactly once, in a later turn of the event loop
/// or while the engine is being destroyed.
class PageEngine {
public:
    PageEngine() = default;
    virtual ~PageEngine() = default;
    PageEngine(const PageEngine&) = delete;
    PageEngine& operator=(const PageEngine&) = delete;

    // Navigation
    virtual void load(const QUrl& url) = 0; ///< Fails after 60 seconds without an answer.
    virtual void goBack() = 0;
    virtual void goForward() = 0;
    virtual void reload() = 0;
    virtual void stop() = 0;
    /// Loads the page that failed for its certificate, which is taken for this host from then on,
    /// as long as the program runs.
    virtual void visitDespiteCertificate() = 0;

    [[nodiscard]] virtual QUrl url() const = 0;
    [[nodiscard]] virtual QString title() const = 0;
    [[nodiscard]] virtual bool canGoBack() const = 0;
    [[nodiscard]] virtual bool canGoForward() const = 0;
    [[nodiscard]] virtual bool isLoading() const = 0;
    [[nodiscard]] virtual double progress() const = 0; ///< 0 to 1.

    // Scripts and pictures
    /// A navigation, the page's end, a blocking question or the time-out ends the call with its
    /// error; the script itself may go on.
    virtual void call(const PageScript& script, std::chrono::milliseconds timeout,
                      std::function<void(PageScriptResult)> done) = 0;
    /// Also of a page that is not on the screen.
    virtual void picture(PageExtent extent, std::function<void(PagePictureResult)> done) = 0;

    // What the user does
    virtual void setZoomFactor(double factor) = 0;
    /// Whether pages that have a dark look show it.
    virtual void setDark(bool dark) = 0;
    enum class FindDirection { Forward, Backward };
    /// Marks what is found; an empty text ends the search. `active` counts from 1.
    virtual void find(const QString& text, FindDirection direction,
                      std::function<void(int active, int count)> done) = 0;
    virtual void perform(PageAction action) = 0;
    /// Ends the page's full screen, which it tells as any other end of it.
    virtual void leaveFullScreen() = 0;
    virtual void answer(quint64 question, const PageAnswer& answer) = 0;
    /// Ends a page that no longer responds, with its process.
    virtual void terminate() = 0;
    /// Opens the page's developer tools in a window of their own.
    virtual void inspect() = 0;

    // Place
    /// Shows the page; the engine's own. Whoever shows it makes it a child and gives it back
    /// (without a parent) before that parent is destroyed.
    [[nodiscard]] virtual QWidget* widget() const = 0;
    [[nodiscard]] virtual QSize size() const = 0;
    virtual void resize(QSize size) = 0;
    [[nodiscard]] virtual bool isPlaced() const = 0; ///< Whether the widget has a parent.
};

/// Makes the pages of one project, which share cookies and cache. Outlives them.
class PageEngines {
public:
    virtual ~PageEngines() = default;

    /// Null if there is no engine. `delegate` outlives the page.
    [[nodiscard]] virtual std::unique_ptr<PageEngine> make(PageDelegate& delegate) = 0;
    /// Cookies, cache, storage and visited links of the project.
    virtual void clearBrowsingData(std::function<void()> done) = 0;
};

} // namespace Bralto
