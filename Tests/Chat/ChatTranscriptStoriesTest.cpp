// Stories that nobody planned, told to the transcript and to a plain form of its rules.

#include "Tests/Support/PlainTranscript.h"

#include <gtest/gtest.h>

#include <random>

using namespace Bralto;
using namespace Bralto::ChatEvents;

namespace {

/// Makes events that get into each other's way: few ids, few indexes, every kind.
class Storyteller {
public:
    explicit Storyteller(unsigned seed)
        : m_random(seed)
    {
    }

    ChatEvent next()
    {
        switch (below(15)) {
        case 0:
            return StreamStart{id("m"), date()};
        case 1:
        case 2:
            return StreamBlock{below(4), block()};
        case 3:
        case 4:
        case 5:
            return StreamDelta{below(4), QStringLiteral("d")};
        case 6:
            return StreamStop{};
        case 7:
        case 8:
            return assistant();
        case 9:
        case 10:
            return ToolResults{{result(), result()}, parent()};
        case 11:
            return below(3) == 0 ? ChatEvent(User{message()})
                                 : ChatEvent(Notice{id("m"), id("note"), date(), parent()});
        case 12:
            return TaskStarted{id("t"), maybe("a"), maybe("d"), maybe("y"), below(2) == 0};
        case 13:
            return below(2) == 0 ? ChatEvent(TaskProgress{id("t"), maybe("p"), below(5), {}})
                                 : ChatEvent(TaskEnded{id("t"), below(2) == 0, maybe("s")});
        default:
            return sessionEvent();
        }
    }

private:
    int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(m_random); }
    QString id(const char* prefix) { return QLatin1String(prefix) + QString::number(below(3)); }
    QDateTime date() { return QDateTime::fromSecsSinceEpoch(below(100), Qt::UTC); }

    std::optional<QString> maybe(const char* prefix)
    {
        return below(2) == 0 ? std::nullopt : std::optional(id(prefix));
    }

    std::optional<QString> parent()
    {
        return below(4) == 0 ? std::optional(id("t")) : std::nullopt;
    }

    ChatBlock block()
    {
        const QString content = below(3) == 0 ? QString() : id("text");
        switch (below(5)) {
        case 0:
            return ChatThinkingBlock{{}, content};
        case 1:
            return ChatImageBlock{};
        case 2:
        case 3: {
            ChatToolCall call;
            call.id = id("t");
            call.name = below(2) == 0 ? QStringLiteral("Agent") : QStringLiteral("Bash");
            call.summary = id("summary");
            call.inputJSON = below(2) == 0
                                 ? QStringLiteral(R"({"description":"d","run_in_background":true})")
                                 : QStringLiteral("{}");
            return call;
        }
        default:
            return ChatTextBlock{{}, content};
        }
    }

    Assistant assistant()
    {
        Assistant event{id("m"), {}, std::nullopt, date(), parent()};
        for (int count = below(3); count > 0; --count)
            event.blocks.append(block());
        if (below(2) == 0)
            event.contextTokens = below(3);
        return event;
    }

    ChatToolResult result()
    {
        ChatToolResult result{id("t"), maybe("out"), {}, below(2) == 0, below(3) == 0};
        if (below(3) == 0)
            result.images.append(ChatImage{});
        return result;
    }

    ChatMessage message()
    {
        return {id("m"), ChatRole::User, {ChatTextBlock{{}, id("hi")}}, date(), false};
    }

    ChatEvent sessionEvent()
    {
        switch (below(4)) {
        case 0:
            return Initialized{maybe("v"), maybe("m"), maybe("p"), maybe("c")};
        case 1:
            return ModelNames{{{id("m"), id("name")}}};
        case 2:
            return PermissionModeChanged{id("p")};
        default:
            return Result{maybe("e"), 0.5 * below(3), below(3), {{id("m"), below(9)}}, 0};
        }
    }

    std::mt19937 m_random;
};

} // namespace

TEST(ChatTranscriptStories, EveryStoryGivesWhatThePlainRulesSay)
{
    constexpr unsigned Stories = 500;
    constexpr int EventsInAStory = 60;
    for (unsigned seed = 0; seed < Stories; ++seed) {
        SCOPED_TRACE(seed);
        Storyteller storyteller(seed);
        TranscriptComparison comparison;
        for (int count = 0; count < EventsInAStory; ++count) {
            SCOPED_TRACE(count);
            const ChatEvent event = storyteller.next();
            const auto difference = comparison.apply(event);
            ASSERT_FALSE(difference)
                << qPrintable(*difference) << " after an event of kind " << event.index();
        }
    }
}
