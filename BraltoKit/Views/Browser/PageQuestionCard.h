#pragma once

#include "Browser/BrowserTab.h"
#include "Views/Kit/ThemedWidget.h"

#include <optional>

class QVBoxLayout;

namespace Bralto {

class Field;
class TextButton;

/// What a page or its server asks, over the page: a dialog of its scripts, a permission, a name
/// and a password. Shows the oldest of the tab's questions, and nothing without one.
class PageQuestionCard final : public ThemedWidget {
    Q_OBJECT

public:
    PageQuestionCard(Theme& theme, BrowserTab& tab, QWidget* parent);

    /// Puts itself at the top of `area`, in the parent's coordinates.
    void placeIn(const QRect& area);
    /// Where the keyboard goes while the card is open; null if it wants none.
    [[nodiscard]] QWidget* focusTarget() const;

signals:
    /// Another question is shown, or none.
    void questionShown();
    /// The user answered.
    void answered();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void showOldest();
    void build(const PageQuestion& question);
    void addFields(const PageQuestion& question, QVBoxLayout& column);
    void addButtons(const PageQuestion& question, QVBoxLayout& column);
    void answer(bool accepted);

    BrowserTab& m_tab;
    std::optional<PageQuestion> m_shown;
    QWidget* m_body = nullptr;
    Field* m_text = nullptr;
    Field* m_password = nullptr;
    TextButton* m_accept = nullptr;
    TextButton* m_refuse = nullptr;
    QRect m_area;
};

} // namespace Bralto
