#pragma once

#include "base/output.hpp"

#include <cstdint>
#include <string_view>

namespace kestrel {

/// Writes `text` as a JSON string: what is not UTF-8 becomes U+FFFD, control characters are escaped.
void writeJsonString(Output& out, std::string_view text);

/// Where a JSON text goes, and how many of its values are open.
struct JsonText {
    Output& out;
    int open = 0;
};

/// An array or object that is being written: begun when it is made, ended when it goes. The one made last is the only
/// one that may be written to; scopes keep that order.
class JsonScope {
public:
    JsonScope(const JsonScope&) = delete;
    JsonScope& operator=(const JsonScope&) = delete;

protected:
    JsonScope(JsonText& text, char begin, char end, bool lines);
    ~JsonScope();

    /// Parts a value from the one before.
    JsonText& next();

    JsonText& text_;

private:
    int depth_;
    char end_;
    bool lines_; // every value on a line of its own
    bool empty_ = true;
};

class JsonArray;

class JsonObject : public JsonScope {
public:
    explicit JsonObject(JsonText& text) : JsonScope(text, '{', '}', false) {}
    JsonObject(JsonObject& parent, std::string_view key) : JsonObject(parent.named(key)) {}
    explicit JsonObject(JsonArray& parent);

    void text(std::string_view key, std::string_view value);
    void number(std::string_view key, std::int64_t value);
    /// To twelve significant digits; null for what is no number in JSON.
    void real(std::string_view key, double value);
    void flag(std::string_view key, bool value);
    void null(std::string_view key);

private:
    friend class JsonArray;
    /// Begins a member.
    JsonText& named(std::string_view key);
};

class JsonArray : public JsonScope {
public:
    /// With `lines` each value is on a line of its own.
    JsonArray(JsonObject& parent, std::string_view key, bool lines = false)
        : JsonScope(parent.named(key), '[', ']', lines) {}

    void text(std::string_view value);

private:
    friend class JsonObject;
};

/// Writes the member "tool", which says who wrote all of this.
void writeTool(JsonObject& whole, std::string_view name, std::string_view version);

} // namespace kestrel
