# utf8proc as the imported target trellant_utf8proc. The static archive comes first, because the
# worker is linked statically and must not depend on what the machine has.
find_path(UTF8PROC_INCLUDE_DIR utf8proc.h REQUIRED)
find_library(UTF8PROC_LIBRARY NAMES libutf8proc.a utf8proc REQUIRED)
add_library(trellant_utf8proc UNKNOWN IMPORTED)
set_target_properties(trellant_utf8proc PROPERTIES
    IMPORTED_LOCATION "${UTF8PROC_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${UTF8PROC_INCLUDE_DIR}"
    INTERFACE_COMPILE_DEFINITIONS UTF8PROC_STATIC)
