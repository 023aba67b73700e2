# quillmere_room(NAME [PATH dir] LINKS targets...)
#
# A room is one folder of src/ and one static library. Its headers are seen through a folder of its own that holds
# nothing but a link to it, so `#include "model/AppModel.h"` compiles only in a target that links `model`.
function(quillmere_room name)
  cmake_parse_arguments(ROOM "" "PATH" "LINKS" ${ARGN})
  if(NOT ROOM_PATH)
    set(ROOM_PATH ${name})
  endif()
  set(folder ${CMAKE_SOURCE_DIR}/src/${ROOM_PATH})
  file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp ${folder}/*.h)
  add_library(${name} STATIC ${sources})

  set(view ${CMAKE_BINARY_DIR}/rooms/${name})
  get_filename_component(parent ${ROOM_PATH} DIRECTORY)
  file(MAKE_DIRECTORY ${view}/${parent})
  file(CREATE_LINK ${folder} ${view}/${ROOM_PATH} SYMBOLIC)
  target_include_directories(${name} PUBLIC ${view})

  target_link_libraries(${name} PUBLIC quillmere_options ${ROOM_LINKS})
  # What nearly every file includes is read once, for all rooms.
  if(name STREQUAL foundation)
    target_precompile_headers(${name} PRIVATE <QtCore/QString> <functional> <memory> <optional> <string> <unordered_map> <vector>)
  else()
    target_precompile_headers(${name} REUSE_FROM foundation)
  endif()
endfunction()
