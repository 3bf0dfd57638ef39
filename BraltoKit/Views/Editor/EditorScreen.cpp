#include "Views/Editor/EditorScreen.h"

#include "Editor/FileKind.h"
#include "Views/Editor/CodeText.h"
#include "Views/Editor/PictureView.h"
#include "Views/Editor/ProseText.h"
#include "Views/Kit/Place.h"
#include "Views/Kit/TextButton.h"

#include <QUrl>

namespace Bralto {
namespace {

/// Beyond this, prose is set in rows of the code face: its layout knows the whole text.
constexpr qsizetype LongestProse = 400'000;

} // namespace

EditorScreen::EditorScreen(const ViewServices& services, const WorkspaceTab& tab, QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_services(services)
    , m_tab(tab)
    , m_pill(new StatusPill(services.theme, this))
{
    setFocusPolicy(Qt::NoFocus);
    connect(&document(), &EditorDocument::textChanged, this, &EditorScreen::showText);
    connect(&document(), &EditorDocument::loadErrorChanged, this, &EditorScreen::rebuild);
    connect(&document(), &EditorDocument::pathChanged, this, &EditorScreen::rebuild);
    connect(&document(), &EditorDocument::saveErrorChanged, this, &EditorScreen::showPill);
    connect(&document(), &EditorDocument::cursorChanged, this, &EditorScreen::showCursor);
    connect(&services.zoom, &Zoom::changed, this, &EditorScreen::applyZoom);
    rebuild();
}

void EditorScreen::showCursor()
{
    const TextRows::Place place{document().cursorLine() - 1, document().cursorColumn() - 1};
    if (m_code && m_code->cursor() != place) {
        // A line that isn't there leaves the cursor where it is.
        m_code->setCursor(place);
        document().setCursor(m_code->cursor().line + 1, int(m_code->cursor().offset) + 1);
    }
    showPill();
}

void EditorScreen::applyZoom()
{
    const double level = m_services.zoom.level(Zoom::Area::Editor);
    if (m_code)
        m_code->setZoom(level);
    if (m_prose)
        m_prose->setZoom(level);
}

void EditorScreen::rebuild()
{
    const bool hadFocus = m_body && m_body->hasFocus();
    delete m_body;
    m_body = nullptr;
    m_code = nullptr;
    m_prose = nullptr;

    const FileKind kind = FileKinds::of(document().path(), false);
    if (document().loadError())
        buildRefusal(*document().loadError());
    else if (kind == FileKind::Image && PictureView::canShow(document().path()))
        m_body = new PictureView(theme(), document().path(), this);
    else if (FileKinds::isViewed(kind))
        buildRefusal(tr("There is no preview for this kind of file."));
    else if (isProse(document().language()) && document().text().size() <= LongestProse)
        buildProse();
    else
        buildCode();

    setFocusProxy(m_body);
    m_body->lower();
    m_body->show();
    applyZoom();
    showText();
    place();
    if (hadFocus)
        m_body->setFocus();
}

void EditorScreen::buildRefusal(const QString& message)
{
    auto* refusal = new Place(theme(), this);
    refusal->setSymbol(QStringLiteral("doc.questionmark"));
    refusal->setTitle(message, TextRole::CardTitle);
    refusal->setText(m_tab.title());
    auto* button =
        new TextButton(theme(), TextButton::Kind::Plain, tr("Open with Default App"), refusal);
    connect(button, &TextButton::clicked, this,
            [this] { m_services.desktop.open(QUrl::fromLocalFile(document().path())); });
    refusal->addButton(button);
    refusal->setFocusProxy(button);
    m_body = refusal;
}

void EditorScreen::buildCode()
{
    m_code = new CodeText(theme(), this);
    m_body = m_code;
    m_code->setText(document().text());
    m_code->setCursor({document().cursorLine() - 1, document().cursorColumn() - 1});
    connect(m_code, &CodeText::cursorChanged, this, [this](TextRows::Place place) {
        document().setCursor(place.line + 1, int(place.offset) + 1);
    });
}

void EditorScreen::buildProse()
{
    m_prose = new ProseText(theme(), this);
    m_body = m_prose;
    connect(m_prose, &QTextEdit::cursorPositionChanged, this,
            [this] { document().setCursor(m_prose->cursorLine(), m_prose->cursorColumn()); });
}

void EditorScreen::showText()
{
    if (m_code && m_code->text() != document().text())
        m_code->setText(document().text());
    if (m_prose && m_prose->toPlainText() != document().text())
        m_prose->setProse(document().text());
    showPill();
}

void EditorScreen::showPill()
{
    m_pill->setVisible(m_code || m_prose);
    const bool hasWords = isProse(document().language());
    m_pill->setContent({.problem = document().saveError().value_or(QString()),
                        .line = document().cursorLine(),
                        .column = document().cursorColumn(),
                        .words = hasWords ? document().wordCount() : -1,
                        .language = displayName(document().language())});
    place();
}

void EditorScreen::place()
{
    if (m_body)
        m_body->setGeometry(rect());
    // The pill's own edge is one unit wide.
    m_pill->move(width() - m_pill->width() - Measure::PillInset + 1,
                 height() - m_pill->height() - Measure::PillInset + 1);
    m_pill->raise();
}

void EditorScreen::resizeEvent(QResizeEvent* /*event*/)
{
    place();
}

} // namespace Bralto
