# `qbrefactor config`, the compiler and compile_commands.json readers behind it, and the setup of
# each parsed file, as a library of their own so that tests can link them without the program's
# main.
set(QB_CLI_CONFIG_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/ConfigCommand.cpp
    ${CMAKE_CURRENT_LIST_DIR}/CompilerDetect.cpp
    ${CMAKE_CURRENT_LIST_DIR}/CompileCommands.cpp
    ${CMAKE_CURRENT_LIST_DIR}/FileSetup.cpp
    ${CMAKE_CURRENT_LIST_DIR}/FileSetOptions.cpp)
list(REMOVE_ITEM CLI_SOURCES ${QB_CLI_CONFIG_SOURCES})

add_library(qbrefactor_config STATIC ${QB_CLI_CONFIG_SOURCES})
target_include_directories(qbrefactor_config PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(qbrefactor_config PUBLIC qbapi ${CMAKE_DL_LIBS})
find_package(nlohmann_json 3 QUIET)
if(nlohmann_json_FOUND)
  target_link_libraries(qbrefactor_config PRIVATE nlohmann_json::nlohmann_json)
endif()

# The program and the cli tests are defined after this file is read: link them at the end.
function(qb_link_config_targets)
  foreach(target qbrefactor_cli test_cli)
    if(TARGET ${target})
      target_link_libraries(${target} PRIVATE qbrefactor_config)
    endif()
  endforeach()
endfunction()
cmake_language(DEFER DIRECTORY ${CMAKE_SOURCE_DIR} CALL qb_link_config_targets)
