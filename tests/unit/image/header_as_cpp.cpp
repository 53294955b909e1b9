// The header compiles by itself as C++ that is older than the library's own.
#include <koro/image.h>
