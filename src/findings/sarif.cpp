#include "base/text_hash.hpp"
#include "findings/format.hpp"
#include "findings/json.hpp"
#include "topics/topic.hpp"
#include "topics/topic_forms.hpp"

#include <array>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <unordered_map>

namespace kestrel {

namespace {

/// The rule of the texts that are not in the catalog.
constexpr std::string_view kUncoded = "text";

std::string_view ruleOf(const CodeText& code) { return code.text().empty() ? kUncoded : code.text(); }

std::string_view levelText(Level level) {
    switch (level) {
    case Level::bug:
    case Level::error: return "error";
    case Level::warning: return "warning";
    case Level::note:
    case Level::advice:
    case Level::caution: break;
    }
    return "note";
}

/// A path as a reference that may be relative; all that is not plain in a path is written as percent and two digits.
std::string uriOf(std::string_view path) {
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string uri(path.starts_with('/') ? "file://" : "");
    for (const char c : path) {
        if (kPlain.find(c) != std::string_view::npos) {
            uri.push_back(c);
        } else {
            const auto byte = static_cast<unsigned char>(c);
            uri.append({'%', kDigits[byte / 16U], kDigits[byte % 16U]});
        }
    }
    return uri;
}

/// The FNV-1a hash of texts, which is the same on every machine and in every run.
class Fingerprint {
public:
    void add(std::string_view text) {
        for (const char c : text)
            addByte(static_cast<unsigned char>(c));
        addByte(0); // parts it from the next
    }
    [[nodiscard]] std::uint64_t value() const { return value_; }
    [[nodiscard]] std::string hexadecimal() const {
        constexpr std::string_view kDigits = "0123456789abcdef";
        std::string text;
        text.reserve(28);
        for (unsigned shift = 64; shift > 0; shift -= 4)
            text.push_back(kDigits[(value_ >> (shift - 4)) & 15U]);
        return text;
    }

private:
    void addByte(unsigned char byte) {
        constexpr std::uint64_t kPrime = 0x100000001b3;
        value_ = (value_ ^ byte) * kPrime;
    }

    std::uint64_t value_ = 0xcbf29ce484222325;
};

/// A number that comes from a file's texts is hashed as they are, with a seed.
class NumberHash {
public:
    std::size_t operator()(std::uint64_t number) const {
        std::array<char, sizeof number> bytes{};
        std::memcpy(bytes.data(), &number, sizeof number);
        return hash_({bytes.data(), bytes.size()});
    }

private:
    TextHash hash_;
};

/// One run with the results of all files, in the form 2.1.0.
class SarifFormat : public Format {
public:
    SarifFormat(Output& out, const FormatSettings& settings) : text_{out}, settings_(settings) {
        whole_.emplace(text_);
        whole_->text("$schema", "https://json.schemastore.org/sarif-2.1.0.json");
        whole_->text("version", "2.1.0");
        runs_.emplace(*whole_, "runs");
        run_.emplace(*runs_);
        results_.emplace(*run_, "results", true);
    }

    void finding(const Finding& finding) override {
        const CodeText code(finding.code);
        codes_.insert(finding.code);
        JsonObject result(*results_);
        result.text("ruleId", ruleOf(code));
        result.text("level", levelText(levelOf(finding.severity)));
        {
            JsonObject message(result, "message");
            message.text("text", messageOf(finding));
        }
        writeLocations(result, finding);
        JsonObject fingerprints(result, "partialFingerprints");
        fingerprints.text("finding/v1", fingerprintOf(finding, code));
    }

    /// What another file leads to once more is the same finding.
    void fileEnds(const FileEnd& /*end*/) override { seen_.clear(); }

    void ends(const Totals& /*totals*/) override {
        results_.reset();
        {
            JsonObject tool(*run_, "tool");
            JsonObject driver(tool, "driver");
            driver.text("name", settings_.tool);
            driver.text("version", settings_.version);
            writeRules(driver);
        }
        run_.reset();
        runs_.reset();
        whole_.reset();
        text_.out.write("\n");
    }

private:
    static void writeLocations(JsonObject& result, const Finding& finding) {
        JsonArray locations(result, "locations");
        JsonObject location(locations);
        {
            JsonObject place(location, "physicalLocation");
            {
                JsonObject artifact(place, "artifactLocation");
                artifact.text("uri", uriOf(finding.file));
            }
            JsonObject region(place, "region");
            region.number("startLine", finding.line);
        }
        if (finding.subject == nullptr || finding.subject->name.empty()) return;
        JsonArray subjects(location, "logicalLocations");
        JsonObject subject(subjects);
        subject.text("name", finding.subject->name);
        subject.text("kind", subjectKindName(finding.subject->kind));
    }

    /// Lines that move leave it as it is; of equal findings each has its own.
    std::string fingerprintOf(const Finding& finding, const CodeText& code) {
        Fingerprint fingerprint;
        fingerprint.add(finding.file);
        fingerprint.add(code.text());
        fingerprint.add(messageOf(finding));
        if (finding.subject != nullptr) {
            fingerprint.add(subjectKindName(finding.subject->kind));
            fingerprint.add(finding.subject->name);
        }
        std::string text = fingerprint.hexadecimal();
        const std::uint32_t earlier = seen_[fingerprint.value()]++;
        text.push_back(':');
        appendInteger(text, std::int64_t{earlier} + 1);
        return text;
    }

    void writeRules(JsonObject& driver) const {
        JsonArray rules(driver, "rules", true);
        for (const std::optional<FindingCode>& code : codes_) {
            JsonObject rule(rules);
            rule.text("id", ruleOf(CodeText(code)));
            {
                JsonObject description(rule, "shortDescription");
                description.text("text", descriptionOf(code));
            }
            if (const Topic* const topic = code ? topicOf(*code) : nullptr) writeTopic(rule, *topic);
        }
    }

    [[nodiscard]] std::string descriptionOf(std::optional<FindingCode> code) const {
        if (!code) return "A message without a number.";
        if (code->family == CodeFamily::advice) return std::string(settings_.advice_title(code->number));
        return generalText(*code);
    }

    static void writeTopic(JsonObject& rule, const Topic& topic) {
        {
            JsonObject description(rule, "fullDescription");
            description.text("text", topic.title);
        }
        JsonObject help(rule, "help");
        help.text("text", plainText(topic));
        help.text("markdown", markdownText(topic));
    }

    JsonText text_;
    FormatSettings settings_;
    std::set<std::optional<FindingCode>> codes_; // at most those of the catalogs
    // Fingerprints of the present file and how often each came.
    std::unordered_map<std::uint64_t, std::uint32_t, NumberHash> seen_;
    // Each within the one above, and gone before it.
    std::optional<JsonObject> whole_;
    std::optional<JsonArray> runs_;
    std::optional<JsonObject> run_;
    std::optional<JsonArray> results_;
};

} // namespace

std::unique_ptr<Format> makeSarif(Output& out, const FormatSettings& settings) {
    return std::make_unique<SarifFormat>(out, settings);
}

} // namespace kestrel
