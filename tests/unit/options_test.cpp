// Command lines that a case file cannot show: an empty delimiter prints as the character that ends a text.

#include "main/options.hpp"

#include "ibis/parse.hpp"
#include "ibis/run.hpp"
#include "main/dump.hpp"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

TEST(Options, anEmptyDelimiterIsAnEndOfText) {
    Output out;
    const std::array<std::string_view, 5> arguments{"test.ibs", "-d", "", "-m", "-t"};
    const std::optional<Options> options = readOptions(out, arguments);
    ASSERT_TRUE(options);
    EXPECT_EQ(options->model_flags, 1);
    EXPECT_EQ(out.text(), "");

    kestrel::Run run(out);
    run.sources.texts["test.ibs"] = std::make_shared<const std::string>(
        "[IBIS Ver] 4.2\n[File Name] test.ibs\n[File Rev] 1\n[Model] M\nModel_type Terminator\nC_comp 1p NA NA\n"
        "[Voltage Range] 3 NA NA\n[GND Clamp]\n-1 -1 NA -2\n0 0 NA 0\n[End]\n");
    ASSERT_TRUE(checkFile(run, *options->file_name, FileKind::ibs));
    ASSERT_TRUE(reportModels(run, "", options->table_flags != 0, options->delimiter));
    std::string expected = "GND_Clamp curve:\nV;A (typ);A (min);A (max)\n-1;-1;;-2\n0;0;;0\n";
    std::ranges::replace(expected, ';', '\0');
    EXPECT_NE(out.text().find(expected), std::string::npos) << out.text();
}

} // namespace
} // namespace kestrel
