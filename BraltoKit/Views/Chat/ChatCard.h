#pragma once

#include "Views/Kit/ThemedWidget.h"
#include "Views/Kit/Tokens.h"

class QHBoxLayout;
class QVBoxLayout;

namespace Bralto {

/// A card above the composer that waits for the user: a symbol, a sentence, a quiet hint at the
/// right, and below them whatever it asks.
class ChatCard : public ThemedWidget {
    Q_OBJECT

public:
    ChatCard(Theme& theme, const QString& symbol, QWidget* parent);

    void setTitle(const QString& title);
    void setHint(const QString& hint);

protected:
    /// Where the body goes.
    [[nodiscard]] QVBoxLayout& column() const { return *m_column; }
    void setSymbol(const QString& symbol);

    void paintEvent(QPaintEvent* event) override;

private:
    QString m_symbol;
    QString m_title;
    QString m_hint;
    QVBoxLayout* m_column;
};

} // namespace Bralto
