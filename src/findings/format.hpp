#pragma once

#include "diagnostics/diagnostics.hpp"

#include <array>
#include <memory>
#include <optional>
#include <string_view>

namespace kestrel {

enum class FormatKind : std::uint8_t { text, gcc, json, jsonl, sarif, github, junit };
inline constexpr std::array<std::string_view, 7> kFormatNames{"text",  "gcc",    "json", "jsonl",
                                                              "sarif", "github", "junit"};

/// How a file fared.
enum class Verdict : std::uint8_t { passed, failed, unread };
[[nodiscard]] std::string_view verdictName(Verdict verdict);

/// A file of the call, known ahead of its findings.
struct FileStart {
    std::string_view path; ///< as the call names it
    std::string_view kind; ///< such as "ibs"
};

/// What is known of a file behind its findings.
struct FileEnd {
    std::optional<std::string_view> version; ///< as the file gives it
    Verdict verdict = Verdict::passed;
    bool checked = false; ///< the checks ran; false when the file was refused ahead of them
    FindingCounts counts; ///< what the format got
};

/// What is known behind the last file.
struct Totals {
    std::int64_t files = 0;
    std::int64_t failed = 0;
    std::int64_t unread = 0;
    FindingCounts counts;
};

/// What a format has to know of the call.
struct FormatSettings {
    std::string_view tool = "verimark"; ///< the program's name
    std::string_view version;           ///< and version
    bool color = false;                 ///< class words in color, where the form is for people
    bool quiet = false;                 ///< no summary of files that passed
    Level fail_on = Level::error;       ///< from which class on a finding fails its file
    std::string_view (*advice_title)(MessageCode code) = nullptr; ///< what an advice is about
};

/// Writes findings in some form, file by file, as they come. What it keeps does not grow with the number of files.
class Format {
public:
    Format() = default;
    Format(const Format&) = delete;
    Format& operator=(const Format&) = delete;
    virtual ~Format() = default;

    virtual void fileBegins(const FileStart& /*start*/) {}
    virtual void finding(const Finding& finding) = 0;
    virtual void fileEnds(const FileEnd& /*end*/) {}
    /// Once, behind the last file: writes what is still due.
    virtual void ends(const Totals& /*totals*/) {}
};

/// Begins an output in the form.
[[nodiscard]] std::unique_ptr<Format> makeFormat(FormatKind kind, Output& out, const FormatSettings& settings);

/// True when a finding of this class fails its file.
[[nodiscard]] bool failsFile(Level level, Level fail_on);
/// True when one of the findings that were counted does.
[[nodiscard]] bool failsFile(const FindingCounts& counts, Level fail_on);

/// A message as one finding of many: without white space at its end, which some have to part them from what follows.
[[nodiscard]] std::string_view messageOf(const Finding& finding);

/// A path without "." and, where it has no link, "..": one spelling for what is one file.
[[nodiscard]] std::string normalPath(std::string_view path);

/// The message without the numbers of the lines that it names, which are "..." then: what stays as it is where lines
/// move. `room` holds a text that is not the finding's own.
[[nodiscard]] std::string_view steadyMessageOf(const Finding& finding, std::string& room);

// The makers of the forms.
[[nodiscard]] std::unique_ptr<Format> makeText(Output& out, const FormatSettings& settings);
[[nodiscard]] std::unique_ptr<Format> makeGcc(Output& out, const FormatSettings& settings);
[[nodiscard]] std::unique_ptr<Format> makeGithub(Output& out);
[[nodiscard]] std::unique_ptr<Format> makeJson(Output& out, const FormatSettings& settings);
[[nodiscard]] std::unique_ptr<Format> makeJsonl(Output& out);
[[nodiscard]] std::unique_ptr<Format> makeSarif(Output& out, const FormatSettings& settings);
[[nodiscard]] std::unique_ptr<Format> makeJunit(Output& out, const FormatSettings& settings);

/// Writes a text on one line: each control character, the line feed among them, becomes a blank.
void writeOnOneLine(Output& out, std::string_view text);

} // namespace kestrel
