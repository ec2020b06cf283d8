#include "topics/topic.hpp"

#include <algorithm>

namespace kestrel {

const Topic* topicOf(FindingCode code) {
    const auto rows = topicRows();
    const auto row = std::ranges::lower_bound(rows, code, {}, &TopicRow::code);
    return row == rows.end() || row->code != code ? nullptr : &topics()[row->topic];
}

const Topic* topicNamed(std::string_view slug) {
    const auto topic = std::ranges::lower_bound(topics(), slug, {}, &Topic::slug);
    return topic == topics().end() || topic->slug != slug ? nullptr : &*topic;
}

} // namespace kestrel
