#include "LiveCommand.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <utility>

namespace Bralto {

namespace {

using namespace LiveCommands;

using Decoded = Expected<LiveCommand, QString>;
using Decoder = Decoded (*)(const JsonObject& line);

Unexpected<QString> needs(const char* field)
{
    return Unexpected{QStringLiteral("%1 is missing").arg(QLatin1String(field))};
}

/// A command with one text field; the text may be empty, but not absent.
template <typename Command>
Decoded withText(const JsonObject& line, const char* field)
{
    auto text = line.string(field);
    if (!text)
        return needs(field);
    return LiveCommand(Command{*std::move(text)});
}

Decoded answer(const JsonObject& line)
{
    const auto object = line.object("answers");
    if (!object)
        return needs("answers");
    Answer command;
    for (const auto& [key, element] : object->raw()) {
        const JsonValue value(element);
        const auto label = value.string();
        if (!label)
            return Unexpected{QStringLiteral("an answer is no string")};
        command.answers.insert(QString::fromUtf8(key.data(), qsizetype(key.size())),
                               QString::fromUtf8(label->data(), qsizetype(label->size())));
    }
    return LiveCommand(std::move(command));
}

Decoded control(const JsonObject& line)
{
    auto subtype = line.string("subtype");
    if (!subtype)
        return needs("subtype");
    Control command{*std::move(subtype), {}};
    if (const auto fields = line.object("fields"))
        command.fields = QJsonDocument::fromJson(fields->compact()).object().toVariantMap();
    return LiveCommand(std::move(command));
}

Decoded remoteControl(const JsonObject& line)
{
    const auto on = line.boolean("on");
    if (!on)
        return needs("on");
    return LiveCommand(SetRemoteControl{*on});
}

constexpr std::array<std::pair<std::string_view, Decoder>, 13> Decoders{{
    {"send", [](const JsonObject& line) { return withText<Send>(line, "text"); }},
    {"allow", [](const JsonObject&) -> Decoded { return LiveCommand(Respond{true}); }},
    {"deny", [](const JsonObject&) -> Decoded { return LiveCommand(Respond{false}); }},
    {"answer", answer},
    {"interrupt", [](const JsonObject&) -> Decoded { return LiveCommand(Interrupt{}); }},
    {"model", [](const JsonObject& line) { return withText<SetModel>(line, "value"); }},
    {"effort", [](const JsonObject& line) { return withText<SetEffort>(line, "level"); }},
    {"mode", [](const JsonObject& line) { return withText<SetMode>(line, "mode"); }},
    {"remote", remoteControl},
    {"control", control},
    {"switch",
     [](const JsonObject& line) -> Decoded { return LiveCommand(Switch{line.string("session")}); }},
    {"stop", [](const JsonObject&) -> Decoded { return LiveCommand(Stop{}); }},
    {"quit", [](const JsonObject&) -> Decoded { return LiveCommand(Quit{}); }},
}};

} // namespace

const char* liveCommandHelp()
{
    return "  {\"do\":\"send\",\"text\":\"...\"}            a turn of the user\n"
           "  {\"do\":\"allow\"} {\"do\":\"deny\"}          the answer to the open permission\n"
           "  {\"do\":\"answer\",\"answers\":{\"Question?\":\"Label\"}}\n"
           "                                        the answer to the open question\n"
           "  {\"do\":\"interrupt\"}                  ends the running turn\n"
           "  {\"do\":\"model\",\"value\":\"...\"}          also \"effort\" with \"level\" and "
           "\"mode\" "
           "with \"mode\"\n"
           "  {\"do\":\"remote\",\"on\":true}           turns remote control on or off\n"
           "  {\"do\":\"control\",\"subtype\":\"...\",\"fields\":{...}}\n"
           "                                        any control request; \"fields\" may be left "
           "out\n"
           "  {\"do\":\"switch\",\"session\":\"...\"}       another conversation, a new one "
           "without "
           "\"session\"\n"
           "  {\"do\":\"stop\"} {\"do\":\"quit\"}           ends the agent; ends this program "
           "too\n";
}

Expected<LiveCommand, QString> decodeLiveCommand(const JsonObject& line)
{
    const auto verb = line.view("do");
    if (!verb)
        return needs("do");
    for (const auto& [name, decode] : Decoders) {
        if (name == *verb)
            return decode(line);
    }
    return Unexpected{QStringLiteral("unknown command: %1")
                          .arg(QString::fromUtf8(verb->data(), qsizetype(verb->size())))};
}

} // namespace Bralto
