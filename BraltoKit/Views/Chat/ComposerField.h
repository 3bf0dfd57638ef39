#pragma once

#include "Chat/ChatDraft.h"
#include "Views/Kit/Theme.h"

#include <QTextEdit>

namespace Bralto {

/// The field in which a turn is written. It asks the draft first what a key means, and grows with
/// its text to eight lines.
class ComposerField final : public QTextEdit {
    Q_OBJECT

public:
    ComposerField(Theme& theme, ChatDraft& draft, QWidget* parent);

    /// The height that the text has, at most eight lines.
    [[nodiscard]] int textHeight() const;
    void setZoom(double zoom);

    /// Attaches what was dropped or pasted as soon as it is read.
    void attach(const QMimeData& source);

signals:
    void focusChanged(bool hasFocus);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;

private:
    void applyTheme();
    void applyLineHeight();
    void fitHeight();
    void report();
    void replaceText(const QString& text, qsizetype position);

    Theme& m_theme;
    ChatDraft& m_draft;
    double m_zoom = 1;
    bool m_isReplacing = false;
};

} // namespace Bralto
