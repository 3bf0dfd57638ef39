#include "Base/PropertyList.h"

#include <QXmlStreamReader>

namespace Bralto::PropertyList {

namespace {

/// Deeper than any bundle goes, and shallow enough for every stack.
constexpr int DeepestNesting = 32;

// Writing

void write(QString& out, const QVariant& value, int depth);

bool isAllowedInXml(char32_t character)
{
    return character == '\t' || character == '\n' || character == '\r' ||
           (character >= 0x20 && character < 0xD800) ||
           (character >= 0xE000 && character <= 0xFFFD) || character >= 0x10000;
}

QString escaped(const QString& text)
{
    QString result;
    result.reserve(text.size());
    for (const char32_t character : text.toUcs4()) {
        if (character == '&')
            result += QLatin1String("&amp;");
        else if (character == '<')
            result += QLatin1String("&lt;");
        else if (character == '>')
            result += QLatin1String("&gt;");
        else if (character == '\r') // A reader takes a plain one for a line break.
            result += QLatin1String("&#13;");
        else
            result += QChar::fromUcs4(isAllowedInXml(character) ? character : U'\uFFFD');
    }
    return result;
}

void writeElement(QString& out, const char* name, const QString& text, int depth)
{
    const QLatin1String element(name);
    out += QString(depth, u'\t') + u'<' + element + u'>' + escaped(text) + QLatin1String("</") +
           element + QLatin1String(">\n");
}

template <typename Body>
void writeNested(QString& out, const char* name, int depth, const Body& body)
{
    const QLatin1String element(name);
    out += QString(depth, u'\t') + u'<' + element + QLatin1String(">\n");
    body();
    out += QString(depth, u'\t') + QLatin1String("</") + element + QLatin1String(">\n");
}

void write(QString& out, const QVariant& value, int depth)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        out += QString(depth, u'\t') + QLatin1String(value.toBool() ? "<true/>\n" : "<false/>\n");
        break;
    case QMetaType::LongLong:
        writeElement(out, "integer", QString::number(value.toLongLong()), depth);
        break;
    case QMetaType::QVariantList:
        writeNested(out, "array", depth, [&] {
            for (const QVariant& element : value.toList())
                write(out, element, depth + 1);
        });
        break;
    case QMetaType::QVariantMap:
        writeNested(out, "dict", depth, [&] {
            const QVariantMap map = value.toMap();
            for (auto entry = map.begin(); entry != map.end(); ++entry) {
                writeElement(out, "key", entry.key(), depth + 1);
                write(out, entry.value(), depth + 1);
            }
        });
        break;
    default:
        Q_ASSERT(value.typeId() == QMetaType::QString);
        writeElement(out, "string", value.toString(), depth);
    }
}

// Reading

/// Reads the elements of one property list. What it can't understand sets the reader's error.
class Reader {
public:
    explicit Reader(const QByteArray& xml)
        : m_xml(xml)
    {
    }

    std::optional<QVariantMap> document()
    {
        if (!m_xml.readNextStartElement() || m_xml.name() != QLatin1String("plist"))
            return std::nullopt;
        if (!m_xml.readNextStartElement() || m_xml.name() != QLatin1String("dict"))
            return std::nullopt;
        QVariantMap entries = dictionary(1);
        while (!m_xml.atEnd())
            m_xml.readNext();
        return m_xml.hasError() ? std::nullopt : std::optional(std::move(entries));
    }

private:
    /// The value of the element that the reader stands on; invalid if its type is none of ours.
    QVariant value(int depth)
    {
        if (depth > DeepestNesting) {
            m_xml.raiseError(QStringLiteral("nested too deeply"));
            return {};
        }
        const auto name = m_xml.name();
        if (name == QLatin1String("dict"))
            return dictionary(depth);
        if (name == QLatin1String("array"))
            return array(depth);
        if (name == QLatin1String("string"))
            return m_xml.readElementText();
        if (name == QLatin1String("integer"))
            return integer();
        if (name == QLatin1String("true") || name == QLatin1String("false")) {
            const bool isTrue = name == QLatin1String("true");
            m_xml.skipCurrentElement();
            return isTrue;
        }
        m_xml.skipCurrentElement();
        return {};
    }

    QVariantMap dictionary(int depth)
    {
        QVariantMap entries;
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() != QLatin1String("key")) {
                m_xml.raiseError(QStringLiteral("a value without a key"));
                break;
            }
            const QString key = m_xml.readElementText();
            if (!m_xml.readNextStartElement() || m_xml.name() == QLatin1String("key")) {
                m_xml.raiseError(QStringLiteral("a key without a value"));
                break;
            }
            const QVariant entry = value(depth + 1);
            if (entry.isValid())
                entries.insert(key, entry);
        }
        return entries;
    }

    QVariantList array(int depth)
    {
        QVariantList elements;
        while (m_xml.readNextStartElement()) {
            const QVariant element = value(depth + 1);
            if (element.isValid())
                elements.append(element);
        }
        return elements;
    }

    QVariant integer()
    {
        bool isNumber = false;
        const qlonglong number = m_xml.readElementText().trimmed().toLongLong(&isNumber);
        return isNumber ? QVariant(number) : QVariant();
    }

    QXmlStreamReader m_xml;
};

} // namespace

QByteArray encode(const Entries& entries)
{
    QString out = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                 "<plist version=\"1.0\">\n");
    writeNested(out, "dict", 0, [&] {
        for (const auto& [key, value] : entries) {
            writeElement(out, "key", key, 1);
            write(out, value, 1);
        }
    });
    out += QStringLiteral("</plist>\n");
    return out.toUtf8();
}

std::optional<QVariantMap> decode(const QByteArray& xml)
{
    return Reader(xml).document();
}

} // namespace Bralto::PropertyList
