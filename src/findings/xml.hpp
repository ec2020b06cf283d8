#pragma once

#include "base/output.hpp"

#include <cstdint>
#include <string_view>

namespace kestrel {

/// Writes `text` for an XML attribute or between tags. Characters that XML 1.0 cannot hold in any way, and what is not
/// UTF-8, become U+FFFD.
void writeXmlText(Output& out, std::string_view text);

/// An element that is being written: begun when it is made, ended when it goes. Attributes come ahead of its content,
/// and it is left alone while an element within it is open.
class XmlElement {
public:
    /// The outermost element, with the declaration ahead of it.
    XmlElement(Output& out, std::string_view name);
    XmlElement(const XmlElement&) = delete;
    XmlElement& operator=(const XmlElement&) = delete;
    ~XmlElement();

    void attribute(std::string_view name, std::string_view value);
    void attribute(std::string_view name, std::int64_t value);
    void text(std::string_view text);
    /// The same for a text that writeXmlText() made, or a piece of one.
    void escapedText(std::string_view text);
    /// An element within this one; the name has to outlive it.
    [[nodiscard]] XmlElement element(std::string_view name);

private:
    XmlElement(XmlElement& parent, std::string_view name);
    void endTag();

    Output& out_;
    XmlElement* parent_ = nullptr;
    std::string_view name_;
    bool in_tag_ = true;
    bool has_elements_ = false;
    bool child_open_ = false;
};

} // namespace kestrel
