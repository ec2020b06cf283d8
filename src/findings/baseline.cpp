#include "findings/baseline.hpp"

#include "findings/format.hpp"

#include <algorithm>
#include <utility>

namespace kestrel {

namespace {

constexpr std::string_view kNoCode = "-";

/// Appends a text that ends neither its line nor, when it is quoted, its field.
void appendEscaped(std::string& line, std::string_view text) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\\' || c == '"') {
            line.append({'\\', c});
        } else if (c == '\n') {
            line.append("\\n");
        } else if (byte < 0x20 || byte == 0x7f) {
            line.append({'\\', 'x', kDigits[byte / 16U], kDigits[byte % 16U]});
        } else {
            line.push_back(c);
        }
    }
}

/// "./board.ibs" and "board.ibs" are one file. A path with a comma or quotation mark, or one that reads like something
/// else, is quoted.
void appendPath(std::string& line, std::string_view path) {
    const std::string normal = normalPath(path);
    const bool quoted = normal.empty() || normal.find_first_of(",\"") != std::string::npos || normal.front() == '#' ||
                        normal.front() == ' ' || normal.back() == ' ';
    if (quoted) line.push_back('"');
    appendEscaped(line, normal);
    if (quoted) line.push_back('"');
}

std::string pathField(std::string_view path) {
    std::string field;
    appendPath(field, path);
    return field;
}

/// The length of the path at the front of a line; nothing when it does not end.
std::optional<std::size_t> pathLength(std::string_view line) {
    if (!line.starts_with('"')) {
        const std::size_t end = line.find(", ");
        return end == std::string_view::npos || end == 0 ? std::nullopt : std::optional(end);
    }
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == '\\') {
            ++i;
        } else if (line[i] == '"') {
            return i + 1;
        }
    }
    return std::nullopt;
}

bool isAdvice(const std::optional<FindingCode>& code) { return code && code->family == CodeFamily::advice; }

bool isKnown(const std::optional<FindingCode>& code) {
    return code && (isAdvice(code) || catalogIndex(code->number) != kCatalog.size());
}

constexpr std::string_view kDamaged = "is not \"path, code, message\"";

/// What is wrong with a line, or its path.
struct ReadLine {
    std::string_view problem;
    std::string_view path;
    bool is_advice = false;
};

ReadLine readLine(std::string_view line) {
    const std::optional<std::size_t> length = pathLength(line);
    if (!length || !line.substr(*length).starts_with(", ")) return {kDamaged, {}};
    const std::string_view rest = line.substr(*length + 2);
    const std::size_t end = rest.find(", ");
    if (end == std::string_view::npos) return {kDamaged, {}};
    const std::string_view text = rest.substr(0, end);
    const std::optional<FindingCode> code = readFindingCode(text);
    if (text != kNoCode && !isKnown(code)) return {"has no known code", {}};
    return {{}, line.substr(0, *length), isAdvice(code)};
}

} // namespace

std::string baselineLine(const Finding& finding) {
    std::string line;
    appendPath(line, finding.file);
    line.append(", ");
    line.append(finding.code ? CodeText(finding.code).text() : kNoCode);
    line.append(", ");
    std::string room;
    appendEscaped(line, steadyMessageOf(finding, room));
    return line;
}

std::optional<BaselineFault> Baseline::read(std::string_view text) {
    std::uint32_t number = 0;
    do {
        ++number;
        const std::size_t feed = text.find('\n');
        std::string_view line = text.substr(0, feed);
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (number == 1 && line != kHead) return BaselineFault{1, "does not begin a baseline"};
        if (feed == std::string_view::npos) return BaselineFault{number, "is cut off: it has no line end"};
        text.remove_prefix(feed + 1);
        if (line.empty() || line.starts_with('#')) continue;
        const ReadLine parts = readLine(line);
        if (!parts.problem.empty()) return BaselineFault{number, std::string(parts.problem)};
        Entries::value_type& known = *entries_.try_emplace(std::string(line)).first;
        Entry& entry = known.second;
        lines_.push_back({.number = number, .earlier = entry.lines++, .entry = &known});
        entry.is_advice = parts.is_advice;
        if (entry.is_checked == nullptr) entry.is_checked = &files_[std::string(parts.path)];
    } while (!text.empty());
    return std::nullopt;
}

bool Baseline::occurs(const Finding& finding) {
    const auto found = entries_.find(baselineLine(finding));
    if (found == entries_.end()) return false;
    Entry& entry = found->second;
    if (std::exchange(entry.file, file_) != file_) entry.times = 0;
    if (entry.times == entry.lines) return false;
    entry.most = std::max(entry.most, ++entry.times);
    return true;
}

bool Baseline::take(const Finding& finding) {
    if (!occurs(finding)) return false;
    ++taken_;
    return true;
}

void Baseline::checked(std::string_view path) {
    const auto file = files_.find(pathField(path));
    if (file != files_.end()) file->second = true;
}

void Baseline::eachGone(const std::function<void(std::uint32_t, std::string_view)>& tell) const {
    for (const Line& line : lines_) {
        const auto& [text, entry] = *line.entry;
        const bool has_to_occur = *entry.is_checked && !(entry.is_advice && advice_left_out_);
        if (has_to_occur && line.earlier >= entry.most) tell(line.number, text);
    }
}

void BaselineWriter::add(const Finding& finding) {
    Count& count = lines_[baselineLine(finding)];
    if (std::exchange(count.file, file_) != file_) count.times = 0;
    count.most = std::max(count.most, ++count.times);
}

void BaselineWriter::write(Output& out) const {
    out.write(Baseline::kHead);
    out.write("\n");
    for (const auto& [line, count] : lines_) {
        for (std::int64_t i = 0; i < count.most; ++i) {
            out.write(line);
            out.write("\n");
        }
    }
}

} // namespace kestrel
