#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace kestrel {

/// Hears when an output hands text to its stream; both calls come from one thread, the second always behind the first.
class FlushListener {
public:
    FlushListener() = default;
    FlushListener(const FlushListener&) = delete;
    FlushListener& operator=(const FlushListener&) = delete;
    virtual ~FlushListener() = default;
    virtual void beforeFlush() = 0;
    virtual void afterFlush(std::string_view text) = 0;
};

/// Where a run writes its text. Over a stream it passes the text on in large pieces; without one it keeps the text. To
/// a terminal it writes no control characters but line feeds and TABs, and nothing that is not UTF-8: what is in a file
/// cannot steer the terminal.
class Output {
public:
    /// Keeps everything that is written; text() returns it.
    Output() = default;
    /// Writes to `stream`, which stays open and belongs to the caller.
    explicit Output(std::FILE* stream);
    /// Drops everything.
    [[nodiscard]] static Output nowhere() { return Output(Nowhere{}); }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    ~Output() { flush(); }

    /// Appends `text`.
    void write(std::string_view text) {
        if (plain_) {
            append(text);
        } else {
            writeSpecial(text);
        }
    }

    /// The same for a text of our own that may steer a terminal.
    void writeControl(std::string_view text) {
        if (!dropped_) append(text);
    }

    /// Hands what is pending to the stream; nothing happens without one.
    void flush();

    /// From here on somebody hears when text goes to the stream; nobody with null.
    void setListener(FlushListener* listener) { listener_ = listener; }

    /// True when the stream did not take everything.
    [[nodiscard]] bool failed() const { return error_ != 0; }

    /// The system's number of what went wrong first, 0 when all is well.
    [[nodiscard]] int error() const { return error_; }

    /// True when the stream leads to a terminal.
    [[nodiscard]] bool isTerminal() const { return terminal_; }

    /// The text written so far; over a stream only what is still pending.
    [[nodiscard]] const std::string& text() const { return text_; }

private:
    struct Nowhere {};
    explicit Output(Nowhere /*unused*/) : plain_(false), dropped_(true) {}
    void writeSpecial(std::string_view text);
    void append(std::string_view text) {
        text_.append(text);
        if (stream_ != nullptr && text_.size() >= kFlushSize) flush();
    }

    static constexpr std::size_t kFlushSize = 65536;
    std::FILE* stream_ = nullptr;
    FlushListener* listener_ = nullptr;
    int error_ = 0;
    bool terminal_ = false;
    bool plain_ = true; ///< neither cleaned nor dropped
    bool dropped_ = false;
    std::string text_;
};

/// Appends `value` as "%g" prints it: at most six significant digits, the shorter of fixed and scientific form.
void appendGeneral(std::string& text, double value);

/// Appends `value` in scientific form with six digits after the point, as "%e" prints it.
void appendScientific(std::string& text, double value);

/// Appends a decimal integer, right-aligned with blanks in `width` columns when it is shorter.
void appendInteger(std::string& text, std::int64_t value, int width = 0);

} // namespace kestrel
