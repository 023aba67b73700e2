# quillmere_room(NAME [PATH dir] [HEADERS headers...] [HEADERS_OF room] LINKS targets...)
#
# A room is one folder of src/ and one static library. Its headers are seen through a folder of its own that holds
# nothing but a link to it, so `#include "model/AppModel.h"` compiles only in a target that links `model`.
#
# Precompiled headers are foundation's, read once for all rooms. HEADERS: what nearly every file of this room includes
# beside those, for precompiled headers of its own; HEADERS_OF: the room whose headers these are.
set(room_headers <QtCore/QString> <functional> <memory> <optional> <string> <unordered_map> <vector>)
function(quillmere_room name)
  cmake_parse_arguments(ROOM "" "PATH;HEADERS_OF" "HEADERS;LINKS" ${ARGN})
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

  target_link_libraries(${name} PUBLIC quillmere_options PRIVATE quillmere_hardening PUBLIC ${ROOM_LINKS})
  if(ROOM_HEADERS)
    target_precompile_headers(${name} PRIVATE ${room_headers} ${ROOM_HEADERS})
  elseif(ROOM_HEADERS_OF)
    target_precompile_headers(${name} REUSE_FROM ${ROOM_HEADERS_OF})
  else()
    target_precompile_headers(${name} REUSE_FROM foundation)
  endif()
endfunction()
