# Writes the source that defines the parts of the page:
#
#   cmake -D OUT=file.cc -D "STYLE=a.css" -D "SCRIPT=a.js;b.js" -D "CONTROLS=a.html" -P EmbedPageParts.cmake
#
# The files of one part are joined.

# The bytes that the hexadecimal digits `hex` stand for, in base 64. Their number leaves a remainder
# of two when it is divided by three, as the 32 of SHA-256 do.
function(to_base64 hex out)
  set(digits "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  set(text "")
  string(LENGTH "${hex}00" length)
  math(EXPR last "${length} - 6")
  foreach(at RANGE 0 ${last} 6)
    string(SUBSTRING "${hex}00" ${at} 6 three)
    foreach(shift 18 12 6 0)
      math(EXPR index "0x${three} >> ${shift} & 63")
      string(SUBSTRING "${digits}" ${index} 1 digit)
      string(APPEND text "${digit}")
    endforeach()
  endforeach()
  string(REGEX REPLACE ".$" "=" text "${text}")
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

set(source "#include \"desktop/timeline/page_parts.h\"\n\nnamespace tessum {\n")
foreach(part Style Script Controls)
  string(TOUPPER ${part} variable)
  set(text "")
  foreach(file IN LISTS ${variable})
    file(READ "${file}" content)
    string(APPEND text "${content}")
  endforeach()
  string(SHA256 hex "${text}")
  to_base64(${hex} hash)
  # A literal has its limits, so the text is written as several.
  string(REPLACE "\n\n" "\n\n)~~~\"\nR\"~~~(" text "${text}")
  string(APPEND source
    "\nconst PagePart kPage${part}{R\"~~~(${text})~~~\",\n\"sha256-${hash}\"};\n")
endforeach()
file(WRITE "${OUT}" "${source}\n}  // namespace tessum\n")
