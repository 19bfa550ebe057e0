# Runs the kalbor tool as a process and checks what it writes and returns.
#   cmake -DKALBOR=<tool> -DWORK=<scratch folder> -DPART=table|streaming -P run_cases.cmake
# table: each row runs the tool once with its arguments and standard input
# and checks standard output and the exit status; a failed run must explain
# itself on standard error with a "kalbor: " message.
# streaming: conv on input larger than its 64 KiB chunk, with a multi-byte
# character across each chunk boundary, both ways, and a stateful page.
#
# Texts are CMake strings; "hex:" gives bytes instead (lower case; 00 only
# in an output) and "regex:" matches the output against a regular expression.

cmake_policy(VERSION 3.25)
file(MAKE_DIRECTORY "${WORK}")
set(failures "")

function(bytes_of text out)
  if(text MATCHES "^hex:(.*)")
    string(REGEX MATCHALL ".." pairs "${CMAKE_MATCH_1}")
    set(codes "")
    foreach(pair IN LISTS pairs)
      math(EXPR code "0x${pair}")
      list(APPEND codes ${code})
    endforeach()
    string(ASCII ${codes} text)
  endif()
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

# check(<what the row guards> ARGS <arg>... [IN <stdin>] [OUT <stdout>] [STATUS <n>])
function(check what)
  cmake_parse_arguments(PARSE_ARGV 1 row "" "IN;OUT;STATUS" "ARGS")
  if(NOT DEFINED row_STATUS)
    set(row_STATUS 0)
  endif()
  set(in "")
  if(DEFINED row_IN)
    bytes_of("${row_IN}" in)
  endif()
  file(WRITE "${WORK}/stdin" "${in}")
  execute_process(COMMAND "${KALBOR}" ${row_ARGS} INPUT_FILE "${WORK}/stdin" OUTPUT_FILE "${WORK}/stdout"
                  ERROR_VARIABLE err RESULT_VARIABLE status)
  file(READ "${WORK}/stdout" got_hex HEX)
  set(problem "")
  if(row_OUT MATCHES "^regex:(.*)")
    set(pattern "${CMAKE_MATCH_1}")
    file(READ "${WORK}/stdout" got)
    if(NOT got MATCHES "${pattern}")
      set(problem "output '${got}' does not match '${pattern}'")
    endif()
  else()
    if(row_OUT MATCHES "^hex:(.*)")
      set(want_hex "${CMAKE_MATCH_1}")
    else()
      string(HEX "${row_OUT}" want_hex)
    endif()
    if(NOT got_hex STREQUAL want_hex)
      set(problem "output (hex) ${got_hex}, expected ${want_hex}")
    endif()
  endif()
  if(NOT status STREQUAL row_STATUS)
    string(APPEND problem " exit status ${status}, expected ${row_STATUS}")
  elseif(NOT status EQUAL 0 AND NOT err MATCHES "^kalbor: ")
    string(APPEND problem " no 'kalbor: ' message on standard error: '${err}'")
  endif()
  if(problem)
    set(failures "${failures}\n  ${what} (kalbor ${row_ARGS}):${problem}" PARENT_SCOPE)
  endif()
endfunction()

