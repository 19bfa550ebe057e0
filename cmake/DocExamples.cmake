# The examples of the guides in docs/ as CTest tests.
#
# Each ```cpp block of a guide is a complete short program; the ```text block
# right after it is its exact standard output. At configure time every guide
# becomes one program in the build tree (docs/<guide>.cpp) holding each
# example as its own function, and every example becomes the test
# doc.<guide>.<n>, which runs the program for that example and compares its
# output with the text block (cmake/DocExampleCheck.cmake). Under an emulator,
# where starting a program is slow, each guide is one test, doc.<guide>, that
# runs all its examples in one process and still compares each one's output.
# Editing a guide re-runs the configuration.

file(GLOB _kalbor_doc_guides CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.md)
set(_kalbor_doc_dir ${PROJECT_BINARY_DIR}/docs)
file(MAKE_DIRECTORY ${_kalbor_doc_dir})

# The emulator goes to the check script as one argument.
string(REPLACE ";" "|" _kalbor_doc_emulator "${CMAKE_CROSSCOMPILING_EMULATOR}")

foreach(guide_path IN LISTS _kalbor_doc_guides)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${guide_path})
  get_filename_component(guide ${guide_path} NAME_WE)
  string(MAKE_C_IDENTIFIER "${guide}" guide_id)
  file(READ ${guide_path} rest)
  string(LENGTH "${rest}" guide_length)

  set(includes "")
  set(bodies "")
  set(count 0)
  while(TRUE)
    string(FIND "${rest}" "\n```cpp\n" open)
    if(open EQUAL -1)
      break()
    endif()
    math(EXPR open "${open} + 8")
    string(SUBSTRING "${rest}" ${open} -1 rest)
    string(FIND "${rest}" "\n```\n" close)
    if(close EQUAL -1)
      message(FATAL_ERROR "${guide_path}: a ```cpp block is not closed")
    endif()
    math(EXPR close_plus "${close} + 1")
    string(SUBSTRING "${rest}" 0 ${close_plus} code)
    math(EXPR close "${close} + 5")
    string(SUBSTRING "${rest}" ${close} -1 rest)

    # Its line in the guide, for the compiler's messages.
    string(LENGTH "${rest}" rest_length)
    math(EXPR consumed "${guide_length} - ${rest_length}")
    file(READ ${guide_path} head LIMIT ${consumed})
    string(REGEX MATCHALL "\n" newlines "${head}")
    list(LENGTH newlines close_line)
    string(REGEX MATCHALL "\n" code_newlines "${code}")
    list(LENGTH code_newlines code_lines)
    math(EXPR first_line "${close_line} - ${code_lines}")

    # The output block must follow at once (blank lines aside).
    string(REGEX MATCH "^\n*```text\n" text_open "${rest}")
    if(NOT text_open)
      message(FATAL_ERROR "${guide_path}:${close_line}: a ```cpp block is not followed by its ```text output")
    endif()
    string(LENGTH "${text_open}" text_open_length)
    string(SUBSTRING "${rest}" ${text_open_length} -1 rest)
    if(rest MATCHES "^```")
      set(expected "")
      string(SUBSTRING "${rest}" 3 -1 rest)
    else()
      string(FIND "${rest}" "\n```" text_close)
      if(text_close EQUAL -1)
        message(FATAL_ERROR "${guide_path}:${close_line}: a ```text block is not closed")
      endif()
      math(EXPR text_close_plus "${text_close} + 1")
      string(SUBSTRING "${rest}" 0 ${text_close_plus} expected)
      math(EXPR text_close "${text_close} + 4")
      string(SUBSTRING "${rest}" ${text_close} -1 rest)
    endif()

    math(EXPR count "${count} + 1")
    file(WRITE ${_kalbor_doc_dir}/${guide}.${count}.txt "${expected}")

    # Includes go to the top of the program (blank lines keep the numbering);
    # main becomes the example's own function.
    string(REGEX MATCHALL "#include[^\n]*\n" code_includes "${code}")
    foreach(line IN LISTS code_includes)
      string(FIND "${includes}" "${line}" known)
      if(known EQUAL -1)
        string(APPEND includes "${line}")
      endif()
    endforeach()
    string(REGEX REPLACE "#include[^\n]*\n" "\n" code "${code}")
    if(NOT code MATCHES "int main\\(\\)")
      message(FATAL_ERROR "${guide_path}:${first_line}: an example has no int main()")
    endif()
    string(REGEX REPLACE "int main\\(\\)" "int run()" code "${code}")
    string(APPEND bodies "namespace example_${count} {\n#line ${first_line} \"${guide_path}\"\n${code}}  // namespace example_${count}\n\n")
  endwhile()

  if(count EQUAL 0)
    continue()
  endif()

  set(table "")
  foreach(n RANGE 1 ${count})
    string(APPEND table "    example_${n}::run,\n")
  endforeach()
  set(source "// Generated from ${guide_path}: do not edit.\n${includes}#include <cstdio>\n#include <cstring>\n\n${bodies}")
  string(APPEND source "static int (*const kExamples[])() = {\n${table}};\n\n"
    "// With a number, runs that example; with \"all\", runs each one after a line\n"
    "// naming it. Exits non-zero when an example returns non-zero.\n"
    "int main(int argc, char** argv) {\n"
    "  const int count = static_cast<int>(sizeof kExamples / sizeof kExamples[0]);\n"
    "  if (argc != 2) return 2;\n"
    "  int status = 0;\n"
    "  for (int n = 1; n <= count; ++n) {\n"
    "    char name[16];\n"
    "    std::snprintf(name, sizeof name, \"%d\", n);\n"
    "    const bool all = std::strcmp(argv[1], \"all\") == 0;\n"
    "    if (!all && std::strcmp(argv[1], name) != 0) continue;\n"
    "    if (all) std::printf(\"@@@ example %d\\n\", n);\n"
    "    if (kExamples[n - 1]() != 0) status = 1;\n"
    "    std::fflush(stdout);\n"
    "  }\n"
    "  return status;\n"
    "}\n")
  # Rewrite only on change, so that an unchanged guide does not rebuild.
  set(source_path ${_kalbor_doc_dir}/${guide}.cpp)
  file(WRITE ${source_path}.new "${source}")
  file(COPY_FILE ${source_path}.new ${source_path} ONLY_IF_DIFFERENT)
  file(REMOVE ${source_path}.new)

  set(target kalbor_doc_${guide_id})
  add_executable(${target} ${source_path})
  target_link_libraries(${target} PRIVATE Kalbor400U_static)
  if(COMMAND kalbor_light_optimisation)
    kalbor_light_optimisation(${target})
  endif()

  set(check -DPROGRAM=$<TARGET_FILE:${target}> "-DEMULATOR=${_kalbor_doc_emulator}"
            -DEXPECTED=${_kalbor_doc_dir}/${guide} -DCOUNT=${count} -DGUIDE=${guide_path})
  if(CMAKE_CROSSCOMPILING_EMULATOR)
    add_test(NAME doc.${guide} COMMAND ${CMAKE_COMMAND} ${check} -DEXAMPLE=all
             -P ${PROJECT_SOURCE_DIR}/cmake/DocExampleCheck.cmake)
  else()
    foreach(n RANGE 1 ${count})
      add_test(NAME doc.${guide}.${n} COMMAND ${CMAKE_COMMAND} ${check} -DEXAMPLE=${n}
               -P ${PROJECT_SOURCE_DIR}/cmake/DocExampleCheck.cmake)
    endforeach()
  endif()
endforeach()
