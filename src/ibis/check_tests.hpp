#pragma once

namespace kestrel {

struct Context;
struct Ibis;

/// Once the file is read: looks up the driver models and the loads of test data and marks the loads as used. No line.
void checkTestData(Context& context, Ibis& root);

/// Once the test data are checked: looks up the receivers of test loads, then reports a load that no test data use. No
/// line.
void checkTestLoads(Context& context, Ibis& root);

} // namespace kestrel
