#pragma once

#include "report/html.hpp"
#include "topics/topic.hpp"

namespace kestrel {

/// Writes what messages of a topic mean, folded, with the example.
void writeExplanation(Html& html, const Topic& topic);

} // namespace kestrel
