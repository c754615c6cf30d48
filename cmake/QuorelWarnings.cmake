function(quorel_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                         -Wold-style-cast -Wcast-qual -Woverloaded-virtual
                         -Wdouble-promotion -Wimplicit-fallthrough -Wextra-semi)
  if(QUOREL_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
