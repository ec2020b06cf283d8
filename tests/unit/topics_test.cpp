// The topics under docs/messages: their form, that each code has one, and that their examples do what they say. They
// are read from the source tree, so that a changed text is tested without a build.

#include "check/version.hpp"
#include "files.hpp"
#include "findings/message_classes.hpp"
#include "main/advice_page.hpp"
#include "main/messages_page.hpp"
#include "quality/advised.hpp"
#include "quality/checks.hpp"
#include "topic_example.hpp"
#include "topics/topic.hpp"
#include "topics/topic_text.hpp"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

namespace fs = std::filesystem;

/// What a text in the environment names, or a folder of the source tree.
std::string folder(const char* variable, const char* usual) {
    const char* const given = std::getenv(variable);
    return given != nullptr ? given : usual;
}

std::string topicsFolder() { return folder("KESTREL_TOPICS_DIR", KESTREL_TOPICS); }
std::string framesFolder() { return folder("KESTREL_FRAMES_DIR", KESTREL_FRAMES); }

struct TestedTopic {
    TopicText text;
    std::vector<std::string> faults;
};

/// All topics, or those that KESTREL_TOPICS names.
std::map<std::string, TestedTopic> readTopics(bool all = false) {
    std::map<std::string, TestedTopic> topics;
    const char* const wanted = all ? nullptr : std::getenv("KESTREL_TOPICS");
    const std::string list = wanted == nullptr ? "" : " " + std::string(wanted) + " ";
    for (const fs::directory_entry& entry : fs::directory_iterator(topicsFolder())) {
        const std::string slug = entry.path().stem().string();
        if (entry.path().extension() != ".txt") continue;
        if (!list.empty() && list.find(" " + slug + " ") == std::string::npos) continue;
        TestedTopic& topic = topics[slug];
        topic.text = readTopicText(slug, readWhole(entry.path().string()), topic.faults);
    }
    return topics;
}

bool isAdvice(FindingCode code) { return code.family == CodeFamily::advice; }

bool canBeRaised(MessageCode code) {
    return std::ranges::any_of(std::array{Level::bug, Level::error, Level::warning, Level::caution, Level::note},
                               [code](Level level) { return isReportedAs(code, level); });
}

struct Raised {
    Level level;
    std::optional<FindingCode> code;
    std::string shown;
};

/// What checking the file of an example finds, cautions included, and advice where it is wanted.
std::vector<Raised> check(const ExampleFiles& files, bool advises) {
    std::vector<Raised> raised;
    Files run;
    for (const auto& [name, text] : files.texts)
        run.put(name, text);
    Run& state = run.run;
    state.parse.takes_later = true;
    state.diagnostics.silence_cautions = false;
    state.diagnostics.on_assertion = OnAssertion::raise;
    state.diagnostics.sink = [&](const Finding& finding) {
        std::string shown(levelName(levelOf(finding.severity)));
        if (finding.code) shown.append(" ").append(CodeText(finding.code).text());
        shown.append(" ").append(finding.file).append(":").append(std::to_string(finding.line)).append(": ");
        raised.push_back({levelOf(finding.severity), finding.code, shown.append(finding.text)});
    };
    const FileKind kind = kindOfName(files.name).value_or(FileKind::ibs);
    nameFile(state.diagnostics, files.name);
    try {
        if (kind == FileKind::ami || determineVersion(state, files.name, kind) == VersionSearch::found)
            checkFile(state, files.name, kind);
    } catch (const AssertionFailed& failure) {
        reportFailure(state.diagnostics, failure);
    }
    if (!advises || state.roots.empty()) return raised;
    for (const Advice& advice : adviseOn(AdvisedFile(currentRoot(state), state.parse))) {
        std::string shown("advice ");
        shown.append(CodeText(advice.code).text()).append(" ").append(std::to_string(advice.line)).append(": ");
        raised.push_back({Level::advice, advice.code, shown.append(advice.text)});
    }
    return raised;
}

std::string listed(const std::vector<Raised>& raised) {
    std::string text;
    for (const Raised& one : raised)
        text.append("\n      ").append(one.shown);
    return raised.empty() ? "\n      nothing" : text;
}

/// With KESTREL_SHOW_EXAMPLES the files are shown where something is wrong with them.
std::string shownFile(const ExampleFiles& files) {
    if (std::getenv("KESTREL_SHOW_EXAMPLES") == nullptr) return {};
    return "\n--- " + files.name + "\n" + files.texts.at(files.name) + "---";
}

