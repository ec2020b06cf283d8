#pragma once

namespace kestrel {

/// What a comparison goes by.
struct CompareSettings {
    double tolerance = 1.0;    ///< changes up to so many per cent are none
    bool header_texts = false; ///< what the header says counts, too
};

} // namespace kestrel
