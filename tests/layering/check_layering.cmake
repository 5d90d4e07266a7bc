# Checks the arrows between the source folders on the include lines of every file under src/:
#   - no folder but src/ui includes a header of src/ui, and none includes Qt Widgets (the window's folder, and
#     src/app/main.cpp, which makes the window, are the only ones that may);
#   - src/platform includes nothing of a subsystem: only its own headers and those of src/base;
#   - no two headers under src/ share a name, so an include line always means one file.
# Run as: cmake -DSOURCE_DIR=<project> -DWIDGETS_DIR=<QtWidgets include folder> -P check_layering.cmake

file(GLOB_RECURSE headers RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/src/*.h)
file(GLOB_RECURSE sources RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/src/*.h ${SOURCE_DIR}/src/*.cpp)
set(problems "")

# Which top folder each header name belongs to (src/app/log counts as src/app).
foreach(header ${headers})
    get_filename_component(name ${header} NAME)
    string(REGEX MATCH "^src/[^/]+" folder ${header})
    if(DEFINED folder_of_${name})
        list(APPEND problems "two headers named ${name}: ${owner_of_${name}} and ${header}")
    endif()
    set(folder_of_${name} ${folder})
    set(owner_of_${name} ${header})
endforeach()

set(widgets "")
if(WIDGETS_DIR AND IS_DIRECTORY ${WIDGETS_DIR})
    file(GLOB widgets RELATIVE ${WIDGETS_DIR} ${WIDGETS_DIR}/Q*)
endif()

foreach(source ${sources})
    string(REGEX MATCH "^src/[^/]+" folder ${source})
    file(STRINGS ${SOURCE_DIR}/${source} includes REGEX "^#include ")
    foreach(line ${includes})
        if(line MATCHES "^#include \"([^\"]+)\"")
            get_filename_component(name ${CMAKE_MATCH_1} NAME)
            if(NOT DEFINED folder_of_${name})
                continue()
            endif()
            set(target ${folder_of_${name}})
            if(target STREQUAL "src/ui" AND NOT folder STREQUAL "src/ui" AND NOT source STREQUAL "src/app/main.cpp")
                list(APPEND problems "${source} includes ${CMAKE_MATCH_1} of the window's folder src/ui")
            endif()
            if(folder STREQUAL "src/platform" AND NOT target STREQUAL "src/platform" AND NOT target STREQUAL "src/base")
                list(APPEND problems "${source} (platform) includes ${CMAKE_MATCH_1} of ${target}")
            endif()
        elseif(line MATCHES "^#include <([^>]+)>")
            set(included ${CMAKE_MATCH_1})
            string(REGEX REPLACE "^QtWidgets/" "" header ${included})
            list(FIND widgets ${header} widget)
            if(NOT widget EQUAL -1 AND NOT folder STREQUAL "src/ui" AND NOT source STREQUAL "src/app/main.cpp")
                list(APPEND problems "${source} includes the widget header <${included}> outside src/ui")
            endif()
        endif()
    endforeach()
endforeach()

if(problems)
    list(JOIN problems "\n  " text)
    message(FATAL_ERROR "The folders' arrows are broken:\n  ${text}")
endif()
list(LENGTH sources count)
message(STATUS "${count} files under src/ keep to the folders' arrows")
