#include "main/progress.hpp"

#include "base/utf8.hpp"

#include <algorithm>
#include <vector>

#include <sys/ioctl.h>
#include <unistd.h>

namespace kestrel {

namespace {

constexpr std::string_view kEraseLine = "\r\x1b[K";

std::size_t widthOf(int terminal) {
    constexpr std::size_t kUsual = 80;
    winsize size{};
    return ioctl(terminal, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

} // namespace

std::string nameForTerminal(std::string_view name, std::size_t width) {
    constexpr std::string_view kCut = "...";
    std::vector<std::string_view> characters;
    while (!name.empty()) {
        const Character character = takeCharacter(name);
        characters.push_back(character.valid && !character.isControl() ? character.bytes : "?");
    }
    std::string text;
    std::size_t first = 0;
    if (characters.size() > width) {
        text = kCut.substr(0, width);
        first = characters.size() - (width - text.size());
    }
    for (; first < characters.size(); ++first)
        text.append(characters[first]);
    return text;
}

Progress::Progress(int terminal, const FileList& files, std::chrono::milliseconds delay)
    : terminal_(terminal), files_(files), delay_(delay) {}

void Progress::begin() {
    const std::lock_guard lock(mutex_);
    first_ = std::chrono::steady_clock::now() + delay_;
    showLocked();
}

void Progress::fileDone(bool failed) {
    if (failed) failed_.fetch_add(1, std::memory_order_relaxed);
    done_.fetch_add(1, std::memory_order_relaxed);
}

void Progress::show() {
    if (const std::unique_lock lock(mutex_, std::try_to_lock); lock.owns_lock()) showLocked();
}

void Progress::end() {
    const std::lock_guard lock(mutex_);
    first_.reset();
    removeLocked();
}

void Progress::giveUp() {
    if (const std::unique_lock lock(mutex_, std::try_to_lock); lock.owns_lock()) removeLocked();
}

void Progress::beforeFlush() {
    mutex_.lock();
    removeLocked();
}

void Progress::afterFlush(std::string_view text) {
    if (!text.empty()) at_line_begin_ = text.ends_with('\n');
    mutex_.unlock();
}

/// The line with what takes the one before away.
std::string Progress::line() const {
    const std::size_t done = done_.load(std::memory_order_relaxed);
    std::string text;
    appendInteger(text, static_cast<std::int64_t>(done));
    text.append(" of ");
    appendInteger(text, static_cast<std::int64_t>(files_.size()));
    text.append(" files, ");
    appendInteger(text, static_cast<std::int64_t>(failed_.load(std::memory_order_relaxed)));
    text.append(" failed");
    // The last column stays free: some terminals go to the next line behind it.
    const std::size_t width = widthOf(terminal_) - 1;
    if (const std::size_t used = text.size() + 2; done < files_.size() && used < width) {
        text.append(": ").append(nameForTerminal(files_[done], width - used));
    } else {
        text.resize(std::min(text.size(), width));
    }
    return std::string(kEraseLine).append(text);
}

void Progress::write(std::string_view text) const {
    while (!text.empty()) {
        const ssize_t written = ::write(terminal_, text.data(), text.size());
        if (written <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

void Progress::showLocked() {
    if (!first_ || std::chrono::steady_clock::now() < *first_ || !at_line_begin_) return;
    write(line());
    shown_ = true;
}

void Progress::removeLocked() {
    if (!shown_) return;
    write(kEraseLine);
    shown_ = false;
}

} // namespace kestrel
