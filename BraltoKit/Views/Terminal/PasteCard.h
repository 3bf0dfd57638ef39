#pragma once

#include "Views/Kit/ThemedWidget.h"

#include <QString>
#include <QStringList>

namespace Bralto {

/// Asks before text with line ends goes to a program that takes each line as a command. Return
/// pastes, Escape doesn't.
class PasteCard final : public ThemedWidget {
    Q_OBJECT

public:
    /// Lies over the lower end of `view` and takes the keyboard.
    PasteCard(Theme& theme, const QString& text, QWidget& view);

    /// The first lines of the text as the card shows them; a last line says how many follow.
    [[nodiscard]] static QStringList preview(const QString& text);
    /// Lines that the program would get, at least 1.
    [[nodiscard]] static int lineCount(const QString& text);

signals:
    void accepted();
    void refused();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void place();

    QWidget& m_view;
    QString m_title;
    QStringList m_preview;
};

} // namespace Bralto
