#include "main/messages.hpp"

#include "findings/json.hpp"
#include "findings/message_classes.hpp"
#include "quality/checks.hpp"

#include <string>
#include <vector>

namespace kestrel {

namespace {

constexpr Level kShownLevels[] = {Level::bug, Level::error, Level::warning, Level::note, Level::advice, Level::caution};

/// What is listed of a message or an advice.
struct Listed {
    FindingCode code;
    std::vector<std::string_view> classes;
    std::string_view text;
};

std::vector<std::string_view> classesOf(MessageCode code) {
    std::vector<std::string_view> names;
    for (const Level level : kShownLevels)
        if (isReportedAs(code, level)) names.push_back(levelName(level));
    return names;
}

/// Calls `use` with every row but the first, which stands in for unknown codes, and those without a text, and with
/// every check of advice.
template <class Use> void eachMessage(Use use) {
    for (const MessageRow& row : kCatalog) {
        if (row.code == 0 || row.text == kReservedText) continue;
        use(Listed{{CodeFamily::message, row.code}, classesOf(row.code), row.text});
    }
    for (const Check& check : adviceChecks())
        use(Listed{{CodeFamily::advice, check.code}, {levelName(Level::advice)}, check.title});
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
        eachMessage([&](const Listed& listed) {
            JsonObject message(messages);
            message.text("code", CodeText(listed.code).text());
            {
                JsonArray classes(message, "classes");
                for (const std::string_view name : listed.classes)
                    classes.text(name);
            }
            message.text("text", listed.text);
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

void listMessages(Output& out, FormatKind format, const FormatSettings& settings) {
    if (format == FormatKind::json) return listAsJson(out, settings);
    constexpr std::size_t kCodeWidth = 4;
    constexpr std::size_t kClassesWidth = 17;
    eachMessage([&](const Listed& listed) {
        std::string classes;
        for (const std::string_view name : listed.classes)
            classes.append(classes.empty() ? "" : ",").append(name);
        if (classes.empty()) classes.push_back('-');
        classes.resize(std::max(classes.size(), kClassesWidth), ' ');
        std::string line(CodeText(listed.code).text());
        line.insert(0, kCodeWidth - std::min(kCodeWidth, line.size()), ' ');
        out.write(line.append("  ").append(classes).append(" ").append(shown(listed.text)).append("\n"));
    });
}

} // namespace kestrel
