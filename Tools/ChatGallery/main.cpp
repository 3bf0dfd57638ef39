/// @file
/// Draws sample conversations into pictures: ChatGallery <folder>. For looking at, without a
/// screen.

#include "Panes.h"
#include "Platform/SystemClock.h"
#include "Samples.h"
#include "Views/Chat/ChatComposer.h"
#include "Views/Chat/ChatTranscriptView.h"
#include "Views/Chat/ChatView.h"

#include <QApplication>
#include <QDir>
#include <QThreadPool>

using namespace Bralto;

namespace {

void settle()
{
    for (int i = 0; i < 20; ++i) {
        QThreadPool::globalInstance()->waitForDone();
        QApplication::processEvents(QEventLoop::AllEvents, 20);
    }
}

void save(QWidget& widget, const QString& path)
{
    settle();
    QImage image(widget.size() * 2, QImage::Format_RGB32);
    image.setDevicePixelRatio(2);
    widget.render(&image);
    image.save(path);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QDir folder(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("."));
    folder.mkpath(QStringLiteral("."));
    const SystemClock clock;

    const auto transcript = [&](const QString& name, const ChatTranscript& value, QSize size,
                                bool dark, double zoom = 1, const QStringList& open = {}) {
        Theme theme({dark, true}, [&] {
            SpaceTheme space;
            space.appearance = dark ? SpaceAppearance::Dark : SpaceAppearance::Light;
            return space;
        }());
        ChatTranscriptView view(theme, clock);
        view.resize(size);
        view.setZoom(zoom);
        view.setBanner({QStringLiteral("Claude Code 2.1.4"), QStringLiteral("Opus 4.5"),
                        QStringLiteral("tidal-api")});
        view.setTranscript(&value);
        view.show();
        for (const QString& key : open)
            view.toggle(key);
        save(view, folder.filePath(name + QStringLiteral(".png")));
    };

    const ChatTranscript work = Samples::work();
    for (const bool dark : {true, false}) {
        const QString suffix = dark ? QStringLiteral("-dark") : QStringLiteral("-light");
        transcript(QStringLiteral("work") + suffix, work, {860, 1000}, dark, 1,
                   Samples::openInWork());
        transcript(QStringLiteral("markdown") + suffix, Samples::markdown(), {560, 1000}, dark);
    }
    transcript(QStringLiteral("work-folded"), work, {560, 700}, true);
    transcript(QStringLiteral("tools"), Samples::tools(), {520, 520}, true);
    transcript(QStringLiteral("hostile"), Samples::hostile(), {420, 1700}, true);
    transcript(QStringLiteral("streaming"), Samples::streaming(), {560, 300}, true);
    transcript(QStringLiteral("zoom"), Samples::markdown(), {900, 900}, true, 2);
    for (const PaneSample& sample : paneSamples()) {
        for (const bool dark : {true, false}) {
            Pane pane(QStringLiteral("/p/tidal-api"), dark);
            pane.view().resize(sample.size);
            pane.view().show();
            pane.begin();
            pane.view().composer().field().setFocus();
            sample.prepare(pane);
            save(pane.view(), folder.filePath(QString::fromLatin1(sample.name) +
                                              (dark ? QStringLiteral("-dark.png")
                                                    : QStringLiteral("-light.png"))));
        }
    }
    return 0;
}
