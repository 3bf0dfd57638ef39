#pragma once

#include "Chat/ChatDraft.h"
#include "Views/Chat/ChatCard.h"

namespace Bralto {

class Field;

/// Walks through the items of a question. Every row can be clicked as well as reached by key.
class ChatQuestionCard final : public ChatCard {
    Q_OBJECT

public:
    ChatQuestionCard(Theme& theme, ChatDraft& draft, QWidget* parent);

    /// Shows the item that the draft's walk has come to.
    void refresh();

signals:
    /// The keyboard belongs to the composer again.
    void focusReturned();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addRow(const ChatQuestionFlow& flow, const ChatQuestionFlow::Row& row, bool isHighlighted);
    void addOther(const ChatQuestionFlow& flow, const ChatQuestionFlow::Row& row,
                  bool isHighlighted);
    void addSubmit(const ChatQuestionFlow& flow, const ChatQuestionFlow::Row& row,
                   bool isHighlighted);
    void clear();

    ChatDraft& m_draft;
    QList<QWidget*> m_body;
    Field* m_other = nullptr;
    std::optional<ChatQuestionFlow::Row> m_highlighted; ///< As it shows.
    bool m_isRefreshing = false;
};

} // namespace Bralto
