#include "sections.hpp"

namespace kestrel::bench {

namespace {

constexpr std::size_t kParameters = 20;

/// One parameter, of four kinds by turns.
void writeParameter(TextWriter& writer, std::size_t number) {
    const std::string name = numbered("p", number, 2);
    const std::string typ = fixed(fraction(writer), 4);
    switch (number % 4) {
    case 0:
        writeLine(writer, {"      (", name, " (Usage InOut) (Type Tap) (Range ", typ, " -1.0 1.0) (Default 0.5)"});
        break;
    case 1: writeLine(writer, {"      (", name, " (Usage In) (Type Float) (Format Steps ", typ, " 0 2 16)"}); break;
    case 2: writeLine(writer, {"      (", name, " (Usage In) (Type Integer) (List 3 0 1 2 3 4) (Default 2)"}); break;
    default: writeLine(writer, {"      (", name, " (Usage Info) (Type String) (Value \"a text\")"}); break;
    }
    writeLine(writer, {"        (Description \"What it is good for.\"))"});
}

} // namespace

void writeParameters(TextWriter& writer, std::size_t count) {
    writeLine(writer, {"(generated | every name and value is made up"});
    writeLine(writer, {"  (Reserved_Parameters"});
    writeLine(writer, {"    (AMI_Version (Usage Info) (Type String) (Value \"5.1\"))"});
    writeLine(writer, {"    (Init_Returns_Impulse (Usage Info) (Type Boolean) (Value True))"});
    writeLine(writer, {"    (GetWave_Exists (Usage Info) (Type Boolean) (Value True)))"});
    writeLine(writer, {"  (Model_Specific"});
    for (std::size_t branch = 0; branch < count; ++branch) {
        writeLine(writer, {"    (", numbered("branch_", branch, 6)});
        for (std::size_t parameter = 0; parameter < kParameters; ++parameter)
            writeParameter(writer, parameter);
        writeLine(writer, {"    )"});
    }
    writeLine(writer, {"  )"});
    writeLine(writer, {")"});
}

} // namespace kestrel::bench
