#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <ostream>

// How GoogleTest shows the toolkit's texts when they differ from what a test expects.

inline void PrintTo(const QString& text, std::ostream* stream)
{
    *stream << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray& bytes, std::ostream* stream)
{
    *stream << '"' << bytes.toStdString() << '"';
}
