#include "child_process.hpp"

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrel::bench {

namespace {

[[noreturn]] void failed(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

double secondsOf(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

/// Becomes the program; comes back to nobody.
[[noreturn]] void become(const std::vector<char*>& arguments, int output) {
    constexpr int kNotStarted = 127;
    if (dup2(output, STDOUT_FILENO) >= 0) execv(arguments.front(), arguments.data());
    _exit(kNotStarted);
}

} // namespace

ChildResult runChild(std::span<const std::string> command, const std::string& output) {
    std::vector<std::string> words(command.begin(), command.end());
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    constexpr mode_t kMode = 0600;
    const int file = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kMode);
    if (file < 0) failed(output.c_str());

    const pid_t child = fork();
    if (child < 0) failed("fork");
    if (child == 0) become(arguments, file);
    int state = 0;
    rusage usage{};
    pid_t ended = -1;
    do {
        ended = wait4(child, &state, 0, &usage);
    } while (ended < 0 && errno == EINTR);
    close(file);

    if (ended < 0) failed("wait4");
    if (!WIFEXITED(state) || WEXITSTATUS(state) == 127) throw std::runtime_error("cannot run " + words.front());
    constexpr std::size_t kKilobyte = 1024;
    return {WEXITSTATUS(state), secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime),
            static_cast<std::size_t>(usage.ru_maxrss) * kKilobyte};
}

} // namespace kestrel::bench
