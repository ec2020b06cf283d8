// expect: noMessagesForThisFormOfLine
#include "reader/subparameters.hpp"

struct Load {
    kestrel::GivenValue ohms;
    kestrel::GivenRange volts;
};

constexpr auto kTable = kestrel::subparameters<kestrel::Subparameter<Load>>(
    {{"R_load", &Load::ohms}, {"V_load", &Load::volts}}, {.unknown = kestrel::CheckedMessage<>(1305),
                                                          .repeated = 1307,
                                                          .value = kestrel::ValueLineMessages{1313, 1304, 1314}});
