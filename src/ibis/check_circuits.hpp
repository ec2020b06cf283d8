#pragma once

namespace kestrel {

struct Context;
struct Ibis;

/// Once the calls of all components are checked: warns of external circuits that none of them has used.
void checkExtCkts(Context& context, const Ibis& root);

} // namespace kestrel
