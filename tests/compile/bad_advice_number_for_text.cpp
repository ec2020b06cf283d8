// expect: wrongArgumentTypeForMessageText
#include "quality/advice.hpp"

void advise(kestrel::AdviceList& list, const kestrel::Subject& model) {
    list.add(kestrel::adviceAt(model), 312, "dV/dt_r", 2.5);
}
