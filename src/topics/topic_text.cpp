#include "topics/topic_text.hpp"

#include "base/text.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace kestrel {

namespace {

constexpr std::size_t kLongestSlug = 40;
constexpr std::size_t kLongestTitle = 72;
constexpr std::size_t kLongestLine = 100;
constexpr std::size_t kFewestWords = 40;
constexpr std::size_t kMostWords = 150;
constexpr std::size_t kMostExampleLines = 16;
constexpr std::string_view kIndent = "    ";
constexpr std::string_view kCodes = "Codes: ";
constexpr std::string_view kExample = "Example";
constexpr std::string_view kNone = "None: ";

/// Headed parts, in their order; the formula may be missing.
enum class Part : std::uint8_t { head, meaning, why, mend, formula, example };
constexpr std::array<std::string_view, 5> kHeads{"", "Meaning", "Why it matters", "How to mend", "Formula"};

bool isPlain(char c) { return c >= ' ' && c <= '~'; }

bool isSlug(std::string_view slug) {
    return !slug.empty() && slug.size() <= kLongestSlug && slug.front() != '-' && slug.back() != '-' &&
           std::ranges::all_of(slug, [](char c) { return isLower(c) || isDigit(c) || c == '-'; });
}

/// The text with the lines of each paragraph joined to one.
std::string unwrapped(std::string_view text) {
    std::string joined;
    bool may_go_on = false;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        const bool is_prose = !line.empty() && !line.starts_with(' ');
        if (is_prose && may_go_on) joined.back() = ' ';
        may_go_on = is_prose;
        joined.append(line).push_back('\n');
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return joined;
}

void trimEmptyLines(std::string& text) {
    text.erase(0, std::min(text.find_first_not_of('\n'), text.size()));
    text.erase(text.find_last_not_of('\n') + 1);
}

/// Walks the lines of one topic.
class TopicReader {
public:
    TopicReader(std::string_view slug, std::vector<std::string>& faults) : faults_(faults) { topic_.slug = slug; }

    void take(std::string_view line) {
        ++line_;
        if (line.size() > kLongestLine) fault("a line has more than 100 characters");
        if (line.ends_with(' ') && example_ == nullptr) fault("a line ends with a blank");
        if (example_ == nullptr && !std::ranges::all_of(line, isPlain)) fault("a character that is not plain ASCII");
        if (line_ == 1) return takeTitle(line);
        if (line_ == 2) return takeCodes(line);
        if (takeHead(line)) return;
        part_ == Part::example ? takeExample(line) : takeProse(line);
    }

    TopicText finish() {
        for (std::string* const text : {&topic_.meaning, &topic_.why, &topic_.mend, &topic_.formula, &topic_.reason})
            *text = unwrapped(*text);
        for (std::string* const text :
             {&topic_.meaning, &topic_.why, &topic_.mend, &topic_.formula, &topic_.bad, &topic_.mended, &topic_.reason})
            trimEmptyLines(*text);
        if (!isSlug(topic_.slug)) fault("the name is not one of lower-case words with hyphens, of at most 40 letters");
        if (part_ != Part::example) fault("there is no part \"Example\"");
        for (const std::string* const text : {&topic_.meaning, &topic_.why, &topic_.mend})
            if (text->empty()) fault("a part is empty or missing");
        const std::size_t words = countWords(topic_.meaning) + countWords(topic_.why) + countWords(topic_.mend);
        if (words < kFewestWords || words > kMostWords)
            fault("the first three parts have " + std::to_string(words) + " words; 40 to 150 are wanted");
        checkExample();
        return std::move(topic_);
    }

private:
    void fault(std::string_view text) { faults_.push_back(std::to_string(line_) + ": " + std::string(text)); }

    void takeTitle(std::string_view line) {
        if (line.empty() || line.size() > kLongestTitle) fault("a title has 1 to 72 characters");
        if (line.ends_with('.')) fault("a title has no full stop");
        topic_.title = line;
    }

