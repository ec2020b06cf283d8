#include "main/messages.hpp"

#include "findings/json.hpp"
#include "findings/message_classes.hpp"
#include "quality/checks.hpp"
#include "topics/topic.hpp"

#include <algorithm>

namespace kestrel {

namespace {

constexpr Level kShownLevels[] = {Level::bug, Level::error, Level::warning, Level::note, Level::advice, Level::caution};

/// Calls `use` with the code and the text of every row but the first, which stands in for unknown codes, and those
/// without a text, and of every check of advice.
template <class Use> void eachMessage(Use use) {
    for (const MessageRow& row : kCatalog) {
        if (row.code == 0 || row.text == kReservedText) continue;
        use(FindingCode{CodeFamily::message, row.code}, row.text);
    }
    for (const Check& check : adviceChecks())
        use(FindingCode{CodeFamily::advice, check.code}, check.title);
}

void listAsJson(Output& out, const FormatSettings& settings) {
    JsonText text{out};
    {
        JsonObject whole(text);
        writeTool(whole, settings.tool, settings.version);
        JsonArray messages(whole, "messages", true);
        eachMessage([&](FindingCode code, std::string_view listed) {
            JsonObject message(messages);
            message.text("code", CodeText(code).text());
            {
                JsonArray classes(message, "classes");
                for (const std::string_view name : classesOf(code))
                    classes.text(name);
            }
            message.text("text", listed);
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

std::string textOf(FindingCode code) {
    if (code.family == CodeFamily::message) return generalText(code);
    const Check* const check = adviceCheck(code.number);
    return check == nullptr ? std::string() : std::string(check->title);
}

std::string joinedClasses(FindingCode code) {
    std::string classes;
    for (const std::string_view name : classesOf(code))
        classes.append(classes.empty() ? "" : ",").append(name);
    return classes;
}

void listMessages(Output& out, FormatKind format, const FormatSettings& settings) {
    if (format == FormatKind::json) return listAsJson(out, settings);
    constexpr std::size_t kCodeWidth = 4;
    constexpr std::size_t kClassesWidth = 17;
    eachMessage([&](FindingCode code, std::string_view listed) {
        std::string classes = joinedClasses(code);
        if (classes.empty()) classes.push_back('-');
        classes.resize(std::max(classes.size(), kClassesWidth), ' ');
        std::string line(CodeText(code).text());
        line.insert(0, kCodeWidth - std::min(kCodeWidth, line.size()), ' ');
        line.append("  ").append(classes).append(" ").append(shown(listed));
        if (const Topic* const topic = topicOf(code)) line.append("  [").append(topic->slug).append("]");
        out.write(line.append("\n"));
    });
}

} // namespace kestrel
