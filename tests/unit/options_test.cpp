// Command lines that a case file cannot show: an empty delimiter prints as the character that ends a text.

#include "main/options.hpp"

#include "files.hpp"
#include "main/dump.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

TEST(Options, anEmptyDelimiterIsAnEndOfText) {
    Files files;
    Output& out = files.out;
    const std::array<std::string_view, 5> arguments{"test.ibs", "-d", "", "-m", "-t"};
    const std::optional<Options> options = readOptions(out, arguments);
    ASSERT_TRUE(options);
    EXPECT_EQ(options->model_flags, 1);
    EXPECT_EQ(out.text(), "");

    files
        .add("test.ibs",
             "[Model] M\nModel_type Terminator\nC_comp 1p NA NA\n"
             "[Voltage Range] 3 NA NA\n[GND Clamp]\n-1 -1 NA -2\n0 0 NA 0")
        .check(*options->file_name);
    ASSERT_TRUE(reportModels(files.run, "", options->table_flags != 0, options->delimiter));
    std::string expected = "GND_Clamp curve:\nV;A (typ);A (min);A (max)\n-1;-1;;-2\n0;0;;0\n";
    std::ranges::replace(expected, ';', '\0');
    EXPECT_NE(out.text().find(expected), std::string::npos) << out.text();
}

} // namespace
} // namespace kestrel
