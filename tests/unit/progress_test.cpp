// The line that shows how far a check is: when it is there, what it says, and that it makes way.

#include "main/progress.hpp"

#include <array>
#include <chrono>
#include <cstdlib>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

using namespace std::chrono_literals;

const std::string kErase = "\r\x1b[K";

/// What a terminal would get, which the test reads.
class Screen {
public:
    Screen() { EXPECT_EQ(pipe2(ends_.data(), O_NONBLOCK), 0); }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    ~Screen() {
        for (const int end : ends_)
            close(end);
    }

    [[nodiscard]] int terminal() const { return ends_[1]; }

    /// What came since the last call.
    [[nodiscard]] std::string takeText() const {
        std::array<char, 4096> text;
        const ssize_t size = read(ends_[0], text.data(), text.size());
        return size > 0 ? std::string(text.data(), static_cast<std::size_t>(size)) : std::string();
    }

private:
    std::array<int, 2> ends_{};
};

/// The line on a terminal of some width.
std::string shownAt(unsigned short columns, const FileList& files) {
    const int screen = posix_openpt(O_RDWR | O_NOCTTY);
    EXPECT_TRUE(screen != -1 && grantpt(screen) == 0 && unlockpt(screen) == 0);
    const int terminal = open(ptsname(screen), O_RDWR | O_NOCTTY);
    const winsize size{.ws_row = 24, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
    EXPECT_EQ(ioctl(terminal, TIOCSWINSZ, &size), 0);
    Progress(terminal, files, 0ms).begin();
    std::string text;
    for (char c = 0; text.size() <= kErase.size() || !text.ends_with(kErase); text.push_back(c))
        if (read(screen, &c, 1) != 1) break;
    close(terminal);
    close(screen);
    return text.substr(kErase.size(), text.size() - 2 * kErase.size());
}

TEST(Progress, isOneLineThatIsGoneAtTheEnd) {
    const Screen screen;
    FileList files;
    files.add("one.ibs");
    files.add("two\x1b[2J\xff.ibs");
    {
        Progress progress(screen.terminal(), files, 0ms);
        progress.show();
        EXPECT_EQ(screen.takeText(), "") << "it has not begun";
        progress.begin();
        EXPECT_EQ(screen.takeText(), kErase + "0 of 2 files, 0 failed: one.ibs");
        progress.fileDone(true);
        progress.show();
        EXPECT_EQ(screen.takeText(), kErase + "1 of 2 files, 1 failed: two?[2J?.ibs");
        progress.fileDone(false);
        progress.show();
        EXPECT_EQ(screen.takeText(), kErase + "2 of 2 files, 1 failed");
        progress.giveUp();
        EXPECT_EQ(screen.takeText(), kErase);
        progress.show();
        progress.end();
        EXPECT_EQ(screen.takeText(), kErase + "2 of 2 files, 1 failed" + kErase);
        progress.show();
    }
    EXPECT_EQ(screen.takeText(), "") << "it has ended";
    Progress late(screen.terminal(), files, 1h);
    late.begin();
    late.show();
    late.end();
    EXPECT_EQ(screen.takeText(), "") << "its delay is not over";
}

TEST(Progress, makesWayForWhatIsWritten) {
    const Screen screen;
    FileList files;
    files.add("a");
    Progress progress(screen.terminal(), files, 0ms);
    progress.begin();
    const std::string line = screen.takeText();
    progress.beforeFlush();
    EXPECT_EQ(screen.takeText(), kErase);
    progress.show(); // another would wait for the one that writes
    progress.giveUp();
    progress.afterFlush("a line\nand half of one");
    progress.show();
    EXPECT_EQ(screen.takeText(), "");
    progress.beforeFlush();
    progress.afterFlush("");
    progress.show();
    EXPECT_EQ(screen.takeText(), "") << "nothing has ended the line";
    progress.beforeFlush();
    progress.afterFlush(", and the rest\n");
    progress.show();
    EXPECT_EQ(screen.takeText(), line);
}

TEST(Progress, staysOnItsLine) {
    FileList files;
    files.add("folder/of/some/length/\xc3\xa9\xc3\xa9.ibs");
    const auto shown = [&files](unsigned short columns) { return shownAt(columns, files); };
    // The last column stays free; a letter of two bytes is one column.
    EXPECT_EQ(shown(53), "0 of 1 files, 0 failed: folder/of/some/length/\xc3\xa9\xc3\xa9.ibs");
    EXPECT_EQ(shown(52), "0 of 1 files, 0 failed: ...er/of/some/length/\xc3\xa9\xc3\xa9.ibs");
    EXPECT_EQ(shown(33), "0 of 1 files, 0 failed: ...\xc3\xa9.ibs");
    EXPECT_EQ(shown(26), "0 of 1 files, 0 failed: .");
    EXPECT_EQ(shown(25), "0 of 1 files, 0 failed");
    EXPECT_EQ(shown(9), "0 of 1 f");
    EXPECT_EQ(shown(1), "");
    // A terminal that does not know its width is taken for one of 80 columns.
    EXPECT_EQ(shown(0), "0 of 1 files, 0 failed: folder/of/some/length/\xc3\xa9\xc3\xa9.ibs");
}

} // namespace
} // namespace kestrel
