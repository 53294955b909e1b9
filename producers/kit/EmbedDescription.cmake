# Writes a source file that holds FILE as the Description named NAME in NAMESPACE.
# Run by: cmake -DFILE=... -DNAME=... -DNAMESPACE=... -DOUTPUT=... -P
get_filename_component(fileName ${FILE} NAME)
file(READ ${FILE} hex HEX)
file(SHA1 ${FILE} hash)
string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${hex}")
string(REGEX REPLACE "(..)" "0x\\1," hashBytes "${hash}")
file(WRITE ${OUTPUT} "#include \"producers/kit/description.h\"\n
namespace ${NAMESPACE}
{
namespace
{
constexpr char text[] = {${bytes}};
}
extern const koro::kit::Description ${NAME};
const koro::kit::Description ${NAME}{\"${fileName}\", {text, sizeof text}, {${hashBytes}}};
} // namespace ${NAMESPACE}\n")
