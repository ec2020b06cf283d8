#include "report/page.hpp"

#include "report/assets.hpp"
#include "report/part.hpp"

#include <array>

namespace kestrel {

namespace {

/// Three bytes for four letters; a hash has two more at its end.
std::string base64OfHex(std::string_view hex) {
    constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    std::uint32_t bits = 0;
    unsigned count = 0;
    for (const char digit : hex) {
        bits = bits << 4U | static_cast<std::uint32_t>(kDigits.find(digit));
        count += 4;
        if (count < 6) continue;
        count -= 6;
        text.push_back(kLetters[bits >> count & 63U]);
    }
    if (count > 0) text.push_back(kLetters[bits << (6 - count) & 63U]);
    while (text.size() % 4 != 0)
        text.push_back('=');
    return text;
}

} // namespace

Page::Page(Output& out, std::string_view title, std::string_view program) : out_(out), html_(out), program_(program) {
    out_.write(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src 'unsafe-inline'; "
        "script-src 'sha256-");
    out_.write(base64OfHex(kReportScriptSha256));
    out_.write("'; img-src data:\">\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n");
    html_ << "<title>" << Text(title) << "</title>\n";
    html_.flush();
    out_.write("<style>\n");
    out_.write(kReportStyle);
    out_.write("</style>\n");
    html_ << "</head>\n<body>\n<main>\n<h1 class=\"unseen\">" << Text(title) << "</h1>\n";
    html_.flush();
}

void Page::fileEnds(std::uint32_t number, std::string_view path, Verdict verdict, const FindingCounts& counts) {
    files_.push_back({number, std::string(path), verdict, counts});
}

void Page::end() {
    if (files_.size() > 1) {
        html_ << "<section id=\"files\"><h2>Files</h2><div class=\"wide\"><table class=\"sortable filter\"><thead><tr>"
                 "<th scope=\"col\">File</th><th scope=\"col\">Verdict</th><th scope=\"col\">Findings</th></tr></thead>"
                 "<tbody>\n";
        for (const File& file : files_) {
            html_ << "<tr><td>";
            const Anchor anchor{'f', file.number, 0};
            writeLink(html_, &anchor, file.path);
            html_ << "</td><td>";
            writeVerdict(html_, file.verdict);
            html_ << "</td><td>";
            writeCounts(html_, file.counts);
            html_ << "</td></tr>\n";
        }
        html_ << "</tbody></table></div></section>\n";
    }
    html_ << "</main>\n<footer><p>Made by " << Text(program_) << ".</p></footer>\n";
    html_.flush();
    out_.write("<script>");
    out_.write(kReportScript);
    out_.write("</script>\n</body>\n</html>\n");
}

} // namespace kestrel
