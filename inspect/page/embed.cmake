# Puts the page together and writes it as a C++ source.
#
#   cmake -DFOLDER=... -DOUTPUT=... -P embed.cmake
#
# The page names its style and its script by their hashes, so a browser that shows it runs nothing that
# somebody else's text might have brought in.
set(style_files page.css)
# Each uses the ones in front of it; the last one starts the page.
set(script_files dom.js chunks.js list.js search.js picture.js sources.js sections.js explain.js check.js diff.js start.js)

# The text of the files, one after another.
function(join_files result)
  set(all "")
  foreach(name IN LISTS ARGN)
    file(READ ${FOLDER}/${name} text)
    string(APPEND all "${text}")
  endforeach()
  set(${result} "${all}" PARENT_SCOPE)
endfunction()

# The SHA-256 of a text in base64, as a Content-Security-Policy wants it. Three hexadecimal digits are
# two of base64; two zeros make the 64 digits divisible, and stand for nothing but the closing "=".
function(hash_of text result)
  set(digits "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  string(SHA256 hexadecimal "${text}")
  string(REGEX MATCHALL "..." triples "${hexadecimal}00")
  set(base64 "")
  foreach(triple IN LISTS triples)
    math(EXPR high "0x${triple} >> 6")
    math(EXPR low "0x${triple} & 63")
    string(SUBSTRING "${digits}" ${high} 1 high)
    string(SUBSTRING "${digits}" ${low} 1 low)
    string(APPEND base64 "${high}${low}")
  endforeach()
  string(REGEX REPLACE ".$" "=" base64 "${base64}")
  set(${result} "${base64}" PARENT_SCOPE)
endfunction()

# A text as the initialiser of a character array: a literal has a limit and needs escapes.
function(bytes_of text result)
  file(WRITE ${OUTPUT}.part "${text}")
  file(READ ${OUTPUT}.part bytes HEX)
  file(REMOVE ${OUTPUT}.part)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${bytes}")
  set(${result} "${bytes}" PARENT_SCOPE)
endfunction()

join_files(page page.html)
join_files(style ${style_files})
join_files(script ${script_files})
hash_of("${style}" style_hash)
hash_of("${script}" script_hash)
string(REPLACE "@STYLE_HASH@" "${style_hash}" page "${page}")
string(REPLACE "@SCRIPT_HASH@" "${script_hash}" page "${page}")
string(REPLACE "@STYLE@" "${style}" page "${page}")
string(REPLACE "@SCRIPT@" "${script}" page "${page}")

string(FIND "${page}" "@DATA@" data)
math(EXPR behind "${data} + 6")
string(SUBSTRING "${page}" 0 ${data} head)
string(SUBSTRING "${page}" ${behind} -1 tail)
bytes_of("${head}" head)
bytes_of("${tail}" tail)
file(WRITE ${OUTPUT} "// Made by inspect/page/embed.cmake.
#include \"inspect/page/page_template.h\"

namespace rcp::inspect {
namespace {

constexpr char kHeadBytes[] = {${head}};
constexpr char kTailBytes[] = {${tail}};

}  // namespace

const std::string_view kPageHead(kHeadBytes, sizeof kHeadBytes);
const std::string_view kPageTail(kTailBytes, sizeof kTailBytes);

}  // namespace rcp::inspect
")
