#include "base/output.hpp"

#include "base/general_form.hpp"

#include <array>
#include <charconv>

namespace kestrel {

namespace {

void appendReal(std::string& text, double value, std::chars_format format) {
    std::array<char, 64> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, format, 6);
    text.append(digits.data(), end.ptr);
}

} // namespace

void Output::flush() {
    if (stream_ == nullptr) return;
    if (std::fwrite(text_.data(), 1, text_.size(), stream_) != text_.size()) failed_ = true;
    if (std::fflush(stream_) != 0) failed_ = true;
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
