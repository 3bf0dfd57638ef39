#include "DemoAgent/Script/ScriptText.h"

#include <QRegularExpression>
#include <QStringList>

namespace DemoAgent::ScriptText {

namespace {

class Parser {
public:
    Parser(const QString& text, const QSet<QString>& verbs)
        : m_lines(text.split(u'\n'))
        , m_verbs(verbs)
    {
    }

    // Steps up to the end of the block, whose last word ("else", "end" or none) is kept.
    std::vector<ScriptStep> block()
    {
        std::vector<ScriptStep> steps;
        while (m_next < m_lines.size() && m_error.isEmpty()) {
            ScriptStep step = stepOf(m_lines.at(m_next).trimmed());
            step.line = static_cast<int>(++m_next);
            if (step.verb.isEmpty())
                continue;
            m_closing = step.verb;
            if (step.verb == u"else" || step.verb == u"end")
                return steps;
            if (step.verb == u"if" || step.verb == u"repeat")
                readBody(step);
            else if (!m_verbs.contains(step.verb))
                fail(step.line, "unknown step \"" + step.verb + "\"");
            steps.push_back(std::move(step));
        }
        m_closing.clear();
        return steps;
    }

    void expectEnd(const QString& closing)
    {
        if (m_error.isEmpty() && m_closing != closing)
            fail(static_cast<int>(m_next),
                 closing.isEmpty() ? "an end too many" : "an end is missing");
    }

    [[nodiscard]] const QString& error() const { return m_error; }

private:
    static ScriptStep stepOf(const QString& line)
    {
        ScriptStep step;
        if (line.isEmpty() || line.startsWith(u'#'))
            return step;
        if (line.startsWith(u'{')) {
            step.verb = "line";
            step.words = line;
            return step;
        }
        const qsizetype end = line.indexOf(u' ');
        step.verb = line.left(end);
        step.words = end < 0 ? QString() : line.mid(end + 1).trimmed();
        return step;
    }

    void readBody(ScriptStep& step)
    {
        step.body = block();
        if (m_closing == u"else")
            step.otherwise = block();
        expectEnd("end");
    }

    void fail(int line, const QString& what)
    {
        if (m_error.isEmpty())
            m_error = QString("line %1: %2").arg(line).arg(what);
    }

    const QStringList m_lines;
    const QSet<QString>& m_verbs;
    qsizetype m_next = 0;
    QString m_closing;
    QString m_error;
};

} // namespace

std::variant<std::vector<ScriptStep>, ScriptError> parse(const QString& text,
                                                         const QSet<QString>& verbs)
{
    Parser parser(text, verbs);
    std::vector<ScriptStep> steps = parser.block();
    parser.expectEnd({});
    if (!parser.error().isEmpty())
        return ScriptError{parser.error()};
    return steps;
}

QString filled(const QString& words, const QHash<QString, QString>& values)
{
    static const QRegularExpression variable("\\$\\{([^}]*)\\}");
    QString result;
    qsizetype from = 0;
    for (auto match = variable.globalMatch(words); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        result += words.mid(from, found.capturedStart() - from);
        result += values.value(found.captured(1), found.captured());
        from = found.capturedEnd();
    }
    return result + words.mid(from);
}

QByteArray unescaped(const QString& words)
{
    const QByteArray bytes = words.toUtf8();
    QByteArray result;
    for (qsizetype index = 0; index < bytes.size(); ++index) {
        const char next =
            bytes.at(index) == '\\' ? bytes.mid(index + 1, 1).append('\0').at(0) : '\0';
        if (next == 'n' || next == 't' || next == '\\') {
            result += next == 'n' ? '\n' : next == 't' ? '\t' : '\\';
            ++index;
        } else if (next == 'x') {
            result += QByteArray::fromHex(bytes.mid(index + 2, 2));
            index += 3;
        } else {
            result += bytes.at(index);
        }
    }
    return result;
}

} // namespace DemoAgent::ScriptText
