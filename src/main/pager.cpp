#include "main/pager.hpp"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrel {

namespace {

constexpr int kNoSuchProgram = 127; // of a shell

/// True when one of the folders of PATH has a program of this name.
bool isInstalled(const std::string& name) {
    const char* const given = std::getenv("PATH");
    std::string_view path = given != nullptr ? given : "";
    while (!path.empty()) {
        const std::string_view folder = path.substr(0, path.find(':'));
        const std::string file = std::string(folder.empty() ? "." : folder) + "/" + name;
        if (access(file.c_str(), X_OK) == 0) return true;
        path.remove_prefix(folder.size() < path.size() ? folder.size() + 1 : folder.size());
    }
    return false;
}

/// The command of the pager; empty when there is none.
std::string pagerCommand() {
    const char* const wanted = std::getenv("PAGER");
    if (wanted != nullptr) return wanted;
    const char* const terminal = std::getenv("TERM");
    const bool can_move = terminal == nullptr || std::string_view(terminal) != "dumb";
    return can_move && isInstalled("less") ? "less -FRX" : "";
}

} // namespace

std::optional<std::size_t> terminalWidth() {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return std::nullopt;
    return size.ws_col;
}

bool showInPager(std::string_view text) {
    const std::string command = pagerCommand();
    if (command.empty()) return false;
    setenv("LESS", "FRX", 0); // for "less" without options: colors, and no waiting with a short text
    std::FILE* const pager = popen(command.c_str(), "w");
    if (pager == nullptr) return false;
    // The keys that end a program are the pager's as long as it runs.
    const auto before = std::signal(SIGINT, SIG_IGN);
    std::fwrite(text.data(), 1, text.size(), pager); // who leaves the pager early has seen enough
    const int status = pclose(pager);
    std::signal(SIGINT, before);
    return status == -1 || !WIFEXITED(status) || WEXITSTATUS(status) != kNoSuchProgram;
}

} // namespace kestrel
