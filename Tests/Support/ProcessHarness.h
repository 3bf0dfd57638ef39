#pragma once

#include "Kovalt/Process/LocalProcess.h"
#include "Kovalt/Process/PollLoop.h"

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Kovalt {

/// A process on a loop, and what it told.
class ProcessHarness : public LocalProcessDelegate {
public:
    explicit ProcessHarness(Delivery delivery = Delivery::Sliced)
        : process(std::in_place, *this, loop, delivery,
                  [this](const std::string& line) { addLine(line); })
    {
    }

    /// What the process still prints finds its lines.
    ~ProcessHarness() override { process.reset(); }

    PollLoop loop;
    std::string output;
    /// One entry a report.
    std::vector<std::optional<int>> statuses;
    winsize size{25, 80, 640, 400};
    std::function<void(std::span<const std::uint8_t>)> received;
    std::function<void()> terminated;
    int sendsCompleted = 0;
    std::optional<LocalProcess> process;

    void start(const std::string& script)
    {
        process->startProcess({.executable = "/bin/sh", .arguments = {"-c", script}});
    }
    /// Runs the loop until the condition holds; false when that takes far too long.
    bool runUntil(const std::function<bool()>& condition)
    {
        return loop.runUntil(condition, std::chrono::seconds(120));
    }
    bool runUntilTerminated()
    {
        return runUntil([this] { return !statuses.empty(); });
    }
    bool runUntilOutput(std::string_view text)
    {
        return runUntil([this, text] { return output.find(text) != std::string::npos; });
    }
    /// Lets other threads and processes work while the loop stands still.
    static bool waitUntil(const std::function<bool()>& condition)
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(120);
        while (!condition()) {
            if (std::chrono::steady_clock::now() >= deadline)
                return false;
            std::this_thread::yield();
        }
        return true;
    }
    void send(std::string_view text)
    {
        process->send({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    }
    [[nodiscard]] std::vector<std::string> lines() const
    {
        const std::lock_guard lock(m_lock);
        return m_lines;
    }

private:
    void processTerminated(LocalProcess&, std::optional<std::int32_t> exitCode) override
    {
        statuses.push_back(exitCode);
        if (terminated)
            terminated();
    }
    void dataReceived(std::span<const std::uint8_t> slice) override
    {
        if (received)
            received(slice);
        else
            output.append(slice.begin(), slice.end());
    }
    winsize getWindowSize() override { return size; }
    void sendCompleted(LocalProcess&) override { ++sendsCompleted; }
    void addLine(const std::string& line)
    {
        const std::lock_guard lock(m_lock);
        m_lines.push_back(line);
    }

    mutable std::mutex m_lock;
    std::vector<std::string> m_lines;
};

} // namespace Kovalt
