# Writes a source file that holds FILE as the Description named NAME. Run by: cmake -DFILE=... -DNAME=... -DOUTPUT=... -P
get_filename_component(fileName ${FILE} NAME)
file(READ ${FILE} hex HEX)
file(SHA1 ${FILE} hash)
string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${hex}")
string(REGEX REPLACE "(..)" "0x\\1," hashBytes "${hash}")
file(WRITE ${OUTPUT} "#include \"producers/kit/description.h\"\n
namespace koro::simulator
{
namespace
{
constexpr char text[] = {${bytes}};
}
const Description ${NAME}{\"${fileName}\", {text, sizeof text}, {${hashBytes}}};
} // namespace koro::simulator\n")
