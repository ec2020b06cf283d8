#include "main/messages_page.hpp"

#include "base/text.hpp"
#include "main/messages.hpp"
#include "topics/topic_forms.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <vector>

namespace kestrel {

namespace {

enum class Area : std::uint8_t { files, components, models, waveforms, packages, boards, circuits, algorithms, emi };
constexpr std::array<std::string_view, 10> kAreaTitles{
    "Files, lines and headers",
    "Components and pins",
    "Models and submodels",
    "I-V tables, ramps and waveforms",
    "Packages and matrices",
    "Board descriptions",
    "External circuits and models",
    "Algorithmic models and parameter files",
    "EMI data",
    "Advice",
};
constexpr std::size_t kAdvice = kAreaTitles.size() - 1;

/// A hundred of codes and the area of its keywords.
struct Hundred {
    MessageCode number;
    Area area;
};
constexpr Hundred kHundreds[] = {
    {1, Area::models},     {2, Area::models},      {5, Area::components},  {6, Area::components},
    {7, Area::components}, {8, Area::components},  {9, Area::files},       {10, Area::files},
    {11, Area::waveforms}, {12, Area::packages},   {13, Area::waveforms},  {14, Area::waveforms},
    {15, Area::waveforms}, {16, Area::circuits},   {17, Area::waveforms},  {18, Area::circuits},
    {19, Area::files},     {20, Area::waveforms},  {21, Area::files},      {22, Area::waveforms},
    {23, Area::waveforms}, {24, Area::models},     {25, Area::components}, {26, Area::components},
    {27, Area::models},    {28, Area::models},     {29, Area::models},     {30, Area::packages},
    {31, Area::packages},  {32, Area::models},     {33, Area::models},     {34, Area::packages},
    {36, Area::circuits},  {37, Area::packages},   {38, Area::models},     {39, Area::files},
    {40, Area::models},    {41, Area::files},      {42, Area::models},     {43, Area::boards},
    {45, Area::models},    {46, Area::algorithms}, {47, Area::emi},        {48, Area::emi},
    {49, Area::emi},       {50, Area::models},
};

std::size_t areaOf(const Topic& topic) {
    const FindingCode code = topic.codes.front();
    if (code.family == CodeFamily::advice) return kAdvice;
    const auto* const hundred = std::ranges::find(kHundreds, code.number / 100, &Hundred::number);
    return hundred == std::end(kHundreds) ? 0 : static_cast<std::size_t>(hundred->area);
}

/// The anchors that Markdown gives to the headings of a page: of equal ones the second gets a number.
class Anchors {
public:
    std::string add(std::string_view heading) {
        std::string anchor;
        for (const char c : heading) {
            if (isAlpha(c) || isDigit(c) || c == '_' || c == '-') anchor.push_back(toLower(c));
            if (c == ' ') anchor.push_back('-');
        }
        const int earlier = times_[anchor]++;
        if (earlier > 0) anchor.append("-").append(std::to_string(earlier));
        return anchor;
    }

private:
    std::map<std::string, int> times_;
};

std::string link(std::string_view text, std::string_view anchor) {
    return std::string("[").append(escapedMarkdown(text)).append("](#").append(anchor).append(")");
}

void addTopic(std::string& page, const Topic& topic) {
    page.append("\n### ").append(escapedMarkdown(topic.title)).append("\n\n");
    for (const FindingCode code : topic.codes) {
        page.append("- ").append(CodeText(code).text()).append(" (").append(joinedClasses(code)).append("): ");
        page.append(escapedMarkdown(textOf(code))).append("\n");
    }
    page.append("\n").append(markdownText(topic));
}

constexpr std::string_view kIntroduction =
    "# What the messages mean\n"
    "\n"
    "Every message that `verimark` and `kestrel` give about a file is explained here: what it means, why it matters in\n"
    "a simulation, how the file is mended, and an example where one is possible. Messages that are alike share an\n"
    "explanation. `verimark --explain=CODE` shows one in the terminal; `verimark --format=gcc` and the JSON forms give\n"
    "the code of each finding.\n"
    "\n"
    "In the texts of messages \"...\" stands for what each finding fills in. The lines of an example stand in a file that\n"
    "is otherwise correct; \"--- NAME\" begins another file beside it.\n"
    "\n"
    "This page is made from the files in `docs/messages`.\n";

} // namespace

std::string messagesPage() {
    std::array<std::vector<const Topic*>, kAreaTitles.size()> areas;
    for (const Topic& topic : topics())
        areas[areaOf(topic)].push_back(&topic);
    std::string contents;
    std::string body;
    Anchors anchors;
    std::map<const Topic*, std::string> anchor_of;
    anchors.add("What the messages mean");
    anchors.add("Contents");
    for (std::size_t i = 0; i < areas.size(); ++i) {
        if (areas[i].empty()) continue;
        std::ranges::stable_sort(areas[i], {}, [](const Topic* topic) { return topic->codes.front(); });
        contents.append("\n").append(link(kAreaTitles[i], anchors.add(kAreaTitles[i]))).append("\n\n");
        body.append("\n## ").append(kAreaTitles[i]).append("\n");
        for (const Topic* const topic : areas[i]) {
            const std::string anchor = anchor_of[topic] = anchors.add(topic->title);
            contents.append("- ").append(link(topic->title, anchor)).append("\n");
            addTopic(body, *topic);
        }
    }
    constexpr std::string_view kIndex = "Index by code";
    contents.append("\n").append(link(kIndex, anchors.add(kIndex))).append("\n");
    std::string page(kIntroduction);
    page.append("\n## Contents\n").append(contents).append(body).append("\n## ").append(kIndex);
    page.append("\n\n| Code | Class | Explanation |\n|---|---|---|\n");
    for (const TopicRow& row : topicRows()) {
        const Topic& topic = topics()[row.topic];
        page.append("| ").append(CodeText(row.code).text()).append(" | ").append(joinedClasses(row.code));
        page.append(" | ").append(link(topic.title, anchor_of[&topic])).append(" |\n");
    }
    return page;
}

} // namespace kestrel
