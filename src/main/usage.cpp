#include "main/usage.hpp"

#include "base/output.hpp"
#include "main/program_versions.hpp"

namespace kestrel {

namespace {

constexpr std::string_view kDonation = "If kestrel serves you well, please consider a donation to its upkeep.\n";

constexpr std::string_view kTerms =
    "THIS SOFTWARE IS PROVIDED \"AS IS\", WITHOUT WARRANTY OF ANY KIND, EXPRESS OR\n"
    "IMPLIED, INCLUDING BUT NOT LIMITED TO THE WARRANTIES OF MERCHANTABILITY,\n"
    "FITNESS FOR A PARTICULAR PURPOSE AND NON-INFRINGEMENT. THE ENTIRE RISK AS TO\n"
    "ITS QUALITY AND PERFORMANCE IS WITH YOU.\n"
    "\n"
    "Changes may be made to this software without notice.\n"
    "\n"
    "In no event shall the authors be liable for any claim, damages or other\n"
    "liability, whether direct, indirect, incidental or consequential, that arises\n"
    "from the use of this software or from the inability to use it, even if they\n"
    "have been told of the possibility of such damages.\n"
    "\n";

} // namespace

void printBanner(Output& out) {
    out.write(kProgramName);
    out.write(" ");
    out.write(kProgramVersion);
    out.write("\n");
}

void printNotice(Output& out) {
    out.write(kDonation);
    out.write(
        "Please execute with \"-i\" switch (kestrel -i) to\n"
        "view instructions and disclaimer.\n"
        "\n");
}

void printUsage(Output& out) {
    out.write(kDonation);
    out.write("based on Verimark ");
    out.write(kCheckerVersion);
    out.write(
        "\n"
        "\n"
        "Usage:\n"
        "\n"
        "  kestrel <IBIS filename> [-c [comp,...]] [-m [model,...] [-t]]\n"
        "\n"
        "       -c [comp,...]                  displays all or named components\n"
        "       -m [model,... [-t [-d delim]]] displays all or named models\n"
        "                                      Use -t to dump tables and -d to\n"
        "                                      choose delimiter.\n"
        "\n"
        "This software is available for your use as freeware and is free of charge.\n"
        "\n");
    out.write(kTerms);
}

} // namespace kestrel
