// One name for the file system library: ghc::filesystem where it is installed, otherwise the standard library.
#pragma once

#ifdef KORO_HAVE_GHC_FILESYSTEM
#include <ghc/filesystem.hpp>
namespace koro::internal
{
namespace fs = ghc::filesystem;
}
#else
#include <filesystem>
namespace koro::internal
{
namespace fs = std::filesystem;
}
#endif
