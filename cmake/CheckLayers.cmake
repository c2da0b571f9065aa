# Fails when a file includes a folder above its own. Run as: cmake -DROOT=<source tree> -P CheckLayers.cmake
set(breaches "")

# forbid(<folder> <regex>...): no file below <folder> may include a path that matches.
function(forbid folder)
  file(GLOB_RECURSE files ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.cpp)
  search("${files}" "${ARGN}")
  set(breaches "${breaches}" PARENT_SCOPE)
endfunction()

# The same for the files of the folder itself, without its forms.
function(forbid_modules folder)
  file(GLOB files ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.cpp)
  search("${files}" "${ARGN}")
  set(breaches "${breaches}" PARENT_SCOPE)
endfunction()

function(search files patterns)
  foreach(file IN LISTS files)
    foreach(pattern IN LISTS patterns)
      file(STRINGS ${file} lines REGEX "^[ \t]*#[ \t]*include[ \t]*[\"<]${pattern}")
      foreach(line IN LISTS lines)
        file(RELATIVE_PATH shown ${ROOT} ${file})
        set(breaches "${breaches}\n  ${shown}: ${line}")
      endforeach()
    endforeach()
  endforeach()
  set(breaches "${breaches}" PARENT_SCOPE)
endfunction()

set(modules "data/" "costing/" "fleet/" "shell/" "reports/" "admin/" "tools/")
set(qt "Q[A-Z]" "Qt[A-Z]")
forbid(platform/runtime ${modules} "platform/[^r]" ${qt} "sqlite3")
forbid(platform/store ${modules} "platform/(ado|dao|system|screen|print|controls)" ${qt})
forbid(platform/ado ${modules} "platform/(dao|system|screen|print|controls)" ${qt} "sqlite3")
forbid(platform/dao ${modules} "platform/(ado|system|screen|print|controls)" ${qt} "sqlite3")
forbid(platform/screen ${modules} "platform/(store|ado|dao|system|print|controls)" ${qt} "sqlite3")
forbid(platform/system ${modules} "platform/(store|ado|dao|screen|print|controls)" "QtWidgets" "QtGui" "QWidget" "sqlite3")
forbid(data "costing/" "fleet/" "shell/" "reports/" "admin/" "tools/" "platform/controls" ${qt} "sqlite3")
forbid(platform/controls ${modules} "sqlite3")
foreach(module costing fleet shell reports admin)
  forbid(${module} "tools/" "sqlite3")
  # Forms use their modules, never the other way round.
  forbid_modules(${module} "platform/controls" "[a-z]+/forms/" ${qt})
endforeach()

if(breaches)
  message(FATAL_ERROR "These includes point up:${breaches}")
endif()
