#include "main/report_file.hpp"

#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include <unistd.h>

namespace kestrel {

namespace {

/// Bytes of a file whose part is kept in memory; the part is a few times as large.
constexpr std::uintmax_t kMostInMemory = std::uintmax_t{64} << 10;

/// What a part in a file of its own weighs: there are only so many open files.
constexpr std::size_t kWeightOfFile = std::size_t{64} << 10;

void writeTo(Output& out, const ReportPart& part, Run* run) {
    Html html(out);
    try {
        writePart(html, part.file, part.findings, run);
        html.flush();
    } catch (const std::bad_alloc&) { // the check had memory, its report has not
        html << "</div></section><p class=\"none\">Out of memory: the rest of this file is missing.</p></article>\n";
    }
}

} // namespace

ReportPart::ReportPart(std::uint32_t number, std::string_view path, FileKind kind)
    : file{.number = number,
           .path = std::string(path),
           .kind = kind,
           .version = std::nullopt,
           .verdict = Verdict::unread,
           .counts = {},
           .begun = std::filesystem::file_time_type::clock::now()} {}

std::size_t ReportPart::size() const {
    return sizeof *this + findings.log.size() + text_.capacity() + (spooled_ ? kWeightOfFile : 0);
}

void ReportFile::begin(std::string_view path, std::string_view title, std::string_view program) {
    folder_ = (std::filesystem::path(path).parent_path() / "").string();
    page_.emplace(file_.out(), title, program);
}

void ReportFile::write(ReportPart& part, Run* run, bool in_place) {
    if (part.written_) return;
    part.written_ = true;
    if (in_place) {
        writeTo(page_->out(), part, run);
    } else {
        writeAhead(part, run);
    }
    if (part.error_ == 0) part.findings.log = {};
}

void ReportFile::writeAhead(ReportPart& part, Run* run) {
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(part.file.path, failure);
    if (!failure && size > kMostInMemory) {
        std::string name = folder_ + ".verimark-XXXXXX";
        const int file = temporaries_.make(name);
        if (file != -1) {
            temporaries_.remove(name); // it goes with its last user
            part.spooled_.reset(fdopen(file, "w+b"));
            if (!part.spooled_) close(file);
        }
    }
    if (!part.spooled_) {
        Output out;
        writeTo(out, part, run);
        part.text_ = out.text();
        return;
    }
    Output out(part.spooled_.get());
    writeTo(out, part, run);
    out.flush();
    part.error_ = out.error();
}

void ReportFile::end(ReportPart& part) {
    write(part, nullptr, true);
    Output& out = page_->out();
    out.write(part.text_);
    if (part.error_ != 0) {
        writeTo(out, part, nullptr); // at least what was found
    } else if (part.spooled_) {
        std::rewind(part.spooled_.get());
        std::array<char, std::size_t{1} << 16> piece;
        while (const std::size_t size = std::fread(piece.data(), 1, piece.size(), part.spooled_.get()))
            out.write({piece.data(), size});
        if (std::ferror(part.spooled_.get()) != 0) part.error_ = errno != 0 ? errno : EIO;
    }
    page_->fileEnds(part.file.number, part.file.path, part.file.verdict, part.file.counts);
    if (part.error_ != 0) throw std::system_error(part.error_, std::generic_category(), "its part of the report");
}

std::string ReportFile::commit() {
    page_->end();
    page_.reset();
    return file_.commit();
}

} // namespace kestrel
