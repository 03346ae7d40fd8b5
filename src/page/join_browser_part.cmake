# SPDX-License-Identifier: Apache-2.0
# Writes OUTPUT, a source that holds the files of FOLDER: the frames, the style, and SCRIPTS joined
# in their order into one closed function. A literal for each file: compilers bound their length.
function(append_literal source file)
    file(READ ${FOLDER}/${file} text)
    string(FIND "${text}" ")file\"" end)
    if(NOT end EQUAL -1)
        message(FATAL_ERROR "${file} holds the end of a literal")
    endif()
    file(APPEND ${OUTPUT} "${source}R\"file(${text})file\"")
endfunction()

file(WRITE ${OUTPUT} "// Joined from browser/ by join_browser_part.cmake.
#include \"browser_part.h\"

namespace trellant::page {

namespace {

")
append_literal("constexpr std::string_view frameOfPage = " page.html)
append_literal(";\nconstexpr std::string_view frameOfIndex = " index.html)
append_literal(";\nconstexpr std::string_view styles = " page.css)
append_literal(";\nconstexpr std::string_view darkColours = " dark.css)
file(APPEND ${OUTPUT} ";\n")
set(joined "")
foreach(script IN LISTS SCRIPTS)
    string(REPLACE "." "_" name ${script})
    append_literal("constexpr std::string_view ${name} = " ${script})
    file(APPEND ${OUTPUT} ";\n")
    string(APPEND joined "    text += ${name};\n")
endforeach()
file(APPEND ${OUTPUT} "
}  // namespace

std::string_view pageFrame() noexcept {
    return frameOfPage;
}

std::string_view indexFrame() noexcept {
    return frameOfIndex;
}

std::string pageStyle() {
    std::string text(styles);
    text += \"@media screen and (prefers-color-scheme: dark) {\\n:root:not([data-theme=\\\"light\\\"]) {\\n\";
    text += darkColours;
    text += \"}\\n}\\n@media screen {\\n:root[data-theme=\\\"dark\\\"] {\\n\";
    text += darkColours;
    text += \"}\\n}\\n\";
    return text;
}

std::string pageScript() {
    std::string text = \"(() => {\\n\\\"use strict\\\";\\n\";
${joined}    text += \"})();\\n\";
    return text;
}

}  // namespace trellant::page
")
