#include "main/explain.hpp"

#include "base/text.hpp"
#include "findings/json.hpp"
#include "main/messages.hpp"
#include "topics/find.hpp"
#include "topics/topic_forms.hpp"

#include <algorithm>
#include <iterator>
#include <span>

namespace kestrel {

namespace {

constexpr std::string_view kBold = "\x1b[1m";

std::string named(FindingCode code) { return std::string(CodeText(code).text()); }

bool hasText(FindingCode code) {
    if (code.family == CodeFamily::advice) return false; // one that has a text has a topic
    const std::size_t row = catalogIndex(code.number);
    return row != kCatalog.size() && kCatalog[row].text != kReservedText;
}

/// The codes with topics that are next to one without.
std::string neighbors(FindingCode code) {
    const auto rows = topicRows();
    const auto above = std::ranges::lower_bound(rows, code, {}, &TopicRow::code);
    std::string text;
    if (above != rows.begin() && std::prev(above)->code.family == code.family) text = named(std::prev(above)->code);
    if (above == rows.end() || above->code.family != code.family) return text;
    return text.append(text.empty() ? "" : " and ").append(named(above->code));
}

std::string noSuchCode(FindingCode code) {
    std::string text =
        hasText(code) ? "message " + named(code) + " is not raised by a file" : "there is no message " + named(code);
    if (const std::string near = neighbors(code); !near.empty()) text.append("; next to it: ").append(near);
    return text;
}

std::string noSuchText(std::string_view asked) {
    const std::optional<FindingCode> near = nearestCode(asked);
    if (!near) return "there is no such message; \"verimark --messages\" lists them";
    return "there is no such message; did you mean " + named(*near) + ", \"" + textOf(*near) + "\"?";
}

void addOnce(std::vector<const Topic*>& topics, const Topic* topic) {
    if (topic != nullptr && std::ranges::find(topics, topic) == topics.end()) topics.push_back(topic);
}

/// Messages, each with its classes, in lines of a width.
std::string messageLines(std::span<const FindingCode> codes, std::size_t width) {
    constexpr std::size_t kLeastText = 20;
    std::size_t longest = 0;
    for (const FindingCode code : codes)
        longest = std::max(longest, joinedClasses(code).size());
    std::string text;
    for (const FindingCode code : codes) {
        const std::string number = named(code);
        std::string line(2 + 4 - std::min<std::size_t>(number.size(), 4), ' ');
        line.append(number).append("  ").append(joinedClasses(code));
        line.resize(2 + 4 + 2 + longest + 2, ' ');
        std::string message;
        appendWrapped(message, textOf(code), std::max(width, line.size() + kLeastText), line.size());
        text.append(message.replace(0, line.size(), line));
    }
    return text;
}

void writeMessage(JsonArray& messages, FindingCode code) {
    JsonObject message(messages);
    message.text("code", named(code));
    {
        JsonArray classes(message, "classes");
        for (const std::string_view name : classesOf(code))
            classes.text(name);
    }
    message.text("text", textOf(code));
}

void writePart(JsonObject& object, std::string_view key, std::string_view text) {
    if (!text.empty()) object.text(key, text);
}

} // namespace

Explained findExplained(std::string_view asked) {
    Explained explained;
    asked = trim(asked);
    if (const std::optional<FindingCode> code = readAskedCode(asked)) {
        addOnce(explained.topics, topicOf(*code));
        if (explained.topics.empty()) explained.problem = noSuchCode(*code);
        return explained;
    }
    addOnce(explained.topics, topicNamed(asked));
    if (!explained.topics.empty()) return explained;
    explained.codes = codesOfText(asked);
    for (const FindingCode code : explained.codes)
        addOnce(explained.topics, topicOf(code));
    if (explained.topics.empty()) explained.problem = noSuchText(asked);
    return explained;
}

std::string explanation(const Explained& explained, const ExplainForm& form) {
    const PlainForm plain{.width = form.width,
                          .heading_begin = form.color ? kBold : std::string_view(),
                          .heading_end = form.color ? kColorOff : std::string_view()};
    std::string text;
    const auto add_title = [&](const Topic& topic) {
        text.append(plain.heading_begin).append(topic.title).append(plain.heading_end).append("\n\n");
    };
    if (explained.topics.size() == 1) {
        const Topic& topic = *explained.topics.front();
        add_title(topic);
        text.append(messageLines(topic.codes, form.width)).append("\n");
        return text.append(plainText(topic, plain));
    }
    appendWrapped(text, "Messages of several topics read like this. Ask for one by its code.", form.width);
    for (const Topic* const topic : explained.topics) {
        std::vector<FindingCode> meant;
        std::ranges::copy_if(explained.codes, std::back_inserter(meant),
                             [topic](FindingCode code) { return topicOf(code) == topic; });
        text.push_back('\n');
        add_title(*topic);
        text.append(messageLines(meant, form.width));
    }
    return text;
}

void explainAsJson(Output& out, const Explained& explained, const FormatSettings& settings) {
    JsonText text{out};
    {
        JsonObject whole(text);
        writeTool(whole, settings.tool, settings.version);
        JsonArray topics(whole, "topics", true);
        for (const Topic* const topic : explained.topics) {
            JsonObject object(topics);
            object.text("topic", topic->slug);
            object.text("title", topic->title);
            {
                JsonArray messages(object, "messages");
                for (const FindingCode code : topic->codes)
                    writeMessage(messages, code);
            }
            object.text("meaning", topic->meaning);
            object.text("why", topic->why);
            object.text("mend", topic->mend);
            writePart(object, "formula", topic->formula);
            writePart(object, "bad", topic->bad);
            writePart(object, "mended", topic->mended);
            writePart(object, "no_example", topic->reason);
        }
    }
    out.write("\n");
}

} // namespace kestrel
