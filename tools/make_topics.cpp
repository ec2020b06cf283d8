// Makes a source of the topics' text files: make_topics OUTPUT FOLDER. Faults of a file end it with status 1.

#include "diagnostics/finding_code.hpp"
#include "topics/topic_text.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {
namespace {

/// A text as a literal, one line of it on each line.
std::string literal(std::string_view text) {
    constexpr std::string_view kBreak = "\"\n         \"";
    std::string quoted("\"");
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n') {
            quoted.append("\\n").append(kBreak);
        } else if (c == '"' || c == '\\') {
            quoted.append({'\\', c});
        } else if (byte < ' ' || byte > '~') {
            const auto digit = [byte](unsigned shift) { return static_cast<char>('0' + ((byte >> shift) & 7U)); };
            quoted.append({'\\', digit(6), digit(3), digit(0)});
        } else {
            quoted.push_back(c);
        }
    }
    return quoted.append("\"");
}

std::string codeOf(FindingCode code) {
    const std::string_view family = code.family == CodeFamily::advice ? "advice" : "message";
    return std::string("{CodeFamily::").append(family).append(", ").append(std::to_string(code.number)).append("}");
}

void writeSource(std::ostream& out, const std::vector<TopicText>& texts,
                 const std::map<FindingCode, std::size_t>& rows) {
    out << "// Made from the files in docs/messages.\n\n#include \"topics/topic.hpp\"\n\n"
        << "namespace kestrel {\n\nnamespace {\n\n";
    for (std::size_t i = 0; i < texts.size(); ++i) {
        out << "constexpr FindingCode kCodes" << i << "[] = {";
        for (const FindingCode code : texts[i].codes)
            out << codeOf(code) << ", ";
        out << "};\n";
    }
    out << "\nconstexpr Topic kTopics[] = {\n";
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const TopicText& topic = texts[i];
        out << "    {" << literal(topic.slug) << ", " << literal(topic.title) << ", kCodes" << i;
        for (const std::string* const part :
             {&topic.meaning, &topic.why, &topic.mend, &topic.formula, &topic.bad, &topic.mended, &topic.reason})
            out << ",\n     " << literal(*part);
        out << "},\n";
    }
    out << "};\n\nconstexpr TopicRow kRows[] = {\n";
    for (const auto& [code, topic] : rows)
        out << "    {" << codeOf(code) << ", " << topic << "},\n";
    out << "};\n\n} // namespace\n\nstd::span<const Topic> topics() { return kTopics; }\n\n"
        << "std::span<const TopicRow> topicRows() { return kRows; }\n\n} // namespace kestrel\n";
}

int makeTopics(const std::string& output, const std::vector<std::filesystem::path>& files) {
    std::vector<TopicText> texts;
    std::map<FindingCode, std::size_t> rows;
    bool right = !files.empty();
    for (const std::filesystem::path& path : files) {
        std::ifstream file(path, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        std::vector<std::string> faults;
        texts.push_back(readTopicText(path.stem().string(), text, faults));
        for (const FindingCode code : texts.back().codes) {
            if (!rows.try_emplace(code, texts.size() - 1).second)
                faults.push_back(" another topic has the code " + std::string(CodeText(code).text()));
        }
        for (const std::string& fault : faults)
            std::cerr << path.string() << ':' << fault << '\n';
        right = right && faults.empty();
    }
    if (!right) return 1;
    std::ofstream out(output, std::ios::binary);
    writeSource(out, texts, rows);
    return out.flush() ? 0 : 1;
}

} // namespace
} // namespace kestrel

int main(int count, char** arguments) {
    if (count != 3) return 1;
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(arguments[2]))
        if (entry.path().extension() == ".txt") files.push_back(entry.path());
    std::ranges::sort(files, {}, [](const auto& path) { return path.stem().string(); });
    return kestrel::makeTopics(arguments[1], files);
}
