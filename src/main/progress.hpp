#pragma once

#include "base/output.hpp"
#include "main/file_list.hpp"

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>

namespace kestrel {

/// Shows on a terminal how far a check is: one line that is rewritten in place, and taken away whenever something else
/// is written there. It hears of what outputs to the same terminal write.
class Progress : public FlushListener {
public:
    /// Shows nothing until the delay is over.
    Progress(int terminal, const FileList& files, std::chrono::milliseconds delay);
    ~Progress() override { remove(); }

    /// One more file is done.
    void fileDone(bool failed);
    /// Shows how far it is now; to be called every now and then, from any thread.
    void show();
    /// Takes the line away; does nothing when another thread is writing and `wait` is false.
    void remove(bool wait = true);

    void beforeFlush() override;
    void afterFlush(std::string_view text) override;

private:
    [[nodiscard]] std::string line() const;
    void write(std::string_view text) const;
    void removeLocked();

    int terminal_;
    const FileList& files_;
    std::chrono::steady_clock::time_point begin_;
    std::atomic<std::size_t> done_ = 0;
    std::atomic<std::size_t> failed_ = 0;
    std::mutex mutex_;          // of the terminal and what follows
    bool shown_ = false;        // the line is there
    bool at_line_begin_ = true; // what others wrote ended its line
};

/// A name for one line of `width` columns on a terminal: what could steer it is replaced, and what is too long is cut
/// at the front.
[[nodiscard]] std::string nameForTerminal(std::string_view name, std::size_t width);

} // namespace kestrel
