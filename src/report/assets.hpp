#pragma once

#include <string_view>

/// The files of this folder that go into every page as they are; cmake/embed.cmake makes their texts.
namespace kestrel {

extern const std::string_view kReportStyle;
extern const std::string_view kReportScript;
extern const std::string_view kReportScriptSha256; ///< in hexadecimal digits

} // namespace kestrel
