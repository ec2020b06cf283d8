// Numbers in advice: three digits, a letter for a power of a thousand, the unit.

#include "quality/number_text.hpp"

#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace kestrel {
namespace {

std::string text(const NumberText& number) { return std::string(std::string_view(number)); }

TEST(NumberText, hasThreeDigitsAndALetter) {
    EXPECT_EQ(text(volts(1.794)), "1.79 V");
    EXPECT_EQ(text(volts(330.0)), "330 V");
    EXPECT_EQ(text(amperes(-0.0385)), "-38.5 mA");
    EXPECT_EQ(text(amperes(850e-6)), "850 uA");
    EXPECT_EQ(text(farads(3.3e-12)), "3.3 pF");
    EXPECT_EQ(text(ohms(0.025)), "25 mohm");
    EXPECT_EQ(text(ohms(2000.0)), "2 kohm");
    EXPECT_EQ(text(seconds(801e-12)), "801 ps");
    EXPECT_EQ(text(slew(2.2)), "2.2 nV/ns");
    EXPECT_EQ(text(slew(500e9)), "500 V/ns");
    EXPECT_EQ(text(plainNumber(2.5)), "2.5");
    EXPECT_EQ(text(plainNumber(1234.0)), "1.23e+03");
}

TEST(NumberText, roundsIntoTheNextLetter) {
    EXPECT_EQ(text(volts(0.9996)), "1 V");
    EXPECT_EQ(text(volts(999.4)), "999 V");
    EXPECT_EQ(text(amperes(999.6e-6)), "1 mA");
    EXPECT_EQ(text(farads(1e-9)), "1 nF");
    EXPECT_EQ(text(farads(999.9e-12)), "1 nF");
}

TEST(NumberText, hasAsManyDigitsAsAreAskedFor) {
    EXPECT_EQ(text({1.23456e-3, "V", 4}), "1.235 mV");
    EXPECT_EQ(text({123e-6, "A", 2}), "120 uA");
    EXPECT_EQ(text({4.5e-9, "s", 1}), "4 ns"); // below the middle, in binary
    EXPECT_EQ(text({0.5, "V", 6}), "500 mV");
    EXPECT_EQ(text({0.1 + 0.2, "V", NumberText::kAllDigits}), "300.00000000000004 mV");
    EXPECT_EQ(text({-850e-6, "A", 3, NumberStyle::printed}), "\u2212850\u00a0\u00b5A");
    EXPECT_EQ(text({85.0, kCelsius, 6, NumberStyle::printed}), "85\u00a0\u00b0C");
}

TEST(NumberText, readsWhateverTheValueIs) {
    EXPECT_EQ(text(volts(0.0)), "0 V");
    EXPECT_EQ(text(volts(-0.0)), "0 V");
    EXPECT_EQ(text(volts(std::numeric_limits<double>::infinity())), "inf V");
    EXPECT_EQ(text(volts(1e18)), "1e+18 V");
    EXPECT_EQ(text(volts(-1.5e15)), "-1.5e+15 V");
    EXPECT_EQ(text(volts(999e12)), "999 TV");
    EXPECT_EQ(text(farads(1e-18)), "1 aF");
    EXPECT_EQ(text(farads(1e-19)), "1e-19 F");
    EXPECT_EQ(text(level(-9e-7)), "0 V");
    EXPECT_EQ(text(level(1e-6)), "1 uV");
}

} // namespace
} // namespace kestrel
