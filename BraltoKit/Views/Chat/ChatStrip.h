#pragma once

#include "Chat/ChatStatusInfo.h"
#include "Views/Kit/ThemedWidget.h"

#include <QList>

namespace Bralto {

/// The line of facts below the composer: what the conversation does, and what it runs with. In a
/// narrow pane the facts that matter least go first.
class ChatStrip final : public ThemedWidget {
    Q_OBJECT

public:
    ChatStrip(Theme& theme, QWidget* parent);

    void setInfo(const ChatStatusInfo& info);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    /// One fact at the right.
    struct Fact {
        enum class Kind { Words, Mode, Effort, Model, Context, Cost };

        Kind kind = Kind::Words;
        QString symbol; ///< Empty for none.
        QString text;
        QString help;
        QRectF area{}; ///< Where it stands; of shown ones only.
    };

    [[nodiscard]] QList<Fact> facts() const;
    [[nodiscard]] double stateWidth() const;
    void fit();
    [[nodiscard]] static double widthOf(const Fact& fact);
    void paintState(QPainter& painter, const QRectF& area) const;
    void paintFact(QPainter& painter, const Fact& fact) const;

    ChatStatusInfo m_info;
    QList<Fact> m_shown;
};

} // namespace Bralto
