# tarvo_separate_debug(TARGET): after each link the target's symbols and lines of source move into a
# file beside it, with `.debug` after its name. The target is stripped and names that file, so that a
# debugger finds it. docs/crash-addresses.md says how it is used.
function(tarvo_separate_debug target)
  set(file $<TARGET_FILE:${target}>)
  # --preserve-dates also keeps the time inside the file as the linker set it: none.
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${CMAKE_OBJCOPY} --preserve-dates --only-keep-debug ${file} ${file}.debug
    COMMAND ${CMAKE_STRIP} --preserve-dates --strip-all ${file}
    COMMAND ${CMAKE_OBJCOPY} --preserve-dates --add-gnu-debuglink=${file}.debug ${file}
    VERBATIM)
endfunction()
