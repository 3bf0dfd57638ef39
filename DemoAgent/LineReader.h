#pragma once

#include <QByteArray>

namespace DemoAgent {

/// Cuts what arrives into lines. A last line without a line feed comes with `finish()`.
class LineReader {
public:
    void feed(const QByteArray& bytes) { m_buffer += bytes; }

    /// Takes the next complete line, without its line feed. False when there is none.
    bool next(QByteArray& line)
    {
        const qsizetype end = m_buffer.indexOf('\n', m_searched);
        if (end < 0) {
            drop();
            m_searched = m_buffer.size();
            return false;
        }
        line = m_buffer.mid(m_taken, end - m_taken);
        m_taken = end + 1;
        m_searched = m_taken;
        return true;
    }

    /// What is left when the input has ended.
    QByteArray finish()
    {
        drop();
        m_searched = 0;
        return std::exchange(m_buffer, {});
    }

private:
    void drop()
    {
        m_buffer.remove(0, m_taken);
        m_taken = 0;
    }

    QByteArray m_buffer;
    qsizetype m_taken = 0;
    // Bytes before this hold no line feed, so a long line is searched once.
    qsizetype m_searched = 0;
};

} // namespace DemoAgent
