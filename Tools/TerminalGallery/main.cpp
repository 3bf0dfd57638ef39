/// @file
/// Draws terminals with sample output into pictures, without a screen:
///
///     QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR=2 terminal-gallery FOLDER
///
/// One PNG a scene and appearance, one of each theme, and what lies over text. For looking at.

#include "Tests/Support/TerminalViewHarness.h"
#include "Tools/TerminalGallery/Scenes.h"

#include <QApplication>
#include <QTextStream>

using namespace Bralto;

namespace {

constexpr QSize Size{24 + 80 * 7 + 12, 10 + 25 * 18};

/// A view on a session, and where its pictures go.
class Shot {
public:
    Shot(QString folder, bool dark)
        : m_folder(std::move(folder))
        , m_harness(Size)
    {
        SpaceTheme space = m_harness.views.theme.space();
        space.appearance = dark ? SpaceAppearance::Dark : SpaceAppearance::Light;
        m_harness.views.theme.setSpace(space);
        m_harness.show();
        m_harness.view->setFocus();
    }

    [[nodiscard]] TerminalViewHarness& harness() { return m_harness; }
    void write(const std::string& output)
    {
        m_harness.write(output);
        m_harness.settle();
    }
    bool save(const QString& name)
    {
        m_harness.settle();
        const QString path = m_folder + '/' + name + ".png";
        const bool saved = m_harness.picture().save(path);
        QTextStream(stdout) << (saved ? "" : "could not write ") << path << Qt::endl;
        return saved;
    }

private:
    QString m_folder;
    TerminalViewHarness m_harness;
};

bool takeScenes(const QString& folder)
{
    bool saved = true;
    for (const bool dark : {true, false}) {
        for (const TerminalScene& scene : terminalScenes()) {
            Shot shot(folder, dark);
            shot.write(scene.output);
            saved = shot.save(QString(scene.name) + (dark ? "-dark" : "-light")) && saved;
        }
    }
    return saved;
}

bool takeThemes(const QString& folder)
{
    bool saved = true;
    for (const PaneTheme& theme : PaneTheme::all()) {
        Shot shot(folder, true);
        PaneStyle style;
        style.theme = theme.id;
        shot.harness().view->setStyle(style);
        shot.write(shellSession());
        saved = shot.save(QString("theme-") + theme.id) && saved;
    }
    return saved;
}

/// Selection, hits, cursors, an unfinished text, a long history.
bool takeOverlays(const QString& folder)
{
    bool saved = true;
    for (const bool dark : {true, false}) {
        const QString suffix = dark ? "-dark" : "-light";
        Shot shot(folder, dark);
        TerminalSession& session = shot.harness().session;
        for (int i = 0; i < 4; ++i)
            shot.write("\033]133;A\007" + shellSession() + "\r\n");
        session.search().setQuery({.text = "store"});
        while (session.search().step(1000)) {
        }
        (void)session.search().previous();
        const int top = session.terminal().getTopVisibleRow();
        session.selection().start(Kovalt::SelectionMode::Character,
                                  {{10, top + 10}, Kovalt::CellSide::Left});
        session.selection().extend({{30, top + 12}, Kovalt::CellSide::Right});
        shot.harness().view->setPreedit(QString::fromUtf8("にほん"), 2);
        saved = shot.save("overlays" + suffix) && saved;
        shot.harness().view->setPreedit({}, 0);
        for (const char* shape : {"2", "4", "6"}) {
            shot.write(std::string("\033[") + shape + " q");
            saved = shot.save(QString("cursor-") + shape + suffix) && saved;
        }
        shot.harness().view->clearFocus();
        saved = shot.save("cursor-outline" + suffix) && saved;
    }
    return saved;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 2) {
        QTextStream(stderr) << "terminal-gallery FOLDER" << Qt::endl;
        return 2;
    }
    const QApplication application(argc, argv);
    const QString folder = QString::fromLocal8Bit(argv[1]);
    const bool scenes = takeScenes(folder);
    const bool themes = takeThemes(folder);
    const bool overlays = takeOverlays(folder);
    return scenes && themes && overlays ? 0 : 1;
}
