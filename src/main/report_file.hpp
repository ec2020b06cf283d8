#pragma once

#include "findings/output_file.hpp"
#include "report/page.hpp"
#include "report/part.hpp"

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel {

/// The part of one file: what goes into it, and its text when it is written ahead of its turn.
class ReportPart {
public:
    ReportPart(std::uint32_t number, std::string_view path, FileKind kind);

    FilePart file;
    KeptFindings findings;

    /// Bytes that it takes while it waits.
    [[nodiscard]] std::size_t size() const;

private:
    friend class ReportFile;
    struct FileCloser {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };

    bool written_ = false;
    std::string text_;
    std::unique_ptr<std::FILE, FileCloser> spooled_; ///< in place of a text that is large
    int error_ = 0; ///< the system's number of why the spooled text is lost, 0 when it is not
};

/// The report of a call: one page in a file of its own, with the files in the order of the call.
class ReportFile {
public:
    explicit ReportFile(Temporaries& temporaries) : temporaries_(temporaries), file_(temporaries) {}

    /// The file, to be opened.
    [[nodiscard]] OutputFile& file() { return file_; }
    /// Begins the page in the opened file; `path` is the file's name.
    void begin(std::string_view path, std::string_view title, std::string_view program);

    /// Writes a part from what was read, unless that was done. `in_place` when it has its turn; the parts of others may
    /// be written at the same time.
    void write(ReportPart& part, Run* run, bool in_place);
    /// Ends a part that has its turn. Throws std::system_error, with the page in order, when some of it is lost.
    void end(ReportPart& part);

    /// Ends the page; what is wrong with the file is returned.
    [[nodiscard]] std::string commit();

private:
    void writeAhead(ReportPart& part, Run* run);

    Temporaries& temporaries_;
    OutputFile file_;
    std::string folder_; ///< where parts wait, with its separator
    std::optional<Page> page_;
};

} // namespace kestrel
