# Writes the page's files as one C++ source: cmake -DOUT=... -DFILES=a;b -P embed.cmake
set(rows)
set(arrays)
set(count 0)
foreach(file IN LISTS FILES)
    get_filename_component(name ${file} NAME)
    get_filename_component(suffix ${file} LAST_EXT)
    if(suffix STREQUAL ".html")
        set(type "text/html; charset=utf-8")
    elseif(suffix STREQUAL ".css")
        set(type "text/css; charset=utf-8")
    elseif(suffix STREQUAL ".js")
        set(type "text/javascript; charset=utf-8")
    elseif(suffix STREQUAL ".svg")
        set(type "image/svg+xml")
    else()
        message(FATAL_ERROR "of which type is ${file}?")
    endif()
    file(SHA256 ${file} tag)
    file(READ ${file} hex HEX)
    file(SIZE ${file} size)
    string(REGEX REPLACE "(................................................................)" "\\1\"\n    \"" hex "${hex}")
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "\\\\x\\1" bytes "${hex}")
    string(APPEND arrays "constexpr char kFile${count}[] =\n    \"${bytes}\";\n")
    string(APPEND rows "    {\"/page/${name}\", \"${type}\", \"\\\"${tag}\\\"\", kFile${count}, ${size}},\n")
    math(EXPR count "${count} + 1")
endforeach()
file(WRITE ${OUT} "#include \"page/files.h\"

namespace oam::console {
namespace {

${arrays}
}  // namespace

const PageFile kPageFiles[] = {
${rows}};
const std::size_t kPageFileCount = ${count};

}  // namespace oam::console
")
