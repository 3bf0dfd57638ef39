#pragma once

#include "Chat/ChatMessage.h"

#include <QMap>
#include <QSet>

namespace Bralto {

/// The keys that a card above the composer understands.
struct ChatKey {
    enum class Kind { Up, Down, Return, Tab, Escape, Digit };

    Kind kind = Kind::Return;
    int digit = 0; ///< 1 to 9, of `Digit` only.
    bool shift = false;
};

/// A walk through the items of one question.
class ChatQuestionFlow {
public:
    struct Row {
        enum class Kind { Option, Other, Submit };

        Kind kind = Kind::Option;
        qsizetype option = 0; ///< Of `Option` only.

        bool operator==(const Row&) const = default;
    };

    enum class Outcome {
        NotTaken, ///< The key means nothing here.
        Taken,
        Finished, ///< The last item is answered; `answers` has the outcome.
    };

    explicit ChatQuestionFlow(ChatQuestion question);

    [[nodiscard]] const ChatQuestion& question() const { return m_question; }
    [[nodiscard]] qsizetype step() const { return m_step; }
    /// From question text to answer; an item that was left empty isn't in it.
    [[nodiscard]] const QMap<QString, QString>& answers() const { return m_answers; }
    [[nodiscard]] bool isPicked(const QString& label) const { return m_picked.contains(label); }
    [[nodiscard]] qsizetype pickedCount() const { return m_picked.size(); }
    [[nodiscard]] const QString& other() const { return m_other; }
    [[nodiscard]] bool showsOther() const { return m_showsOther; }
    [[nodiscard]] bool isAnswered() const { return m_isAnswered; }

    /// The current item; null past the end.
    [[nodiscard]] const ChatQuestion::Item* item() const;
    /// One for each option, then the free text, then, with several choices, the way on.
    [[nodiscard]] std::vector<Row> rows() const;
    [[nodiscard]] std::optional<Row> highlightedRow() const;
    [[nodiscard]] bool canAdvance() const;

    void setOther(const QString& text) { m_other = text; }
    /// Opens the field for free text and highlights its row.
    void openOther();
    void setHighlight(qsizetype row);

    Outcome choose(const QString& label);
    Outcome advance();
    Outcome handle(const ChatKey& key);
    /// What Return does on a row, as a click does.
    Outcome activate(const Row& row);

    bool operator==(const ChatQuestionFlow&) const = default;

private:
    [[nodiscard]] QString answer() const;

    ChatQuestion m_question;
    qsizetype m_step = 0;
    QMap<QString, QString> m_answers;
    QSet<QString> m_picked;
    QString m_other;
    bool m_showsOther = false;
    qsizetype m_highlight = 0;
    bool m_isAnswered = false;
};

} // namespace Bralto
