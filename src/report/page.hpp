#pragma once

#include "findings/format.hpp"
#include "report/html.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// The page around the parts of the files: begun when it is made.
class Page {
public:
    /// `title` is what the page is about, `program` what made it.
    Page(Output& out, std::string_view title, std::string_view program);
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;
    ~Page() = default;

    [[nodiscard]] Output& out() { return out_; }

    /// A file's part has been written.
    void fileEnds(std::uint32_t number, std::string_view path, Verdict verdict, const FindingCounts& counts);

    /// Ends the page; of several files it lists them.
    void end();

private:
    struct File {
        std::uint32_t number;
        std::string path;
        Verdict verdict;
        FindingCounts counts;
    };

    Output& out_;
    Html html_;
    std::string program_;
    std::vector<File> files_;
};

} // namespace kestrel
