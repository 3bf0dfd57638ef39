#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace Bralto {

/// Waits for something that another process brings about and nothing tells: whether `holds` came
/// true within `limit`.
inline bool eventually(const std::function<bool()>& holds,
                       std::chrono::seconds limit = std::chrono::seconds(30))
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!holds()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

} // namespace Bralto
