#include "Editor/EditorDocument.h"

#include "Base/Paths.h"
#include "Base/Uuid.h"
#include "Editor/TextFile.h"

#include <QFileInfo>
#include <QTextBoundaryFinder>

namespace Bralto {

namespace {

constexpr std::chrono::milliseconds AutosaveDelay{1200};

std::optional<QDateTime> modificationDate(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return std::nullopt;
    return info.lastModified();
}

} // namespace

EditorDocument::EditorDocument(const QString& path, Scheduler& scheduler,
                               std::function<bool()> autosaveEnabled, QObject* parent)
    : QObject(parent)
    , m_id(newUuid())
    , m_path(Paths::standardised(path))
    , m_language(detectLanguage(m_path))
    , m_kind(FileKinds::of(m_path, false))
    , m_scheduler(scheduler)
    , m_autosaveEnabled(std::move(autosaveEnabled))
{
    if (FileKinds::isViewed(m_kind))
        return;
    // The date is taken first: of a file that changes meanwhile, the next look reads it again.
    m_savedModificationDate = modificationDate(m_path);
    TextFile::Content content = TextFile::read(m_path);
    m_text = std::move(content.text);
    m_savedText = m_text;
    m_loadError = std::move(content.error);
}

int EditorDocument::wordCount() const
{
    int count = 0;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Word, m_text);
    do {
        if (finder.boundaryReasons().testFlag(QTextBoundaryFinder::StartOfItem))
            ++count;
    } while (finder.toNextBoundary() >= 0);
    return count;
}

bool EditorDocument::fileExists() const
{
    return QFileInfo::exists(m_path);
}

void EditorDocument::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    emit textChanged();
}

void EditorDocument::revertToSaved()
{
    cancelAutosave();
    setText(m_savedText);
}

void EditorDocument::setCursor(int line, int column)
{
    if (line == m_cursorLine && column == m_cursorColumn)
        return;
    m_cursorLine = line;
    m_cursorColumn = column;
    emit cursorChanged();
}

void EditorDocument::setPath(const QString& path)
{
    const QString standardised = Paths::standardised(path);
    if (standardised == m_path)
        return;
    m_path = standardised;
    emit pathChanged(m_path);
}

void EditorDocument::save()
{
    // What was refused has no text of its own: writing it would empty the file.
    if (FileKinds::isViewed(m_kind) || m_loadError)
        return;
    cancelAutosave();
    if (!hasUnsavedText() && fileExists())
        return;
    const QString text = m_text;
    if (const auto error = TextFile::write(m_path, text)) {
        setSaveError(error);
        return;
    }
    m_savedModificationDate = modificationDate(m_path);
    setSavedText(text);
    setSaveError(std::nullopt);
}

void EditorDocument::reloadIfChangedOnDisk()
{
    if (FileKinds::isViewed(m_kind) || hasUnsavedText())
        return;
    const auto date = modificationDate(m_path);
    if (!date || date == m_savedModificationDate)
        return;
    const TextFile::Content content = TextFile::read(m_path);
    m_savedModificationDate = date;
    const bool isNew = content.text != m_text;
    // Both at once: whoever hears of one of them must not see an unsaved document.
    m_text = content.text;
    m_savedText = content.text;
    setLoadError(content.error);
    if (isNew) {
        emit savedTextChanged();
        emit textChanged();
    }
}

void EditorDocument::scheduleAutosave()
{
    cancelAutosave();
    if (!m_autosaveEnabled() || !hasUnsavedText())
        return;
    m_autosave = m_scheduler.after(AutosaveDelay, this, [this] {
        m_autosave = 0;
        save();
    });
}

void EditorDocument::cancelAutosave()
{
    m_scheduler.cancel(m_autosave);
    m_autosave = 0;
}

void EditorDocument::setSavedText(const QString& text)
{
    if (text == m_savedText)
        return;
    m_savedText = text;
    emit savedTextChanged();
}

void EditorDocument::setLoadError(const std::optional<QString>& error)
{
    if (error == m_loadError)
        return;
    m_loadError = error;
    emit loadErrorChanged();
}

void EditorDocument::setSaveError(const std::optional<QString>& error)
{
    if (error == m_saveError)
        return;
    m_saveError = error;
    emit saveErrorChanged();
}

} // namespace Bralto
