// The topics under docs/messages: their form, that each code has one, and that their examples do what they say. They
// are read from the source tree, so that a changed text is tested without a build.

#include "files.hpp"
#include "findings/message_classes.hpp"
#include "main/version.hpp"
#include "topic_example.hpp"
#include "topics/topic_text.hpp"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
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

/// What checking the file of an example finds, cautions included.
std::vector<Raised> check(const ExampleFiles& files) {
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
    const std::vector<Raised> raised = check(bad);
    const auto is_own = [&text](const Raised& one) {
        return one.code && std::ranges::find(text.codes, *one.code) != text.codes.end();
    };
    const bool is_advice = std::ranges::all_of(text.codes, isAdvice);
    if (!is_advice && std::ranges::none_of(raised, is_own))
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
    const std::vector<Raised> left = check(mended);
    if (!left.empty()) topic.faults.push_back("the mended example raises" + listed(left) + shownFile(mended));
}

void checkCodes(TestedTopic& topic) {
    for (const FindingCode code : topic.text.codes) {
        if (isAdvice(code)) continue;
        const std::string shown(CodeText(code).text());
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

TEST(Frames, areCorrect) {
    for (const std::string frame : {"model", "component", "package", "board", "ami"}) {
        std::vector<std::string> faults;
        const ExampleFiles files = expandExample(framesFolder(), frame, "", faults);
        EXPECT_TRUE(faults.empty()) << faults.front();
        const std::vector<Raised> raised = check(files);
        EXPECT_TRUE(raised.empty()) << frame << listed(raised);
    }
}

} // namespace
} // namespace kestrel
