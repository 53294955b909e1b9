// TemporaryFolder: a folder for one test, which is removed with its contents when the object is destroyed.
//
// Owned by the test. Used by one thread.
#pragma once

#include <filesystem>
#include <string>

namespace koro::test
{

class TemporaryFolder
{
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return path; }

    // Returns the path of `name` inside, as a text; creates nothing.
    std::string File(const std::string& name) const { return (path / name).string(); }

    // Each function creates the named entry and returns its path.
    std::string MakeFile(const std::string& name, const std::string& content) const;
    std::string MakeFolder(const std::string& name) const;
    std::string MakeCopy(const std::filesystem::path& source, const std::string& name) const;
    std::string MakeLink(const std::filesystem::path& target, const std::string& name) const;

private:
    std::filesystem::path path;
};

} // namespace koro::test
