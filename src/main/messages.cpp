#include "main/messages.hpp"

#include "findings/json.hpp"
#include "findings/message_classes.hpp"
#include "topics/topic.hpp"

#include <algorithm>

namespace kestrel {

namespace {

constexpr Level kShownLevels[] = {Level::bug, Level::error, Level::warning, Level::note, Level::advice, Level::caution};

/// Calls `use` with every row but the first, which stands in for unknown codes, and those without a text.
template <class Use> void eachMessage(Use use) {
    for (const MessageRow& row : kCatalog)
        if (row.code != 0 && row.text != kReservedText) use(row);
}

void listAsJson(Output& out, const FormatSettings& settings) {
    JsonText text{out};
    {
        JsonObject whole(text);
        {
            JsonObject tool(whole, "tool");
            tool.text("name", settings.tool);
            tool.text("version", settings.version);
        }
        JsonArray messages(whole, "messages", true);
        eachMessage([&](const MessageRow& row) {
            JsonObject message(messages);
            const FindingCode code{CodeFamily::message, row.code};
            message.text("code", CodeText(code).text());
            {
                JsonArray classes(message, "classes");
                for (const std::string_view name : classesOf(code))
                    classes.text(name);
            }
            message.text("text", row.text);
            const Topic* const topic = topicOf(code);
            topic != nullptr ? message.text("topic", topic->slug) : message.null("topic");
        });
    }
    out.write("\n");
}

/// A text on its line: one has a line feed, which is shown as in a C string.
std::string shown(std::string_view text) {
    std::string line;
    for (const char c : text)
        c == '\n' ? line.append("\\n") : line.append(1, c);
    return line;
}

} // namespace

std::vector<std::string_view> classesOf(FindingCode code) {
    if (code.family == CodeFamily::advice) return {levelName(Level::advice)};
    std::vector<std::string_view> names;
    for (const Level level : kShownLevels)
        if (isReportedAs(code.number, level)) names.push_back(levelName(level));
    return names;
}

std::string joinedClasses(FindingCode code) {
    std::string classes;
    for (const std::string_view name : classesOf(code))
        classes.append(classes.empty() ? "" : ",").append(name);
    return classes;
}

void listMessages(Output& out, FormatKind format, const FormatSettings& settings) {
    if (format == FormatKind::json) return listAsJson(out, settings);
    constexpr std::size_t kClassesWidth = 17;
    std::string line;
    eachMessage([&](const MessageRow& row) {
        const FindingCode code{CodeFamily::message, row.code};
        std::string classes = joinedClasses(code);
        if (classes.empty()) classes.push_back('-');
        classes.resize(std::max(classes.size(), kClassesWidth), ' ');
        line.clear();
        appendInteger(line, row.code, 4);
        line.append("  ").append(classes).append(" ").append(shown(row.text));
        if (const Topic* const topic = topicOf(code)) line.append("  [").append(topic->slug).append("]");
        out.write(line.append("\n"));
    });
}

} // namespace kestrel
