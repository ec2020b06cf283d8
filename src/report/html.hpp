#pragma once

#include "base/output.hpp"

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

/// HTML that escapes by construction: what is not one of these types does not compile, and what comes from a file can
/// only be a text or the value of an attribute that takes texts.
namespace kestrel {

/// Markup of our own: a literal of whole tags, so that what follows it is between tags. Scripts, styles and links need
/// more care than a literal has.
class Markup {
public:
    consteval Markup(const char* literal) : text_(literal) {
        bool in_tag = false;
        for (const char c : text_) {
            if (in_tag == (c == '<') && (c == '<' || c == '>')) throw "markup that ends or begins within a tag";
            if (c == '<') in_tag = true;
            if (c == '>') in_tag = false;
        }
        if (in_tag) throw "markup that ends within a tag";
        for (const std::string_view word : {"<script", "<style", "<iframe", "<object", "<link", "<meta", "javascript:"})
            if (text_.find(word) != std::string_view::npos) throw "markup that is not harmless";
    }
    [[nodiscard]] constexpr std::string_view text() const { return text_; }

private:
    std::string_view text_;
};

/// Any text, shown as it reads. Control characters but TAB and line feed, and what is not UTF-8, become U+FFFD.
class Text {
public:
    explicit constexpr Text(std::string_view text) : text_(text) {}
    [[nodiscard]] constexpr std::string_view text() const { return text_; }

private:
    std::string_view text_;
};

/// A place of the page that a link leads to: a kind of place and numbers, never a name.
struct Anchor {
    char kind = 'f';
    std::uint32_t file = 0;
    std::uint32_t number = 0; ///< within the file; 0 for the file itself

    friend constexpr bool operator==(const Anchor&, const Anchor&) = default;
};

/// The name of an element or an attribute.
class MarkupName {
public:
    consteval MarkupName(const char* literal) : text_(literal) {
        if (text_.empty()) throw "a name is not empty";
        for (const char c : text_) {
            if (!(('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z') || ('0' <= c && c <= '9') || c == '-')) {
                throw "a name has letters, digits and hyphens";
            }
        }
    }
    [[nodiscard]] constexpr std::string_view text() const { return text_; }
    /// True of the attributes whose values are more than texts: a browser follows, runs or applies them.
    [[nodiscard]] constexpr bool isActive() const {
        for (const std::string_view name : {"href", "src", "srcset", "style", "action", "formaction", "data", "srcdoc",
                                            "id", "name", "http-equiv", "ping", "poster", "background"})
            if (text_ == name) return true;
        return text_.starts_with("on");
    }

private:
    std::string_view text_;
};

/// The name of an attribute that takes any text.
class TextAttribute : public MarkupName {
public:
    consteval TextAttribute(const char* literal) : MarkupName(literal) {
        if (isActive()) throw "an attribute that takes no texts of files";
    }
};

/// A value of our own.
class Literal {
public:
    consteval Literal(const char* literal) : text_(literal) {
        if (text_.find_first_of("\"<>&") != std::string_view::npos) throw "a value that would have to be escaped";
        if (text_.find("javascript:") != std::string_view::npos) throw "a value that is not harmless";
    }
    [[nodiscard]] constexpr std::string_view text() const { return text_; }

private:
    std::string_view text_;
};

/// The digits of a number below 1000, how many they are, and anything behind them.
struct ShortNumber {
    std::array<char, 3> digits;
    std::uint8_t size;
};
inline constexpr std::size_t kShortNumberCount = 1000;
extern const std::array<ShortNumber, kShortNumberCount> kShortNumbers;

/// Coordinates of a path or of another attribute of a picture: numbers and letters only, which need no escaping.
class Coordinates {
public:
    void clear() { size_ = 0; }
    [[nodiscard]] bool empty() const { return size_ == 0; }
    [[nodiscard]] std::string_view text() const { return {room_.get(), size_}; }

    /// Our own letters and signs between numbers.
    Coordinates& add(Literal text);
    /// A number that follows others: behind a digit with its sign or a blank ahead.
    Coordinates& step(std::int32_t number);
    /// A number with at most one decimal.
    Coordinates& tenths(double number);
    /// A number in its general form with six digits.
    Coordinates& general(double number);

    /// Writes into room that is there, without a look at it for each number; for the lines of pictures.
    class Steps {
    public:
        /// A letter and the number behind it.
        void begin(Literal letter, std::int32_t number) {
            *at_++ = letter.text().front();
            *at_ = '-';
            at_ += number < 0 ? 1 : 0;
            digits(static_cast<std::uint32_t>(number < 0 ? -number : number));
        }
        /// A number behind another one.
        void step(std::int32_t number) {
            *at_++ = number < 0 ? '-' : ' ';
            digits(static_cast<std::uint32_t>(number < 0 ? -number : number));
        }

    private:
        friend class Coordinates;
        explicit Steps(char* at) : at_(at) {}

        void digits(std::uint32_t number) {
            if (number >= kShortNumberCount) {
                at_ = longDigits(at_, number);
                return;
            }
            const ShortNumber& text = kShortNumbers[number];
            std::memcpy(at_, &text, sizeof text);
            at_ += text.size;
        }
        static char* longDigits(char* at, std::uint32_t number);

