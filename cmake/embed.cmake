# Writes a source that holds the style and the script of the report: -DSTYLE= -DSCRIPT= -DOUTPUT=

file(READ "${STYLE}" style)
file(READ "${SCRIPT}" script)
# Between its tags a script reads as it is; what ends them must not be in it.
foreach(text IN ITEMS "${style}" "${script}")
    if(text MATCHES "</" OR text MATCHES "<!--" OR text MATCHES "\\)embedded\"")
        message(FATAL_ERROR "The style or the script of the report holds a text that would end it.")
    endif()
endforeach()
string(SHA256 hash "${script}")
file(WRITE "${OUTPUT}" "#include \"report/assets.hpp\"

namespace kestrel {

constinit const std::string_view kReportStyle = R\"embedded(${style})embedded\";
constinit const std::string_view kReportScript = R\"embedded(${script})embedded\";
constinit const std::string_view kReportScriptSha256 = \"${hash}\";

} // namespace kestrel
")
