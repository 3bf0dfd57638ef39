#pragma once

#include "Browser/PageEngine.h"

#include <QObject>
#include <QTimer>

#include <deque>

namespace Bralto {

/// Carries what a page writes to its console to the delegate, some at a time: a page that writes
/// without end costs the window little, and only the newest of it is told.
class WebConsole final : public QObject {
    Q_OBJECT

public:
    WebConsole(PageDelegate& delegate, QObject* parent);

    void add(const QString& level, const QString& text);
    /// What the engine itself has to say, such as what a server's rules forbid. The rest of what
    /// comes this way the page's own script has told better.
    void addNative(int level, const QString& text, int line, const QString& source);
    /// The next error that the engine tells is one that the page's script could not see.
    void expectMuted() { m_expectsMuted = true; }
    /// Tells what waits, at once.
    void flush();

private:
    struct Entry {
        QString level;
        QString text;
    };
    PageDelegate& m_delegate;
    std::deque<Entry> m_entries;
    QTimer m_timer;
    bool m_expectsMuted = false;
};

} // namespace Bralto
