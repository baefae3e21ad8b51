# QLMRes.DLL is a resource-only PE file on both platforms: windres compiles the script to a COFF
# object and ld links it into a DLL without code or entry point. The Linux host reads it as Windows would.
find_program(QLM_WINDRES NAMES x86_64-w64-mingw32-windres REQUIRED)
find_program(QLM_PE_LD NAMES x86_64-w64-mingw32-ld REQUIRED)

# qlm_add_resource_dll(<target> <output name> <rc file> DEPENDS <files...>)
function(qlm_add_resource_dll target output rc)
  cmake_parse_arguments(ARG "" "" "DEPENDS;INCLUDES" ${ARGN})
  set(obj ${CMAKE_CURRENT_BINARY_DIR}/${target}.res.o)
  set(dll ${CMAKE_CURRENT_BINARY_DIR}/${output})
  set(incs)
  foreach(dir ${ARG_INCLUDES})
    list(APPEND incs --include-dir=${dir})
  endforeach()
  add_custom_command(
    OUTPUT ${obj}
    COMMAND ${QLM_WINDRES} --codepage=65001 -O coff ${incs} -i ${rc} -o ${obj}
    DEPENDS ${rc} ${ARG_DEPENDS}
    COMMENT "windres ${rc}")
  add_custom_command(
    OUTPUT ${dll}
    COMMAND ${QLM_PE_LD} --dll -e 0 -nostdlib --subsystem windows
            --image-base 0x180000000 -o ${dll} ${obj}
    DEPENDS ${obj}
    COMMENT "ld ${output}")
  add_custom_target(${target} ALL DEPENDS ${dll})
  set_target_properties(${target} PROPERTIES QLM_OUTPUT ${dll})
endfunction()
