#pragma once

#include "Base/Scheduler.h"
#include "Editor/FileKind.h"
#include "Editor/Language.h"

#include <QDateTime>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace Bralto {

/// One open text file: loaded with a few refusals, compared with a saved baseline, written
/// atomically, saved by itself 1.2 seconds after the last edit, and reloaded when the file changed
/// and nothing would be lost. Main thread.
class EditorDocument final : public QObject {
    Q_OBJECT

public:
    /// Reads the file at `path`. `autosaveEnabled` is asked at each edit.
    EditorDocument(const QString& path, Scheduler& scheduler, std::function<bool()> autosaveEnabled,
                   QObject* parent = nullptr);

    [[nodiscard]] const QString& id() const { return m_id; }     ///< A UUID; lasts for the process.
    [[nodiscard]] const QString& path() const { return m_path; } ///< Standardised.
    /// Both are told by the name that the file had when it was opened.
    [[nodiscard]] Language language() const { return m_language; }
    [[nodiscard]] FileKind kind() const { return m_kind; }
    [[nodiscard]] const QString& text() const { return m_text; }
    [[nodiscard]] const QString& savedText() const { return m_savedText; }
    [[nodiscard]] bool hasUnsavedText() const { return m_text != m_savedText; }
    [[nodiscard]] const std::optional<QString>& loadError() const { return m_loadError; }
    [[nodiscard]] const std::optional<QString>& saveError() const { return m_saveError; }
    [[nodiscard]] int cursorLine() const { return m_cursorLine; }     ///< From 1.
    [[nodiscard]] int cursorColumn() const { return m_cursorColumn; } ///< From 1.
    /// Words of the text as the language of the text has them; walks the whole text.
    [[nodiscard]] int wordCount() const;
    /// Whether the file still exists.
    [[nodiscard]] bool fileExists() const;

    void setText(const QString& text);
    /// Gives up the edits: the text becomes the saved one.
    void revertToSaved();
    void setCursor(int line, int column);
    /// The file was renamed, or lies in a folder that was.
    void setPath(const QString& path);

    /// Writes the text as UTF-8 if it is not what the file holds; a file that has gone is written
    /// again. A failure is told by `saveError`, and the text stays unsaved.
    void save();
    /// Takes the file's text over if the file changed and nothing here is unsaved.
    void reloadIfChangedOnDisk();
    /// Saves 1.2 seconds from now, unless there is another edit before that.
    void scheduleAutosave();

signals:
    void textChanged();
    void savedTextChanged();
    void pathChanged(const QString& path);
    void loadErrorChanged();
    void saveErrorChanged();
    void cursorChanged();

private:
    void setSavedText(const QString& text);
    void setLoadError(const std::optional<QString>& error);
    void setSaveError(const std::optional<QString>& error);
    void cancelAutosave();

    QString m_id;
    QString m_path;
    Language m_language;
    FileKind m_kind;
    QString m_text;
    QString m_savedText;
    std::optional<QDateTime> m_savedModificationDate;
    std::optional<QString> m_loadError;
    std::optional<QString> m_saveError;
    int m_cursorLine = 1;
    int m_cursorColumn = 1;
    Scheduler& m_scheduler;
    quint64 m_autosave = 0;
    std::function<bool()> m_autosaveEnabled;
};

} // namespace Bralto
