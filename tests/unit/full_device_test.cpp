// Output that a full device does not take ends either program with a status that scripts notice.

#include "base/output.hpp"
#include "main/driver.hpp"
#include "main/verimark.hpp"

#include <cstdio>
#include <memory>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

using Arguments = std::vector<std::string_view>;
constexpr std::string_view kSample = KESTREL_EXAMPLES_DIR "/board.ibs";

/// The status and the error output of a program that writes to /dev/full.
template <class Program> int runOnFullDevice(Program program, const Arguments& arguments, Output& errors) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> full(std::fopen("/dev/full", "wb"), std::fclose);
    EXPECT_NE(full, nullptr);
    Output out(full.get());
    return program(out, errors, arguments);
}

int check(Output& out, Output& errors, const Arguments& arguments) { return runKestrel(out, errors, arguments); }
int verimark(Output& out, Output& errors, const Arguments& arguments) { return runVerimark(out, errors, arguments); }

TEST(FullDevice, endsTheProgramsWithAMessage) {
    for (const Arguments& arguments : {Arguments{kSample}, Arguments{kSample, "-c", "-m"}, Arguments{"-i"}}) {
        Output errors;
        EXPECT_EQ(runOnFullDevice(check, arguments, errors), kUsage);
        EXPECT_EQ(errors.text(), "kestrel: the output cannot be written\n");
    }
    for (const Arguments& arguments : {Arguments{kSample}, Arguments{"--help"}, Arguments{"--version"}}) {
        Output errors;
        EXPECT_EQ(runOnFullDevice(verimark, arguments, errors), kTrouble);
        EXPECT_EQ(errors.text(), "verimark: the output cannot be written\n");
    }
}

} // namespace
} // namespace kestrel
