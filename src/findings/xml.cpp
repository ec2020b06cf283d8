#include "findings/xml.hpp"

#include "base/utf8.hpp"

#include <cassert>

namespace kestrel {

namespace {

constexpr bool isXmlCharacter(char32_t code) {
    return code >= 0x20 ? code != 0xfffe && code != 0xffff : code == '\t' || code == '\n' || code == '\r';
}

/// What stands for a character that means something else in markup, or would be read as another; empty for the others.
/// Line feeds stay: they are for people to read, and a reader of attributes takes them for blanks.
constexpr std::string_view entityOf(char32_t code) {
    switch (code) {
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    case '"': return "&quot;";
    case '\r': return "&#13;";
    default: return {};
    }
}

/// A control character that XML holds only as a number.
void writeNumbered(Output& out, char32_t code) {
    std::string text("&#");
    appendInteger(text, static_cast<std::int64_t>(code));
    out.write(text.append(";"));
}

} // namespace

void writeXmlText(Output& out, std::string_view text) {
    while (!text.empty()) {
        const Character character = takeCharacter(text);
        const std::string_view entity = entityOf(character.code);
        if (!character.valid || !isXmlCharacter(character.code)) {
            out.write(kReplacement);
        } else if (!entity.empty()) {
            out.write(entity);
        } else if (character.code >= 0x7f && character.isControl()) {
            writeNumbered(out, character.code);
        } else {
            out.write(character.bytes);
        }
    }
}

XmlElement::XmlElement(Output& out, std::string_view name) : out_(out), name_(name) {
    out_.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<");
    out_.write(name);
}

XmlElement::XmlElement(XmlElement& parent, std::string_view name) : out_(parent.out_), parent_(&parent), name_(name) {
    assert(!parent.child_open_);
    parent.endTag();
    parent.has_elements_ = true;
    parent.child_open_ = true;
    out_.write("\n<");
    out_.write(name);
}

XmlElement::~XmlElement() {
    assert(!child_open_);
    if (in_tag_) {
        out_.write("/>");
    } else {
        out_.write(has_elements_ ? "\n</" : "</");
        out_.write(name_);
        out_.write(">");
    }
    if (parent_ != nullptr) {
        parent_->child_open_ = false;
    } else {
        out_.write("\n");
    }
}

void XmlElement::attribute(std::string_view name, std::string_view value) {
    assert(in_tag_ && !child_open_);
    out_.write(" ");
    out_.write(name);
    out_.write("=\"");
    writeXmlText(out_, value);
    out_.write("\"");
}

void XmlElement::attribute(std::string_view name, std::int64_t value) {
    std::string digits;
    appendInteger(digits, value);
    attribute(name, std::string_view(digits));
}

void XmlElement::text(std::string_view text) {
    assert(!child_open_);
    endTag();
    writeXmlText(out_, text);
}

void XmlElement::escapedText(std::string_view text) {
    assert(!child_open_);
    endTag();
    out_.write(text);
}

XmlElement XmlElement::element(std::string_view name) { return {*this, name}; }

void XmlElement::endTag() {
    if (in_tag_) out_.write(">");
    in_tag_ = false;
}

} // namespace kestrel