void checkExample(TestedTopic& topic) {
    const TopicText& text = topic.text;
    if (text.frame.empty()) return;
    const ExampleFiles bad = expandExample(framesFolder(), text.frame, text.bad, topic.faults);
    const bool is_advice = std::ranges::all_of(text.codes, isAdvice);
    const std::vector<Raised> raised = check(bad, is_advice);
    const auto is_own = [&text](const Raised& one) {
        return one.code && std::ranges::find(text.codes, *one.code) != text.codes.end();
    };
    if (std::ranges::none_of(raised, is_own))
        topic.faults.push_back("the bad example raises no code of the topic, but" + listed(raised) + shownFile(bad));
    std::vector<Raised> others;
    for (const Raised& one : raised) {
        const bool fails = one.level == Level::error || one.level == Level::bug;
        if (fails && one.code && !is_own(one)) others.push_back(one);
    }
    if (!others.empty())
        topic.faults.push_back("the bad example raises other errors:" + listed(others) + shownFile(bad));
    std::vector<std::string> again; // the same as for the bad one
    const ExampleFiles mended = expandExample(framesFolder(), text.frame, text.mended, again);
    const std::vector<Raised> left = check(mended, is_advice);
    if (!left.empty()) topic.faults.push_back("the mended example raises" + listed(left) + shownFile(mended));
}

void checkCodes(TestedTopic& topic) {
    for (const FindingCode code : topic.text.codes) {
        const std::string shown(CodeText(code).text());
        if (isAdvice(code)) {
            if (adviceCheck(code.number) == nullptr) topic.faults.push_back("there is no advice " + shown);
            continue;
        }
        const std::size_t row = catalogIndex(code.number);
        if (row == kCatalog.size() || kCatalog[row].text == kReservedText) {
            topic.faults.push_back("there is no message " + shown);
        } else if (!canBeRaised(code.number)) {
            topic.faults.push_back("message " + shown + " is never raised");
        }
    }
}

TEST(Topics, haveTheirFormAndExamplesThatDoWhatTheySay) {
    for (auto& [slug, topic] : readTopics()) {
        checkCodes(topic);
        checkExample(topic);
        for (const std::string& fault : topic.faults)
            ADD_FAILURE() << slug << ".txt:" << (isDigit(fault.front()) ? "" : " ") << fault;
    }
}

TEST(Topics, shareNoCodeAndNoTitle) {
    std::map<std::string, std::string> topic_of;
    for (const auto& [slug, topic] : readTopics(true)) {
        std::vector<std::string> keys{topic.text.title};
        for (const FindingCode code : topic.text.codes)
            keys.emplace_back(CodeText(code).text());
        for (const std::string& key : keys) {
            const auto [at, is_new] = topic_of.try_emplace(key, slug);
            EXPECT_TRUE(is_new) << "\"" << key << "\" is in " << at->second << " and in " << slug;
        }
    }
}

/// Bugs aside, which no file is meant to raise.
TEST(Topics, everyCodeThatAFileCanRaiseHasOne) {
    std::set<FindingCode> explained;
    for (const auto& [slug, topic] : readTopics(true))
        explained.insert(topic.text.codes.begin(), topic.text.codes.end());
    for (const Level level : {Level::error, Level::warning, Level::caution, Level::note})
        for (const MessageCode code : codesOf(level))
            EXPECT_TRUE(explained.contains({CodeFamily::message, code})) << code << " has no topic";
    for (const Check& check : adviceChecks())
        EXPECT_TRUE(explained.contains({CodeFamily::advice, check.code})) << "Q" << check.code << " has no topic";
}

TEST(Topics, areBuiltInAsTheyAreWritten) {
    const auto written = readTopics(true);
    ASSERT_EQ(topics().size(), written.size());
    std::size_t codes = 0;
    for (const auto& [slug, topic] : written) {
        const Topic* const built = topicNamed(slug);
        ASSERT_NE(built, nullptr) << slug;
        const TopicText& text = topic.text;
        using Texts = std::array<std::string_view, 8>;
        EXPECT_EQ(
            (Texts{built->title, built->meaning, built->why, built->mend, built->formula, built->bad, built->mended,
                   built->reason}),
            (Texts{text.title, text.meaning, text.why, text.mend, text.formula, text.bad, text.mended, text.reason}));
        codes += text.codes.size();
        for (const FindingCode code : text.codes)
            EXPECT_EQ(topicOf(code), built) << CodeText(code).text();
    }
    EXPECT_EQ(topicRows().size(), codes);
    EXPECT_EQ(topicOf({CodeFamily::message, 1}), nullptr);
    EXPECT_EQ(topicOf({CodeFamily::advice, 905}), nullptr);
    EXPECT_EQ(topicNamed("no-such-topic"), nullptr);
}

TEST(Topics, thePageOfAllIsCurrent) {
    EXPECT_TRUE(readWhole(KESTREL_MESSAGES_PAGE) == messagesPage()) << "build the target messages_page";
    EXPECT_TRUE(readWhole(KESTREL_ADVICE_PAGE) == advicePage()) << "build the target messages_page";
}