        char* at_;
    };
    /// Begins steps, with room for so many numbers; nothing else may be added until they end.
    [[nodiscard]] Steps beginSteps(std::size_t numbers) {
        constexpr std::size_t kRoom = 12; // a letter, a sign or blank, digits
        return Steps(makeRoom((numbers + 1) * kRoom));
    }
    void endSteps(const Steps& steps) { size_ = static_cast<std::size_t>(steps.at_ - room_.get()); }

private:
    /// Where the next letters go, with room for so many.
    char* makeRoom(std::size_t more) {
        if (capacity_ - size_ < more) grow(more);
        return room_.get() + size_;
    }
    void grow(std::size_t more);

    std::unique_ptr<char[]> room_;
    std::size_t capacity_ = 0;
    std::size_t size_ = 0;
};

/// An attribute of an element.
class Attribute {
public:
    constexpr Attribute(MarkupName name, Literal value)
        : name_(name.text()), kind_(Kind::literal), text_(value.text()) {}
    constexpr Attribute(TextAttribute name, Text value) : name_(name.text()), kind_(Kind::text), text_(value.text()) {}
    constexpr Attribute(TextAttribute name, std::int64_t value)
        : name_(name.text()), kind_(Kind::number), number_(value) {}
    Attribute(TextAttribute name, const Coordinates& value)
        : name_(name.text()), kind_(Kind::literal), text_(value.text()) {}
    /// "id" of a place.
    [[nodiscard]] static constexpr Attribute id(Anchor anchor) { return {"id", Kind::id, anchor}; }
    /// "href" of a link to a place.
    [[nodiscard]] static constexpr Attribute href(Anchor anchor) { return {"href", Kind::link, anchor}; }

private:
    friend class Html;
    enum class Kind : std::uint8_t { literal, text, number, id, link };

    constexpr Attribute(std::string_view name, Kind kind, Anchor anchor) : name_(name), kind_(kind), anchor_(anchor) {}

    std::string_view name_;
    Kind kind_;
    std::string_view text_{};
    std::int64_t number_ = 0;
    Anchor anchor_{};
};

class HtmlPiece;

/// Writes HTML to an output or a text. What is pending goes there when there is much of it, when it is flushed, and at
/// the end.
class Html {
public:
    explicit Html(Output& out) : out_(&out) {}
    explicit Html(std::string& text) : text_(&text) {}
    Html(const Html&) = delete;
    Html& operator=(const Html&) = delete;
    /// Whoever can do something about memory that is missing flushes before.
    ~Html();

    void flush() { writeOn({buffer_.data(), std::exchange(used_, 0)}); }

    /// In line, where the size is known, so that it is copied without a call.
    [[gnu::always_inline]] Html& operator<<(Markup markup) {
        const std::string_view text = markup.text();
        if (buffer_.size() - used_ < text.size()) {
            putLong(text);
        } else {
            text.copy(buffer_.data() + used_, text.size());
            used_ += text.size();
        }
        return *this;
    }
    Html& operator<<(Text text) {
        writeText(text.text(), false);
        return *this;
    }
    template <std::integral Number>
    requires(!std::same_as<Number, bool> && !std::same_as<Number, char>) Html& operator<<(Number number) {
        writeNumber(static_cast<std::int64_t>(number));
        return *this;
    }
    /// The anchor as it is in "id".
    Html& operator<<(Anchor anchor);

    /// Begins an element; its end tag is markup.
    Html& begin(MarkupName element, std::initializer_list<Attribute> attributes);

    /// A text of a row of cells that are parted by TABs and ended by line feeds.
    Html& cell(Text text) {
        writeText(text.text(), true);
        return *this;
    }

    /// What another one has written into a memory of its own, which is whole markup as all that is written.
    Html& append(HtmlPiece& piece);

    /// A path of a picture.
    Html& path(MarkupName class_name, const Coordinates& data);
    /// A text of a picture at a place along one axis, "x" or "y".
    Html& tick(MarkupName axis, const Coordinates& place, Text text);

private:
    void put(std::string_view text) {
        if (buffer_.size() - used_ < text.size()) return putLong(text);
        text.copy(buffer_.data() + used_, text.size());
        used_ += text.size();
    }
    void putLong(std::string_view text);
    void writeOn(std::string_view text) {
        if (out_ != nullptr) {
            out_->write(text);
        } else {
            text_->append(text);
        }
    }
    void writeText(std::string_view text, bool one_line);
    void writeNumber(std::int64_t number);

    Output* out_ = nullptr; ///< where it goes, or
    std::string* text_ = nullptr;
    std::size_t used_ = 0;
    std::array<char, 4096> buffer_;
};

/// A piece of a page that is written apart from the others.
class HtmlPiece {
public:
    [[nodiscard]] Html& html() { return html_; }
    /// What was written so far.
    [[nodiscard]] std::string_view text() {
        html_.flush();
        return text_;
    }
    /// Forgets it, so that the next piece has its memory.
    void clear() {
        html_.flush();
        text_.clear();
    }

private:
    std::string text_;
    Html html_{text_};
};

inline Html& Html::append(HtmlPiece& piece) {
    put(piece.text());
    return *this;
}

/// A link to a place of the page, or only the text where there is none.
void writeLink(Html& html, const Anchor* anchor, std::string_view text);

} // namespace kestrel
