// expect: noSuchAdvice
#include "quality/advice.hpp"

void advise(kestrel::AdviceList& list, const kestrel::Subject& model) {
    list.add(kestrel::adviceAt(model), {312, 7}, "dV/dt_r", "1 V/ns");
}
