function(quorel_sanitizers target)
  if(QUOREL_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${QUOREL_SANITIZE} -fno-omit-frame-pointer
                           -fno-sanitize-recover=all)
    target_link_options(${target} PRIVATE -fsanitize=${QUOREL_SANITIZE})
    target_compile_definitions(${target} PRIVATE QUOREL_SANITIZED)
  endif()
endfunction()
