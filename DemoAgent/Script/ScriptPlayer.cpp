#include "DemoAgent/Script/ScriptPlayer.h"

#include <QFile>

namespace DemoAgent {

namespace {

const ScriptVerbs& allVerbs()
{
    static const ScriptVerbs verbs = [] {
        ScriptVerbs all = waitingVerbs();
        all.insert(speakingVerbs());
        all.insert(faultVerbs());
        return all;
    }();
    return verbs;
}

} // namespace

ScriptPlayer::ScriptPlayer(ScriptContext context, std::vector<ScriptStep> steps,
                           std::function<void()> ended)
    : m_context(std::move(context))
    , m_steps(std::move(steps))
    , m_ended(std::move(ended))
{
    collectHeld(m_steps);
}

std::variant<std::vector<ScriptStep>, ScriptError> ScriptPlayer::load(const QString& path)
{
    QFile file(path);
    if (!file.open(QFile::ReadOnly))
        return ScriptError{path + u": " + file.errorString()};
    const QList<QString> names = allVerbs().keys();
    auto result = ScriptText::parse(QString::fromUtf8(file.readAll()),
                                    QSet<QString>(names.begin(), names.end()));
    if (auto* error = std::get_if<ScriptError>(&result))
        error->message = path + u": " + error->message;
    return result;
}

void ScriptPlayer::start()
{
    m_work = play();
    m_work->start();
}

bool ScriptPlayer::takes(const QJsonObject& line)
{
    const QString type = line.value("type").toString();
    bool isMine = type == u"user";
    if (type == u"control_request") {
        const QString subtype = line.value("request")["subtype"].toString();
        if (m_context.muted.contains(subtype))
            return true;
        isMine = m_context.held.contains(subtype) || m_context.held.contains("*");
    } else if (type == u"control_response") {
        isMine = m_context.asked.contains(line.value("response")["request_id"].toString());
    }
    if (isMine)
        m_context.inbox.put(line);
    return isMine;
}

Task<> ScriptPlayer::play()
{
    co_await run(m_steps);
    m_ended();
}

Task<> ScriptPlayer::run(const std::vector<ScriptStep>& steps)
{
    for (const ScriptStep& step : steps) {
        if (step.verb == u"repeat") {
            const int times = step.words.toInt();
            for (int time = 1; time <= times; ++time) {
                m_context.values.insert("n", QString::number(time));
                co_await run(step.body);
            }
        } else if (step.verb == u"if") {
            co_await run(holds(step.words) ? step.body : step.otherwise);
        } else {
            co_await allVerbs().value(step.verb)(m_context, step);
        }
    }
}

bool ScriptPlayer::holds(const QString& condition) const
{
    const QString word = condition.section(u' ', 0, 0);
    if (word == u"text")
        return m_context.values.value("text").contains(condition.section(u' ', 1));
    if (word == u"error")
        return m_context.answer.value("subtype").toString() == u"error";
    return m_context.answer.value("response")["behavior"].toString() == word;
}

// A request may come before the script waits for it, so what it will wait for is known beforehand.
void ScriptPlayer::collectHeld(const std::vector<ScriptStep>& steps)
{
    for (const ScriptStep& step : steps) {
        const QStringList words = step.words.split(u' ');
        if (step.verb == u"await" && words.first() == u"control")
            m_context.held.insert(words.value(1, "*"));
        if (step.verb == u"replay") {
            const bool isAbsolute = step.words.startsWith(u'/');
            m_context.held.unite(subtypesInRecording(
                isAbsolute ? step.words : QString(m_context.folder + u'/' + step.words)));
        }
        collectHeld(step.body);
        collectHeld(step.otherwise);
    }
}

} // namespace DemoAgent
