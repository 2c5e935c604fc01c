# Writes a source file with the contents of files, for `pageFiles`.
#
#   cmake -DOUTPUT=page_files.cpp -DFILES="a;b" -P embed_page.cmake
#
# Bytes are written as numbers: a text that a compiler reads as a literal would have its own rules for quotes, and a
# length that compilers differ about.

set(arrays "")
set(table "")
set(number 0)
foreach(file IN LISTS FILES)
  get_filename_component(name ${file} NAME)
  file(READ ${file} bytes HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${bytes}")
  string(APPEND arrays "constexpr char file${number}[]{${bytes}};\n")
  string(APPEND table "    PageFile{\"${name}\", {file${number}, sizeof file${number}}},\n")
  math(EXPR number "${number} + 1")
endforeach()

file(CONFIGURE OUTPUT ${OUTPUT} @ONLY CONTENT [[
#include <host/serve/page_files.h>

#include <array>

namespace kestrel::host {
namespace {

@arrays@
constexpr std::array files{
@table@};

}  // namespace

std::span<const PageFile> pageFiles() {
    return files;
}

}  // namespace kestrel::host
]])
