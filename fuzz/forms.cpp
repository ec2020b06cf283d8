#include "forms.hpp"

#include "base/text.hpp"
#include "base/utf8.hpp"
#include "entry.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace kestrel::fuzz {

namespace {

/// UTF-8 throughout, without control characters but white space.
void demandCharacters(std::string_view text) {
    const auto is_plain = [](char c) { return (c >= ' ' && c < '\x7f') || c == '\n'; };
    for (std::string_view left = text; !left.empty();) {
        const auto odd = std::ranges::find_if_not(left, is_plain);
        left.remove_prefix(static_cast<std::size_t>(odd - left.begin()));
        if (left.empty()) return;
        const Character character = takeCharacter(left);
        const bool is_space = character.code == '\n' || character.code == '\t' || character.code == '\r';
        if (!character.valid || (character.code < 0x20 && !is_space)) fault("characters", text);
    }
}

/// Walks over JSON by its grammar.
class JsonWalk {
public:
    explicit JsonWalk(std::string_view text) : whole_(text), left_(text) {}

    void value() {
        skipSpace();
        if (take('{')) {
            members('}', [this] {
                string();
                demand(':');
                value();
            });
        } else if (take('[')) {
            members(']', [this] { value(); });
        } else if (!left_.empty() && left_.front() == '"') {
            string();
        } else {
            word();
        }
        skipSpace();
    }

    void end() const {
        if (!left_.empty()) fault("JSON goes on", whole_);
    }

private:
    template <class Member> void members(char closing, const Member& member) {
        skipSpace();
        if (take(closing)) return;
        do
            member();
        while (take(','));
        demand(closing);
    }

    void string() {
        demand('"');
        const auto is_plain = [](char c) { return c != '"' && c != '\\' && static_cast<unsigned char>(c) >= 0x20; };
        for (;;) {
            const auto odd = std::ranges::find_if_not(left_, is_plain);
            left_.remove_prefix(static_cast<std::size_t>(odd - left_.begin()));
            if (left_.empty() || left_.front() == '"') break;
            if (static_cast<unsigned char>(left_.front()) < 0x20) fault("JSON has a control character", whole_);
            if (left_.front() == '\\') {
                left_.remove_prefix(1);
                if (left_.empty() || std::string_view("\"\\/bfnrtu").find(left_.front()) == std::string_view::npos)
                    fault("JSON has a wrong escape", whole_);
                if (left_.front() == 'u' && (left_.size() < 5 || !std::all_of(&left_[1], &left_[1] + 4, isHexDigit)))
                    fault("JSON has a wrong number of a character", whole_);
            }
            left_.remove_prefix(1);
        }
        demand('"');
    }

    /// A number or one of the three words.
    void word() {
        const std::size_t size = std::min(left_.find_first_of(",]} \t\r\n"), left_.size());
        const std::string_view text = left_.substr(0, size);
        left_.remove_prefix(size);
        if (text != "true" && text != "false" && text != "null" && !isNumber(text)) fault("JSON has a word", whole_);
    }

    static bool isNumber(std::string_view text) {
        const auto digits = [&text] {
            const std::size_t size = std::min(text.find_first_not_of("0123456789"), text.size());
            text.remove_prefix(size);
            return size;
        };
        if (text.starts_with('-')) text.remove_prefix(1);
        const bool has_zero = text.starts_with('0');
        const std::size_t whole = digits();
        if (whole == 0 || (has_zero && whole > 1)) return false;
        if (text.starts_with('.')) {
            text.remove_prefix(1);
            if (digits() == 0) return false;
        }
        if (text.starts_with('e') || text.starts_with('E')) {
            text.remove_prefix(1);
            if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
            if (digits() == 0) return false;
        }
        return text.empty();
    }

    static bool isHexDigit(char c) {
        return std::string_view("0123456789abcdefABCDEF").find(c) != std::string_view::npos;
    }

    void skipSpace() { left_.remove_prefix(std::min(left_.find_first_not_of(" \t\r\n"), left_.size())); }
    bool take(char c) {
        skipSpace();
        if (!left_.starts_with(c)) return false;
        left_.remove_prefix(1);
        return true;
    }
    void demand(char c) {
        if (!take(c)) fault(std::string("JSON lacks ").append(1, c), whole_);
    }

