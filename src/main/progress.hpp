#pragma once

#include "base/output.hpp"
#include "main/file_list.hpp"

#include <atomic>
#include <chrono>
#include <mutex>
#include <optional>
#include <string>

namespace kestrel {

/// Shows on a terminal how far a check is: one line that is rewritten in place, and taken away whenever something else
/// is written there. It hears of what outputs to the same terminal write.
class Progress : public FlushListener {
public:
    Progress(int terminal, const FileList& files, std::chrono::milliseconds delay);
    ~Progress() override { end(); }

    /// The check begins: it is shown when the delay is over, at once without one.
    void begin();
    /// One more file is done.
    void fileDone(bool failed);
    /// Shows how far it is now, between begin and end; to be called every now and then, from any thread. Does nothing
    /// while another thread writes.
    void show();
    /// Takes the line away for good.
    void end();
    /// The same where the program has to end at once: does nothing while another thread writes.
    void giveUp();

    void beforeFlush() override;
    void afterFlush(std::string_view text) override;

private:
    [[nodiscard]] std::string line() const;
    void write(std::string_view text) const;
    void showLocked();
    void removeLocked();

    int terminal_;
    const FileList& files_;
    std::chrono::milliseconds delay_;
    std::atomic<std::size_t> done_ = 0;
    std::atomic<std::size_t> failed_ = 0;
    std::mutex mutex_;                                           // of the terminal and what follows
    std::optional<std::chrono::steady_clock::time_point> first_; // when it may be shown; nothing while it may not
    bool shown_ = false;                                         // the line is there
    bool at_line_begin_ = true;                                  // what others wrote ended its line
};

/// A name for one line of `width` columns on a terminal: what could steer it is replaced, and what is too long is cut
/// at the front.
[[nodiscard]] std::string nameForTerminal(std::string_view name, std::size_t width);

} // namespace kestrel
