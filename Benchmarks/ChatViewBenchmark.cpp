/// @file
/// What showing a conversation costs the interface thread. Without a screen: layout and painting
/// into memory are measured, the way to the display isn't.

#include "Benchmarks/BenchApplication.h"
#include "Platform/SystemClock.h"
#include "Views/Chat/ChatTranscriptView.h"

#include <QApplication>
#include <QPaintEvent>
#include <QScrollBar>

#include <benchmark/benchmark.h>

using namespace Bralto;

namespace {

constexpr int DeltasASecond = 200;
constexpr int FramesASecond = 60;

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

/// Adds up what a widget paints.
class Painted final : public QObject {
public:
    explicit Painted(QWidget* widget)
        : QObject(widget)
        , m_widget(widget)
    {
        widget->installEventFilter(this);
    }

    [[nodiscard]] int frames() const { return m_frames; }
    /// In areas of the widget.
    [[nodiscard]] double area() const { return m_area; }
    void clear()
    {
        m_frames = 0;
        m_area = 0;
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            ++m_frames;
            for (const QRect& part : static_cast<QPaintEvent*>(event)->region())
                m_area += double(part.width()) * part.height() /
                          (double(m_widget->width()) * m_widget->height());
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QWidget* m_widget;
    int m_frames = 0;
    double m_area = 0;
};

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
        // Nothing is painted before the window is there.
        while (!m_view.testAttribute(Qt::WA_Mapped) || m_painted->frames() == 0)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    void deltas(int count)
    {
        for (int i = 0; i < count; ++i)
            delta();
        frame();
    }

    /// One second: so many deltas, and the frames that show them.
    void second()
    {
        for (int i = 0; i < DeltasASecond; ++i) {
            delta();
            if (i * FramesASecond / DeltasASecond != (i + 1) * FramesASecond / DeltasASecond)
                frame();
        }
    }
    /// What the event loop would do for a frame, without its waiting.
    void frame()
    {
        m_view.flush();
        QApplication::processEvents();
    }

    [[nodiscard]] ChatTranscriptView& view() { return m_view; }
    [[nodiscard]] Painted& painted() { return *m_painted; }

private:
    void delta()
    {
        show(ChatEvents::StreamDelta{0, ++m_deltas % 40 == 0 ? QStringLiteral("word.\n\n")
                                                             : QStringLiteral("word ")});
    }
    void show(const ChatEvent& event) { m_view.transcriptChanged(m_transcript.apply(event)); }

    Theme m_theme{Theme::System{true, true}};
    SystemClock m_clock;
    ChatTranscript m_transcript;
    ChatTranscriptView m_view{m_theme, m_clock};
    Painted* m_painted = new Painted(m_view.viewport());
    int m_deltas = 0;
};

/// `busy` is the share of the interface thread that a stream of 200 deltas a second takes, after
/// so many messages and so many deltas of the same reply. `frames` is how many of the 60 frames
/// were painted, `painted` how much of the view each one was: all of it only when text moves up.
void streamASecond(benchmark::State& state)
{
    benchApplication();
    Streaming streaming(int(state.range(0)));
    streaming.deltas(int(state.range(1)));
    streaming.painted().clear();
    double seconds = 0;
    for (auto step : state) {
        const auto start = std::chrono::steady_clock::now();
        streaming.second();
        seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
    const int frames = streaming.painted().frames();
    state.counters["busy"] = seconds / double(state.iterations());
    state.counters["frames"] = double(frames) / double(state.iterations());
    state.counters["painted"] = streaming.painted().area() / std::max(frames, 1);
}
BENCHMARK(streamASecond)
    ->ArgNames({"messages", "deltas"})
    ->ArgsProduct({{50, 5000}, {0, 18'000}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10);

void openConversation(benchmark::State& state)
{
    benchApplication();
    for (auto step : state) {
        Streaming streaming(int(state.range(0)));
        streaming.frame();
    }
}
BENCHMARK(openConversation)->Arg(5000)->Unit(benchmark::kMillisecond)->Iterations(5);

void scrollAPage(benchmark::State& state)
{
    benchApplication();
    Streaming streaming(5000);
    QScrollBar* bar = streaming.view().verticalScrollBar();
    for (auto step : state) {
        bar->setValue(bar->value() > 1000 ? bar->value() - 800 : bar->maximum());
        streaming.frame();
    }
}
BENCHMARK(scrollAPage)->Unit(benchmark::kMillisecond);

} // namespace
