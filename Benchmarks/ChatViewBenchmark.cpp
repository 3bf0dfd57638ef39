/// @file
/// What showing a conversation costs the interface thread. Without a screen: layout and painting
/// into memory are measured, the way to the display isn't.

#include "Platform/SystemClock.h"
#include "Views/Chat/ChatTranscriptView.h"

#include <QApplication>
#include <QScrollBar>

#include <benchmark/benchmark.h>

using namespace Bralto;

namespace {

constexpr int DeltasASecond = 200;
constexpr int FramesASecond = 60;

void ensureApplication()
{
    static int argc = 1;
    static char name[] = "bralto-bench";
    static char* argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(argc, argv);
}

ChatToolCall call(const QString& id, const QString& name, const QString& result)
{
    ChatToolCall call;
    call.id = id;
    call.name = name;
    call.summary = QStringLiteral("src/some/file.cpp");
    call.status = ChatToolStatus::Done;
    call.resultText = result;
    return call;
}

/// A conversation of turns, replies and tools, as long as wanted.
ChatTranscript conversation(int messages)
{
    const QString paragraph = QStringLiteral(
        "The handler took the optional’s value **without a look**. It now answers `404` with "
        "`out_of_range` when no sample covers the time, and the tests say so.\n\n- one\n- two\n\n"
        "```cpp\nif (!level)\n    return problem(Status::not_found);\n```\n");
    ChatTranscript transcript;
    for (int i = 0; i < messages; ++i) {
        ChatMessage message;
        message.id = QStringLiteral("m%1").arg(i);
        if (i % 5 == 0) {
            message.role = ChatRole::User;
            message.blocks = {ChatTextBlock{message.id + QStringLiteral("-0"),
                                            QStringLiteral("Do the next thing, please.")}};
        } else {
            message.blocks = {
                ChatTextBlock{message.id + QStringLiteral("-0"), paragraph},
                call(message.id + QStringLiteral("-1"), QStringLiteral("Read"), paragraph),
                call(message.id + QStringLiteral("-2"), QStringLiteral("Bash"), paragraph)};
        }
        transcript.append(message);
    }
    return transcript;
}

/// A view of a long conversation with a reply at its end that streams.
class Streaming {
public:
    explicit Streaming(int messages)
        : m_transcript(conversation(messages))
    {
        m_view.resize(900, 900);
        m_view.setTranscript(&m_transcript);
        m_view.show();
        show(ChatEvents::StreamStart{QStringLiteral("stream")});
        show(ChatEvents::StreamBlock{0, ChatTextBlock{}});
    }

    /// One second: so many deltas, and the frames that show them.
    void second()
    {
        for (int i = 0; i < DeltasASecond; ++i) {
            show(ChatEvents::StreamDelta{0, ++m_deltas % 40 == 0 ? QStringLiteral("word.\n\n")
                                                                 : QStringLiteral("word ")});
            if (i * FramesASecond / DeltasASecond != (i + 1) * FramesASecond / DeltasASecond)
                frame();
        }
    }
    void frame()
    {
        m_view.flush();
        m_view.viewport()->repaint();
    }
    void show(const ChatEvent& event) { m_view.transcriptChanged(m_transcript.apply(event)); }

    [[nodiscard]] ChatTranscriptView& view() { return m_view; }

private:
    Theme m_theme{Theme::System{true, true}};
    SystemClock m_clock;
    ChatTranscript m_transcript;
    ChatTranscriptView m_view{m_theme, m_clock};
    int m_deltas = 0;
};

/// "busy" is the share of the interface thread that a stream of 200 deltas a second takes.
void streamASecond(benchmark::State& state)
{
    ensureApplication();
    Streaming streaming(int(state.range(0)));
    double seconds = 0;
    for (auto step : state) {
        const auto start = std::chrono::steady_clock::now();
        streaming.second();
        seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
    state.counters["busy"] = seconds / double(state.iterations());
}
BENCHMARK(streamASecond)->Arg(10)->Arg(5000)->Unit(benchmark::kMillisecond)->Iterations(10);

void openConversation(benchmark::State& state)
{
    ensureApplication();
    for (auto step : state) {
        Streaming streaming(int(state.range(0)));
        streaming.frame();
    }
}
BENCHMARK(openConversation)->Arg(5000)->Unit(benchmark::kMillisecond)->Iterations(5);

void scrollAPage(benchmark::State& state)
{
    ensureApplication();
    Streaming streaming(5000);
    QScrollBar* bar = streaming.view().verticalScrollBar();
    for (auto step : state) {
        bar->setValue(bar->value() > 1000 ? bar->value() - 800 : bar->maximum());
        streaming.frame();
    }
}
BENCHMARK(scrollAPage)->Unit(benchmark::kMillisecond);

} // namespace
