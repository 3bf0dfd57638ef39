#pragma once

#include "Kovalt/Search/SearchService.h"
#include "Kovalt/TextPosition.h"
#include "Terminals/TerminalSession.h"
#include "Views/Kit/ThemedWidget.h"

#include <QString>
#include <QTimer>

#include <chrono>
#include <optional>

namespace Bralto {

class Control;
class Field;
class IconButton;
class Label;

/// Finds text in a terminal and its history while one writes what to look for. It searches in
/// slices, so that the view stays quick, and goes on as output comes.
class TerminalFindBar final : public ThemedWidget {
    Q_OBJECT

public:
    /// Interface time that one slice of a search may take.
    static constexpr std::chrono::milliseconds Slice{4};

    /// Lies over the upper right corner of `view`, hidden until `open`.
    TerminalFindBar(Theme& theme, TerminalSession& session, QWidget& view);

    /// Shows the bar and takes the keyboard. A text of one line takes the place of the last one.
    void open(const QString& text);
    void close();
    /// Goes to the next match, or to the one before. Behind the last comes the first.
    void next();
    void previous();

    /// Whether something is left to search.
    [[nodiscard]] bool isSearching() const { return m_timer.isActive(); }

    /// "3 of 42", or why there is none; empty while nothing is looked for.
    [[nodiscard]] static QString status(const Kovalt::SearchService& search,
                                        const std::optional<Kovalt::SearchError>& error);
    /// The row of the ring that comes to the top so that another one can be seen: the same top if
    /// it can be seen already, else it comes to the middle.
    [[nodiscard]] static int topRowShowing(int row, int topRow, int rows);

signals:
    /// Matches, or the current one, are others.
    void hitsChanged();
    /// The keyboard goes back to the terminal.
    void closed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void place();
    [[nodiscard]] Control* addSwitch(const QString& sign, const QString& tip);
    void placeSwitches();
    [[nodiscard]] Kovalt::SearchQuery query() const;
    void search();
    void step();
    void followOutput();
    void goTo(const std::optional<Kovalt::TextRange>& match);
    void showCurrent(const std::optional<Kovalt::TextRange>& match);
    void showStatus();

    TerminalSession& m_session;
    QWidget& m_view;
    Field* m_field;
    Control* m_caseSensitive;
    Control* m_wholeWord;
    Control* m_regularExpression;
    Label* m_status;
    QTimer m_timer; ///< Runs only while something is left to search.
    std::optional<Kovalt::SearchError> m_error;
    bool m_awaitsMatch = false; ///< The nearest match is still to be gone to.
    std::size_t m_shownCount = 0;
    Kovalt::TextPosition m_origin; ///< Behind where one was: what is nearest above is shown.
};

} // namespace Bralto
