#include "base/output.hpp"

#include "base/general_form.hpp"
#include "base/utf8.hpp"

#include <array>
#include <cerrno>
#include <charconv>

#include <unistd.h>

namespace kestrel {

namespace {

void appendReal(std::string& text, double value, std::chars_format format) {
    std::array<char, 64> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, format, 6);
    text.append(digits.data(), end.ptr);
}

} // namespace

Output::Output(std::FILE* stream) : stream_(stream), terminal_(isatty(fileno(stream)) == 1), plain_(!terminal_) {
    // Forms end what they began when memory runs out, too.
    text_.reserve(2 * kFlushSize);
}

void Output::writeSpecial(std::string_view text) {
    if (dropped_) return;
    while (!text.empty()) {
        const Character character = takeCharacter(text);
        const bool harmless = !character.isControl() || character.bytes == "\n" || character.bytes == "\t";
        writeControl(character.valid && harmless ? character.bytes : "?");
    }
}

void Output::flush() {
    if (stream_ == nullptr) return;
    if (listener_ != nullptr) listener_->beforeFlush();
    errno = 0;
    const bool taken = std::fwrite(text_.data(), 1, text_.size(), stream_) == text_.size();
    const bool flushed = std::fflush(stream_) == 0;
    if ((!taken || !flushed) && error_ == 0) error_ = errno != 0 ? errno : EIO;
    if (listener_ != nullptr) listener_->afterFlush(text_);
    text_.clear();
}

void appendGeneral(std::string& text, double value) {
    std::array<char, kGeneralFormRoom> room;
    if (char* const end = writeShortGeneralForm(room.data(), value)) {
        text.append(room.data(), end);
    } else {
        appendReal(text, value, std::chars_format::general);
    }
}

void appendScientific(std::string& text, double value) { appendReal(text, value, std::chars_format::scientific); }

void appendInteger(std::string& text, std::int64_t value, int width) {
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    const auto length = end.ptr - digits.data();
    if (length < width) text.append(static_cast<std::size_t>(width - length), ' ');
    text.append(digits.data(), end.ptr);
}

} // namespace kestrel
