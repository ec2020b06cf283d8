// expect: noSuchAdvice
#include "quality/advice.hpp"

void advise(kestrel::AdviceList& list) { list.addMore(999, 2); }
