#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>

class QWebEnginePage;

namespace Bralto {

/// Notices a page whose scripts never end. Asks only while somebody waits for the page, and never
/// has more than one question under way.
class WebHeartbeat final : public QObject {
    Q_OBJECT

public:
    WebHeartbeat(QWebEnginePage& page, std::chrono::milliseconds patience, QObject* parent);

    void setWanted(bool wanted); ///< Something was asked of the page that it has not answered.
    void check();                ///< The user did something to the page.
    /// While a dialog is open the page answers nothing, and that is right.
    void setPaused(bool paused);
    void restart(); ///< Another document or process.

signals:
    void respondsChanged(bool responds);

private:
    void ask();
    void setResponding(bool responds);

    QWebEnginePage& m_page;
    QTimer m_pause;    ///< Until the next question.
    QTimer m_patience; ///< Until a question counts as not answered.
    quint64 m_question = 0;
    bool m_isAsking = false;
    bool m_isWanted = false;
    bool m_isPaused = false;
    bool m_responds = true;
};

} // namespace Bralto