TEST(TopicText, saysWhatIsWrongWithItsForm) {
    const auto faults = [](std::string_view text) {
        std::vector<std::string> found;
        std::ignore = readTopicText("a-name", text, found);
        return found;
    };
    const std::string words = "one two three four five six seven eight nine ten eleven twelve thirteen fourteen\n";
    const std::string prose =
        "\nMeaning\n\n" + words + "\nWhy it matters\n\n" + words + "\nHow to mend\n\n" + words + "\n";
    const std::string example = "Example (model)\n\nBad:\n    x\nMended:\n    y\n";
    const std::string formula = "Formula\n\n    v = i * r\n\n";
    using Faults = std::vector<std::string>;
    EXPECT_EQ(faults("A title\nCodes: 108 Q201\n" + prose + formula + example), Faults());
    EXPECT_EQ(faults("A title\nCodes: 108\n" + prose + "Example\n\nNone: it takes\ntwo lines.\n"), Faults());
    EXPECT_EQ(faults("A title.\nCodes: 109 108 x\n" + prose + example),
              (Faults{"1: a title has no full stop", "2: the codes do not ascend at 108", "2: \"x\" is no code"}));
    EXPECT_EQ(faults("A title\nCodes: 108\n" + prose + "Example (model)\n\nBad:\n    x\n"),
              (Faults{"19: an example has lines under \"Bad:\" and \"Mended:\""}));
    EXPECT_EQ(faults("A title\nCodes: 108\n" + prose + formula + formula + example),
              (Faults{"20: \"Formula\" is not the part that follows"}));
    EXPECT_EQ(
        faults("A title\nCodes: 108\n\nMeaning\n\nToo short.\n\n" + example),
        (Faults{"8: \"Example (model)\" is not the part that follows", "13: a part is empty or missing",
                "13: a part is empty or missing", "13: the first three parts have 2 words; 40 to 150 are wanted"}));
}

TEST(Examples, goIntoTheirFrames) {
    const auto whole = [](std::string_view frame, std::string_view lines) {
        std::vector<std::string> faults;
        const ExampleFiles files = expandExample(framesFolder(), frame, lines, faults);
        return faults.empty() ? files.texts.at(files.name) : faults.front();
    };
    const auto has = [](const std::string& text, std::string_view part) {
        return text.find(part) != std::string::npos;
    };
    // A line replaces that of its word, or comes last; a section that of its keyword, the next one goes behind it.
    const std::string model = whole("model", "Vinl=1\nNew 2\n[ramp]\nx\n[TTgnd] 3\n[RAMP]\ny\n");
    EXPECT_TRUE(has(model, "\nEnable          Active-Low\nVinl=1\nVinh = 2.0V\n"));
    EXPECT_TRUE(has(model, " 3.5pF\nNew 2\n[Temperature Range]"));
    EXPECT_TRUE(has(model, "\n[ramp]\nx\n[TTgnd] 3\n[RAMP]\ny\n[Rising Waveform]"));
    EXPECT_FALSE(has(model, "dV/dt_r"));
    EXPECT_TRUE(has(whole("model", "[TTgnd] 3\n"), "\n[TTgnd] 3\n[End]\n"));
    EXPECT_FALSE(has(whole("model without [Rising Waveform] Vinh, named A.IBS", "x\n"), "Rising"));
    // Models of the component's frame stay.
    EXPECT_TRUE(has(whole("component", "2 A B\n[Model] new\n"), "\n2 A B\n3  "));
    EXPECT_TRUE(
        has(whole("component", "[Model] new\n"), "\n8      VSS          GND\n[Model] new\n[Model]         clk_in\n"));
    EXPECT_TRUE(has(
        whole("ami-specific", "(gain new)\n(more ()\n)\n"),
        "\n    (gain new)\n\n    (taps\n      (1 (Usage InOut) (Type Tap) (Range 0.0 -0.3 0.3))\n    )\n  (more ()\n)\n)"));
    EXPECT_EQ(whole("file", "[IBIS Ver] 4.2\n--- other.ibs\nx\n"), "[IBIS Ver] 4.2\n");
    EXPECT_EQ(whole("modle", "x"), "there is no frame \"modle\"");
    EXPECT_EQ(whole("model without [Rac]", "x"), "the frame has no section [RAC]");
    EXPECT_EQ(whole("model but", "x"), "\"but\" in the parentheses behind \"Example\" says nothing");
}

TEST(Frames, areCorrect) {
    for (const std::string frame : {"model", "component", "package", "board", "ami"}) {
        std::vector<std::string> faults;
        const ExampleFiles files = expandExample(framesFolder(), frame, "", faults);
        EXPECT_TRUE(faults.empty()) << faults.front();
        const std::vector<Raised> raised = check(files, true);
        EXPECT_TRUE(raised.empty()) << frame << listed(raised);
    }
}

} // namespace
} // namespace kestrel
