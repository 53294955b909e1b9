// Update files for tests: the texts of control files, packages and containers around them.
//
// Requires zlib, but not the library.
#pragma once

#include "tests/support/temporary_folder.h"
#include "tests/unit/genicam/zip_builder.h"

#include <string>
#include <utility>
#include <vector>

namespace koro::test
{

inline std::string Control(const std::string& rules)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<GufRuleSet SchemaMajorVersion=\"1\" SchemaMinorVersion=\"0\" "
           "xmlns=\"http://www.genicam.org/GenFwUpdate/Version_1_0\">" +
           rules + "</GufRuleSet>";
}

inline std::string Procedure(const std::string& steps, const std::string& id = "P")
{
    return "<Procedure Id=\"" + id + "\">" + steps + "</Procedure>";
}

// A step of this kind with a description, followed by the children.
inline std::string Step(const std::string& kind, const std::string& children = "")
{
    return "<" + kind + "><Description>" + kind + "</Description>" + children + "</" + kind + ">";
}

inline std::string Entry(const std::string& key, const std::string& text, const std::string& language = "")
{
    const std::string attribute = language.empty() ? "" : " Lang=\"" + language + "\"";
    return "<Entry Key=\"" + key + "\"" + attribute + ">" + text + "</Entry>";
}

const std::string neededEntries = Entry("Version", "2.0") + Entry("Description", "Better pictures");

inline std::string Update(
    const std::string& entries = neededEntries,
    const std::string& conditions = "<Condition Feature=\"DeviceVendorName\">Acme</Condition>",
    const std::string& procedure = "P")
{
    return "<Update ProcedureId=\"" + procedure + "\"><Info>" + entries + "</Info>" + conditions + "</Update>";
}

using Files = std::vector<std::pair<std::string, std::string>>;

inline std::string Package(const std::string& control, const Files& files = {})
{
    ZipBuilder package;
    package.AddDeflated("Control.xml", control);
    for (const auto& [name, content] : files)
        package.AddDeflated(name, content);
    return package.Bytes();
}

inline std::string Container(const std::string& package)
{
    ZipBuilder container;
    container.AddStored("package.zip", package);
    return container.Bytes();
}

// The update file "update.guf" in its own folder.
class UpdateFileOnDisk
{
public:
    explicit UpdateFileOnDisk(const std::string& bytes) : path(folder.MakeFile("update.guf", bytes)) {}

    void Replace(const std::string& bytes) const { folder.MakeFile("update.guf", bytes); }

    TemporaryFolder folder;
    const std::string path;
};

inline UpdateFileOnDisk WithControl(const std::string& control, const Files& files = {})
{
    return UpdateFileOnDisk(Container(Package(control, files)));
}

} // namespace koro::test
