#include "main/watch.hpp"

#include <cstdlib>
#include <ctime>
#include <system_error>
#include <utility>

#include <pthread.h>

namespace kestrel {

namespace {

/// Ends the watching thread; it is awaited like the others.
constexpr int kWakeUp = SIGUSR2;

/// True when whoever called the program wants it to go on, as nohup does.
bool isIgnored(int signal) {
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 && (action.sa_flags & SA_SIGINFO) == 0 &&
           action.sa_handler == SIG_IGN;
}

[[noreturn]] void endBy(int signal) {
    std::signal(signal, SIG_DFL);
    sigset_t only{};
    sigemptyset(&only);
    sigaddset(&only, signal);
    pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
    std::raise(signal);
    std::_Exit(128 + signal); // not reached
}

} // namespace

Watch::Watch(std::function<void()> clean_up, std::function<void()> now_and_then)
    : clean_up_(std::move(clean_up)), now_and_then_(std::move(now_and_then)) {
    sigemptyset(&awaited_);
    sigaddset(&awaited_, kWakeUp);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        if (!isIgnored(signal)) sigaddset(&awaited_, signal);
    pthread_sigmask(SIG_BLOCK, &awaited_, &blocked_before_);
    try {
        thread_ = std::thread([this] { wait(); });
    } catch (const std::system_error&) { // without a thread signals end the program as they always do
        pthread_sigmask(SIG_SETMASK, &blocked_before_, nullptr);
    }
}

Watch::~Watch() {
    if (!thread_.joinable()) return;
    ended_.store(true);
    pthread_kill(thread_.native_handle(), kWakeUp);
    thread_.join();
    pthread_sigmask(SIG_SETMASK, &blocked_before_, nullptr);
}

void Watch::wait() {
    constexpr timespec kPause{.tv_sec = 0, .tv_nsec = 100'000'000};
    while (!ended_.load()) {
        if (now_and_then_) now_and_then_();
        const int signal = sigtimedwait(&awaited_, nullptr, now_and_then_ ? &kPause : nullptr);
        if (signal == -1 || (signal == kWakeUp && ended_.load())) continue;
        clean_up_();
        endBy(signal);
    }
}

} // namespace kestrel
