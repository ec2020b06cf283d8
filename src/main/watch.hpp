#pragma once

#include <atomic>
#include <csignal>
#include <functional>
#include <thread>

namespace kestrel {

/// While it lasts, a thread of its own waits for the signals that ask the program to end. Threads that begin later do
/// not get them either.
class Watch {
public:
    /// When such a signal comes, `clean_up` is called and the program ends by the signal. `now_and_then`, unless it is
    /// empty, is called ten times a second.
    Watch(std::function<void()> clean_up, std::function<void()> now_and_then);
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    ~Watch();

private:
    void wait();

    std::function<void()> clean_up_;
    std::function<void()> now_and_then_;
    sigset_t awaited_{};
    sigset_t blocked_before_{};
    std::atomic<bool> ended_ = false;
    std::thread thread_;
};

} // namespace kestrel
