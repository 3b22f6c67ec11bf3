# A layer is a folder of engine sources built as an object library.
# Sources are globbed so that a new file needs no build-script edit.
set(QB_ENGINE_LAYERS "" CACHE INTERNAL "")

function(qb_layer name)
  file(GLOB_RECURSE srcs CONFIGURE_DEPENDS
       ${CMAKE_SOURCE_DIR}/${name}/*.cpp)
  if(NOT srcs)
    # An empty layer still exists as a target so that others may name it.
    set(srcs ${CMAKE_SOURCE_DIR}/cmake/empty.cpp)
  endif()
  add_library(qb_${name} OBJECT ${srcs})
  target_include_directories(qb_${name} PUBLIC ${CMAKE_SOURCE_DIR}/${name})
  foreach(dep IN LISTS ARGN)
    target_include_directories(qb_${name} PUBLIC ${CMAKE_SOURCE_DIR}/${dep})
  endforeach()
  # Engine code calls host operations through the qbapi headers only, and knows statuses by the
  # names of the message table.
  target_include_directories(qb_${name} PUBLIC ${CMAKE_SOURCE_DIR}/qbapi/include
                                               ${CMAKE_SOURCE_DIR}/messages)
  set(QB_ENGINE_LAYERS ${QB_ENGINE_LAYERS} ${name} CACHE INTERNAL "")
endfunction()

function(qb_engine_module)
  set(objs "")
  set(incs "")
  foreach(l IN LISTS QB_ENGINE_LAYERS)
    list(APPEND objs $<TARGET_OBJECTS:qb_${l}>)
    list(APPEND incs ${CMAKE_SOURCE_DIR}/${l})
  endforeach()
  # The loadable module, as the editor sees it.
  add_library(qbrefactor_module MODULE ${objs})
  set_target_properties(qbrefactor_module PROPERTIES OUTPUT_NAME qbrefactor PREFIX "lib")
  # The same objects as a static library for unit tests of engine internals.
  add_library(qbengine STATIC ${objs})
  target_include_directories(qbengine PUBLIC ${incs} ${CMAKE_SOURCE_DIR}/qbapi/include
                                             ${CMAKE_SOURCE_DIR}/messages)
endfunction()
