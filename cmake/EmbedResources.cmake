# Compiles files into the program: velder_embed_resources(<target> <file>...) generates a source that
# registers each file under its base name, for Resources::lookup in the core.
set(VELDER_EMBED_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/EmbedFile.cmake)

function(velder_embed_resources target)
    set(generated ${CMAKE_CURRENT_BINARY_DIR}/${target}_resources.cpp)
    add_custom_command(
        OUTPUT ${generated}
        COMMAND ${CMAKE_COMMAND} -DOUTPUT=${generated} "-DFILES=${ARGN}" -P ${VELDER_EMBED_SCRIPT}
        DEPENDS ${ARGN} ${VELDER_EMBED_SCRIPT}
        COMMENT "Embedding resources into ${target}"
        VERBATIM)
    target_sources(${target} PRIVATE ${generated})
endfunction()
