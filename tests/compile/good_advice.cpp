// An advice with its arguments, and with words for what there is more of; the bad_ files beside this one have one
// fault.
#include "quality/advice.hpp"
#include "quality/number_text.hpp"

void advise(kestrel::AdviceList& list, const kestrel::Subject& model, double rate) {
    list.add(kestrel::adviceAt(model), 312, "dV/dt_r", kestrel::slew(rate));
    list.add(kestrel::adviceAt(model), {312, 0}, "dV/dt_r", kestrel::slew(rate));
    list.addMore(312, 2);
}