if(PART STREQUAL "table")
  check("the command list" ARGS --help OUT "regex:^Usage: kalbor COMMAND .*conv --from NAME")
  check("one command's help" ARGS base64 --help OUT "regex:^Usage: kalbor base64 \\[-d\\]")
  # Calendar: the library's date forms in, YYYYMMDD out.
  check("lunar: a leap month from the library's own walk" ARGS lunar 20010523 OUT "20010401 leap\n")
  check("lunar: past the walk's end in lunar 2004" ARGS lunar 2026-11-22 OUT "20261014\n")
  check("lunar: a leap month past the walk" ARGS lunar 2023-03-22 OUT "20230201 leap\n")
  check("lunar: the table's last day" ARGS lunar 2050-01-22 OUT "20491229\n")
  check("lunar: before the table" ARGS lunar 1921-02-07 STATUS 1)
  check("solar: lunar new year" ARGS solar 2026-01-01 OUT "20260217\n")
  check("solar: past the table" ARGS solar 20500101 STATUS 1)
  check("workday: a lunar holiday past the library's walk" ARGS workday 2026-09-25 OUT "holiday\n")
  check("days: across a year" ARGS days 20260101 2026-12-31 OUT "364\n")
  check("adddays: back over a month end" ARGS adddays 2024-03-01 -1 OUT "20240229\n")
  check("addmonths: the day clamped" ARGS addmonths 20260131 1 OUT "20260228\n")
  check("weekday" ARGS weekday 2026-11-22 OUT "Sunday\n")
  check("today: 14 digits" ARGS today OUT "regex:^[0-9][0-9][0-9][0-9][0-9][0-9][0-9][0-9][0-9][0-9][0-9][0-9][0-9][0-9]\n$")
  check("an impossible date" ARGS weekday 2026-02-29 STATUS 2)
  check("a date in neither form" ARGS days 2026/01/01 20260101 STATUS 2)
  check("a count that is no number" ARGS adddays 20260101 1x STATUS 2)
  # Codecs: binary-safe, standard input when no file is named.
  check("base64: empty input" ARGS base64 OUT "")
  check("base64: a zero byte inside" ARGS base64 IN "hex:61" OUT "YQ==\n")
  check("base64 -d: line breaks skipped, zero byte kept" ARGS base64 -d IN "aGVs\nbG8Ad29y\nbGQ=\n"
        OUT "hex:68656c6c6f00776f726c64")
  check("base64 -d: a byte outside the alphabet" ARGS base64 -d IN "aGV!" STATUS 1)
  check("url: reserved, blank and UTF-8 bytes" ARGS url IN "a b&:é" OUT "a%20b%26:%C3%A9")
  check("url -d: %00 kept as a zero byte, + kept" ARGS url -d IN "a%00b+%C3%A9" OUT "hex:6100622bc3a9")
  check("xml: markup and blanks" ARGS xml IN "<a b='&'>" OUT "&lt;a&#32;b=&apos;&amp;&apos;&gt;")
  check("xml -d: named and numeric references, as UTF-8" ARGS xml -d IN "&lt;&#233;&#x41;&amp;" OUT "<éA&")
  check("crc32: standard input" ARGS crc32 IN "123456789" OUT "cbf43926\n")
  check("crc32: a missing file" ARGS crc32 "${WORK}/no such file" STATUS 1)
  # conv: names in any case, bytes through 16-bit text.
  check("conv: UTF-8 to EUC-KR" ARGS conv --from utf-8 --to EUC-KR IN "한 a" OUT "hex:c7d12061")
  check("conv: Shift_JIS to UTF-8" ARGS conv --from shift_jis --to utf-8 IN "hex:93fa967b" OUT "日本")
  check("conv: an unknown name" ARGS conv --from utf-8 --to klingon STATUS 2)
  check("conv: a page the library does not convert" ARGS conv --from utf-16 --to utf-8 STATUS 2)
  check("conv: --to missing" ARGS conv --from utf-8 STATUS 2)
  # format: each argument converted to its directive's type.
  check("format: every argument type"
        ARGS format "%d %#x %5.2s %-05d %hs %c %.3f %g %pA %pI %*d %ld%%" 1 255 abcdef 42 narrow Z 0.005 100000000
             10.0.0.1 192.168.1.2:8080 4 7 -5
        OUT "1 0xff    ab 42000 narrow Z 0.0050 1.e+8 10.0.0.1 192.168.1.2:8080    7 -5%\n")
  check("format: %#x alone gets no prefix" ARGS format "%#x" 255 OUT "ff\n")
  check("format: a wide %s argument in UTF-8" ARGS format "[%s]" "한글" OUT "[한글]\n")
  check("format: a bad number" ARGS format "%d" 12x STATUS 2)
  check("format: a missing argument" ARGS format "%d %d" 1 STATUS 2)
  check("format: an argument too many" ARGS format "x" 1 STATUS 2)
  # The tool itself.
  check("no command" STATUS 2)
  check("an unknown command" ARGS frobnicate STATUS 2)
  check("an unknown option" ARGS url -x STATUS 2)
elseif(PART STREQUAL "streaming")
  # 65535 ASCII bytes put a 3-byte character across the first chunk
  # boundary of the UTF-8 text and a 2-byte one across that of the EUC-KR.
  string(REPEAT "a" 65535 head)
  string(REPEAT "한글 " 30000 tail)
  set(text "${head}한${tail}\n")
  file(WRITE "${WORK}/big.txt" "${text}")
  execute_process(COMMAND "${KALBOR}" conv --from utf-8 --to euc-kr "${WORK}/big.txt"
                  COMMAND "${KALBOR}" conv --from euc-kr --to utf-8
                  OUTPUT_FILE "${WORK}/back.txt" RESULTS_VARIABLE statuses)
  file(READ "${WORK}/back.txt" back)
  if(NOT statuses STREQUAL "0;0" OR NOT back STREQUAL text)
    string(LENGTH "${back}" length)
    string(APPEND failures "\n  round trip through EUC-KR: exit statuses ${statuses}, ${length} bytes back")
  endif()
  # ISO-2022-JP switches to its double-byte state inside each line: 21-byte
  # lines put one across the chunk boundary of the ISO-2022-JP text.
  string(REPEAT "日本語テキスト\n" 5000 text)
  file(WRITE "${WORK}/lines.txt" "${text}")
  execute_process(COMMAND "${KALBOR}" conv --from utf-8 --to iso-2022-jp "${WORK}/lines.txt"
                  COMMAND "${KALBOR}" conv --from iso-2022-jp --to utf-8
                  OUTPUT_FILE "${WORK}/back.txt" RESULTS_VARIABLE statuses)
  file(READ "${WORK}/back.txt" back)
  if(NOT statuses STREQUAL "0;0" OR NOT back STREQUAL text)
    string(LENGTH "${back}" length)
    string(APPEND failures "\n  round trip through ISO-2022-JP: exit statuses ${statuses}, ${length} bytes back")
  endif()
else()
  message(FATAL_ERROR "PART must be table or streaming")
endif()

if(failures)
  message(FATAL_ERROR "kalbor cases failed:${failures}")
endif()
