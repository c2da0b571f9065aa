# Fails when a file includes a folder or a library that its own folder may not use, or names what belongs to another.
# Run as: cmake -DROOT=<source tree> -P CheckLayers.cmake
#
# The table names every folder with source files, and for each what its files may include besides the folder itself and
# the standard library: other folders, and the libraries Qt, QtInSource (in .cpp files only; nothing visual is linked
# there), sqlite3, sane, CLI and those of the report engine. A folder that is not in the table is an error, so each
# new folder needs a row.
cmake_minimum_required(VERSION 3.25)
set(breaches "")
set(known "")

# may_use(<folder> <folder or library>...)
function(may_use folder)
  file(GLOB files ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.cpp)
  foreach(file IN LISTS files)
    file(RELATIVE_PATH shown ${ROOT} ${file})
    file(STRINGS ${file} lines REGEX "^[ \t]*#[ \t]*include[ \t]*[\"<]")
    foreach(line IN LISTS lines)
      string(REGEX REPLACE "^[^\"<]*([\"<])([^\">]*).*" "\\1;\\2" parts "${line}")
      list(GET parts 0 mark)
      list(GET parts 1 path)
      if(mark STREQUAL "\"")
        get_filename_component(used "${path}" DIRECTORY)
      elseif(path MATCHES "^(Q[A-Z]|Qt)")
        set(used Qt)
        if("QtInSource" IN_LIST ARGN AND file MATCHES "\\.cpp$")
          set(used QtInSource)
        endif()
      elseif(path MATCHES "^(sqlite3|sane|CLI|expat|hb|libdeflate|zstd|xlsxwriter|cups)([./-]|$)")
        set(used ${CMAKE_MATCH_1})
      else()
        continue()
      endif()
      if(NOT used STREQUAL folder AND NOT used IN_LIST ARGN)
        set(breaches "${breaches}\n  ${shown}: ${line}")
      endif()
    endforeach()
  endforeach()
  set(breaches "${breaches}" PARENT_SCOPE)
  set(known ${known} ${folder} PARENT_SCOPE)
endfunction()

# may_not_name(<folder> <regular expression>): words that belong to another folder, also without an include.
function(may_not_name folder words)
  file(GLOB files ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.cpp)
  foreach(file IN LISTS files)
    file(RELATIVE_PATH shown ${ROOT} ${file})
    file(STRINGS ${file} lines REGEX "${words}")
    foreach(line IN LISTS lines)
      set(breaches "${breaches}\n  ${shown}: ${line}")
    endforeach()
  endforeach()
  set(breaches "${breaches}" PARENT_SCOPE)
endfunction()

# Replacements for outside services. Nothing here knows of fleets.
may_use(platform/runtime)
may_use(platform/store platform/runtime)
may_use(platform/store/sqlite platform/store platform/runtime sqlite3)
# What one engine alone has: its database, its own words, its files beside a data file.
may_not_name(platform/store "sqlite3?_|_rowid_|PRAGMA|SideFile|[^A-Za-z]Handle[^A-Za-z]")
may_use(platform/ado platform/runtime platform/store)
may_use(platform/dao platform/runtime platform/store)
may_use(platform/screen platform/runtime)
may_use(platform/scan sane)
may_use(platform/system platform/runtime QtInSource)
# The report engine: from formulas down to files. Its parts build on each other in this order.
set(paper platform/runtime platform/print)
may_use(platform/print platform/runtime)
may_use(platform/print/fonts ${paper} hb)
may_use(platform/print/formula ${paper})
may_use(platform/print/definition ${paper} platform/print/formula platform/store expat)
may_use(platform/print/data ${paper} platform/print/formula platform/print/definition platform/store)
may_use(platform/print/pages ${paper} zstd)
may_use(platform/print/layout ${paper} platform/print/fonts platform/print/formula platform/print/definition
  platform/print/data platform/print/pages)
may_use(platform/print/output ${paper} platform/print/fonts platform/print/pages hb libdeflate xlsxwriter)
set(engine ${paper} platform/print/formula platform/print/definition platform/print/data platform/print/layout
  platform/print/pages platform/print/output platform/print/fonts)
may_use(platform/print/job ${engine} platform/store cups)
may_use(platform/print/view ${engine} platform/print/job platform/controls platform/screen platform/system cups Qt)
set(services platform/runtime platform/store platform/ado platform/dao platform/screen platform/system)
may_use(platform/controls ${services} platform/scan Qt)

# The system itself: the access layers, the rules, the windows.
may_use(data ${services})
set(rules ${services} data)
may_use(shell ${rules})
may_use(costing ${rules})
may_use(fleet ${rules} costing)
may_use(reports ${rules} ${engine} platform/print/job)
set(widgets ${rules} platform/controls Qt)
may_use(windows ${widgets})
may_use(shell/forms ${widgets} windows shell)
may_use(costing/forms ${widgets} windows costing)
may_use(reports/forms ${widgets} windows reports shell platform/print/job)
may_use(fleet/forms ${widgets} windows fleet platform/scan costing costing/forms reports/forms)

# Programs.
may_use(program ${widgets} platform/print/job platform/print/view shell shell/forms costing/forms fleet/forms reports
  reports/forms)
may_use(tools/dwadmin ${rules} ${engine} platform/print/job shell costing fleet reports CLI)
may_use(tools/picture Qt)
may_use(tools/release data)
may_use(tools/screenshots ${widgets} program shell/forms costing/forms fleet/forms reports reports/forms tools/dwadmin)
may_use(bench ${engine} ${rules} costing fleet tools/dwadmin sqlite3 support)
may_use(bench/desktop ${widgets} bench program shell/forms costing/forms fleet/forms)

# Tests may include everything.
foreach(top bench costing data fleet platform program shell tools windows reports admin)
  file(GLOB_RECURSE files RELATIVE ${ROOT} ${ROOT}/${top}/*.h ${ROOT}/${top}/*.cpp)
  foreach(file IN LISTS files)
    get_filename_component(folder "${file}" DIRECTORY)
    if(NOT folder IN_LIST known)
      set(breaches "${breaches}\n  ${file}: its folder is not in the table of cmake/CheckLayers.cmake")
    endif()
  endforeach()
endforeach()

if(breaches)
  message(FATAL_ERROR "These includes and names are not allowed:${breaches}")
endif()