    std::string_view whole_;
    std::string_view left_;
};

bool isNameCharacter(char c) { return isAlpha(c) || isDigit(c) || c == '-' || c == ':' || c == '_'; }

/// Walks over tags and texts.
class MarkupWalk {
public:
    MarkupWalk(std::string_view text, MarkupKind kind) : whole_(text), left_(text), kind_(kind) {}

    void walk() {
        while (!left_.empty()) {
            if (left_.starts_with("<!") || left_.starts_with("<?")) {
                skipBehind(">");
            } else if (left_.starts_with("</")) {
                left_.remove_prefix(2);
                const std::string_view element = name();
                if (open_.empty() || open_.back() != element) wrong("an end tag without its begin");
                open_.pop_back();
                demand(">");
            } else if (left_.starts_with('<')) {
                left_.remove_prefix(1);
                beginTag();
            } else {
                text('>');
            }
        }
        if (!open_.empty()) wrong("an element does not end");
    }

private:
    void beginTag() {
        const std::string_view element = name();
        while (left_.starts_with(' ')) {
            left_.remove_prefix(1);
            static_cast<void>(name());
            if (!left_.starts_with('=')) {
                if (kind_ == MarkupKind::xml) wrong("an attribute without value");
                continue;
            }
            demand("=\"");
            text('"');
            demand("\"");
        }
        constexpr std::array<std::string_view, 8> kVoid{"br", "hr", "img", "input", "link", "meta", "col", "wbr"};
        if (left_.starts_with('/')) {
            demand("/>");
            return;
        }
        demand(">");
        if (kind_ == MarkupKind::html && std::ranges::find(kVoid, element) != kVoid.end()) return;
        // Between these tags nothing is markup.
        if (kind_ == MarkupKind::html && (element == "script" || element == "style"))
            return skipBehind(std::string("</").append(element).append(">"));
        open_.push_back(element);
    }

    std::string_view name() {
        const auto end = std::ranges::find_if_not(left_, isNameCharacter);
        const std::string_view name = left_.substr(0, static_cast<std::size_t>(end - left_.begin()));
        if (name.empty() || !isAlpha(name.front())) wrong("a name");
        left_.remove_prefix(name.size());
        return name;
    }

    /// A text up to a tag, or a value up to its quotation mark: what means something is escaped.
    void text(char end) {
        const auto means = [](char c) { return c == '<' || c == '>' || c == '"' || c == '&'; };
        for (;;) {
            const auto at = std::ranges::find_if(left_, means);
            left_.remove_prefix(static_cast<std::size_t>(at - left_.begin()));
            if (left_.empty() || left_.front() == '<' || left_.front() == end) break;
            if (left_.front() == '&') entity();
            left_.remove_prefix(1);
        }
        if (!left_.empty() && (left_.front() == '<') == (end == '"')) wrong("a character that is not escaped");
    }

    void entity() const {
        const std::string_view entity = left_.substr(1, std::min<std::size_t>(left_.find(';'), 12) - 1);
        constexpr std::array<std::string_view, 6> kKnown{"amp", "lt", "gt", "quot", "apos", "nbsp"};
        if (!entity.starts_with('#') && std::ranges::find(kKnown, entity) == kKnown.end()) wrong("an entity");
    }

    void demand(std::string_view text) {
        if (!left_.starts_with(text)) wrong(text);
        left_.remove_prefix(text.size());
    }
    void skipBehind(std::string_view text) {
        const std::size_t at = left_.find(text);
        if (at == std::string_view::npos) wrong(text);
        left_.remove_prefix(at + text.size());
    }
    [[noreturn]] void wrong(std::string_view what) const {
        fault(std::string("markup at ")
                  .append(std::to_string(whole_.size() - left_.size()))
                  .append(": ")
                  .append(what)
                  .append(" near ")
                  .append(left_.substr(0, 60)),
              whole_);
    }

    std::string_view whole_;
    std::string_view left_;
    MarkupKind kind_;
    std::vector<std::string_view> open_;
};

} // namespace

void demandJson(std::string_view text) {
    demandCharacters(text);
    JsonWalk walk(text);
    walk.value();
    walk.end();
}

void demandJsonLines(std::string_view text) {
    while (!text.empty()) {
        const std::size_t size = std::min(text.find('\n'), text.size() - 1) + 1;
        demandJson(text.substr(0, size));
        text.remove_prefix(size);
    }
}

void demandMarkup(std::string_view text, MarkupKind kind) {
    demandCharacters(text);
    MarkupWalk(text, kind).walk();
}

} // namespace kestrel::fuzz