    void takeCodes(std::string_view line) {
        if (!line.starts_with(kCodes)) return fault("the second line begins with \"Codes: \"");
        line.remove_prefix(kCodes.size());
        while (!line.empty()) {
            const std::string_view word = line.substr(0, line.find(' '));
            const std::optional<FindingCode> code = readFindingCode(word);
            if (!code) fault(std::string("\"").append(word).append("\" is no code"));
            if (code && !topic_.codes.empty() && *code <= topic_.codes.back())
                fault("the codes do not ascend at " + std::string(word));
            if (code) topic_.codes.push_back(*code);
            line.remove_prefix(std::min(word.size() + 1, line.size()));
        }
        if (topic_.codes.empty()) fault("there is no code");
    }

    bool takeHead(std::string_view line) {
        const auto head = std::ranges::find(kHeads, line);
        const bool is_example = line == kExample || line.starts_with("Example (");
        if (line.empty() || (head == kHeads.end() && !is_example)) return false;
        const auto part = is_example ? Part::example : static_cast<Part>(head - kHeads.begin());
        const bool leaves_formula_out = part_ == Part::mend && part == Part::example;
        if (static_cast<int>(part) != static_cast<int>(part_) + 1 && !leaves_formula_out)
            fault(std::string("\"").append(line).append("\" is not the part that follows"));
        if (!empty_before_) fault("there is no empty line ahead of a head");
        part_ = part;
        head_line_ = line_;
        if (is_example) takeFrame(line.substr(kExample.size()));
        return true;
    }

    void takeFrame(std::string_view behind) {
        if (behind.empty()) return;
        if (!behind.ends_with(')')) return fault("the frame has no closing parenthesis");
        topic_.frame = behind.substr(2, behind.size() - 3);
    }

    void takeProse(std::string_view line) {
        empty_before_ = line.empty();
        if (line_ == head_line_ + 1 && !line.empty()) fault("there is no empty line behind a head");
        switch (part_) {
        case Part::meaning: return append(topic_.meaning, line);
        case Part::why: return append(topic_.why, line);
        case Part::mend: return append(topic_.mend, line);
        case Part::formula: return append(topic_.formula, line);
        case Part::head:
        case Part::example: break;
        }
        if (!line.empty()) fault("a text ahead of the first part");
    }

    void takeExample(std::string_view line) {
        if (line == "Bad:" || line == "Mended:") {
            if ((line == "Bad:") != (example_ == nullptr) || !topic_.mended.empty())
                fault("there is one \"Bad:\" and, behind it, one \"Mended:\"");
            example_ = line == "Bad:" ? &topic_.bad : &topic_.mended;
        } else if (example_ != nullptr) {
            if (!line.empty() && !line.starts_with(kIndent)) fault("an example's line is not indented by four blanks");
            append(*example_, line.substr(std::min(kIndent.size(), line.size())));
        } else if (!topic_.reason.empty()) {
            append(topic_.reason, line);
        } else if (line.starts_with(kNone)) {
            append(topic_.reason, line.substr(kNone.size()));
        } else if (!line.empty()) {
            fault("neither \"Bad:\" nor \"None: \"");
        }
    }

    void checkExample() {
        if (part_ != Part::example || !topic_.reason.empty()) return;
        if (topic_.frame.empty()) fault("an example names its frame, as in \"Example (model)\"");
        if (topic_.bad.empty() || topic_.mended.empty()) fault("an example has lines under \"Bad:\" and \"Mended:\"");
        for (const std::string* const text : {&topic_.bad, &topic_.mended}) {
            const auto lines = static_cast<std::size_t>(std::ranges::count(*text, '\n')) + 1;
            if (lines > kMostExampleLines) fault("an example has at most 16 lines");
        }
        if (topic_.bad == topic_.mended) fault("the bad and the mended example do not differ");
    }

    static void append(std::string& text, std::string_view line) { text.append(line).push_back('\n'); }

    std::vector<std::string>& faults_;
    TopicText topic_;
    std::size_t line_ = 0;
    std::size_t head_line_ = 0;
    Part part_ = Part::head;
    bool empty_before_ = true;
    std::string* example_ = nullptr; // which of the two is being read
};

} // namespace

TopicText readTopicText(std::string_view slug, std::string_view text, std::vector<std::string>& faults) {
    TopicReader reader(slug, faults);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        reader.take(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return reader.finish();
}

std::size_t countWords(std::string_view text) {
    std::size_t words = 0;
    bool inside = false;
    for (const char c : text) {
        const bool is_blank = c == ' ' || c == '\n';
        if (!is_blank && !inside) ++words;
        inside = !is_blank;
    }
    return words;
}

} // namespace kestrel
