#include "tests/support/temporary_folder.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace koro::test
{

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder()
{
    std::string pattern = (fs::canonical(fs::temp_directory_path()) / "koro-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
    {
        throw std::system_error(errno, std::generic_category(), "Making " + pattern + " failed");
    }
    path = pattern;
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

std::string TemporaryFolder::MakeFile(const std::string& name, const std::string& content) const
{
    std::ofstream stream(path / name, std::ios::binary);
    stream << content;
    if (!stream.flush())
    {
        throw std::runtime_error("Writing " + File(name) + " failed");
    }
    return File(name);
}

std::string TemporaryFolder::MakeFolder(const std::string& name) const
{
    fs::create_directories(path / name);
    return File(name);
}

std::string TemporaryFolder::MakeCopy(const fs::path& source, const std::string& name) const
{
    fs::copy_file(source, path / name);
    return File(name);
}

std::string TemporaryFolder::MakeLink(const fs::path& target, const std::string& name) const
{
    fs::create_symlink(target, path / name);
    return File(name);
}

} // namespace koro::test
