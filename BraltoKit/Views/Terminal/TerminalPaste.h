#pragma once

#include "Views/Terminal/PasteCard.h"

#include <QObject>
#include <QPointer>
#include <QString>

class QMimeData;

namespace Bralto {

class TerminalView;
class Theme;

/// Hands pasted and dropped data to a pane's program, and asks first where that may do harm.
class TerminalPaste final : public QObject {
    Q_OBJECT

public:
    /// Belongs to `view`.
    TerminalPaste(Theme& theme, TerminalView& view);
    ~TerminalPaste() override;

    /// Whether a terminal takes anything of the data.
    [[nodiscard]] bool canTake(const QMimeData& data) const;
    /// A picture is written to a file on a worker, whose path comes when it is there.
    void take(const QMimeData& data);
    void takeText(const QString& text);

    /// Text from a program for the clipboard.
    static void putOnClipboard(const QString& text);

signals:
    /// Something is on its way to the program.
    void pasted();

private:
    void send(const QString& text);
    void closeCard();

    Theme& m_theme;
    TerminalView& m_view;
    QPointer<PasteCard> m_card;
};

} // namespace Bralto
