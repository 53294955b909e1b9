#include "tools/koro/update_package.h"

#include "tools/koro/local_file.h"
#include "tools/koro/report.h"
#include "tools/koro/tool_error.h"

#include <expat.h>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <system_error>
#include <zip.h>

namespace koro::tool
{

namespace
{

constexpr std::uintmax_t maxFileSize = std::uintmax_t{256} << 20;
constexpr const char* controlName = "Control.xml";
// What expands more is taken for an attack by those who read update files.
constexpr zip_uint64_t mostExpansion = 100;
constexpr zip_uint16_t firstDay = 1 << 5 | 1; // 1 January 1980, which archives count from

[[noreturn]] void Fail(const char* what, const std::string& why)
{
    throw ToolError(std::string("Cannot ") + what + ": " + why + ".");
}

// An archive that grows in memory.
class Archive
{
public:
    Archive()
    {
        zip_error_t error;
        zip_error_init(&error);
        source = zip_source_buffer_create(nullptr, 0, 0, &error);
        if (source) archive = zip_open_from_source(source, ZIP_TRUNCATE, &error);
        const std::string why = zip_error_strerror(&error);
        zip_error_fini(&error);
        if (archive)
        {
            zip_source_keep(source);
            return;
        }
        if (source) zip_source_free(source);
        Fail("make an archive", why);
    }
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;
    ~Archive()
    {
        if (archive) zip_discard(archive);
        zip_source_free(source);
    }

    // Takes over the data source, whatever becomes of it.
    void Add(const std::string& name, zip_source_t* data, int method)
    {
        if (!data) Fail("pack", zip_strerror(archive));
        const zip_int64_t index = zip_file_add(archive, name.c_str(), data, ZIP_FL_ENC_UTF_8);
        if (index < 0)
        {
            zip_source_free(data);
            Fail("pack", name + ": " + zip_strerror(archive));
        }
        if (zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), method, 0) != 0)
            Fail("pack", name + ": " + zip_strerror(archive));
        // Nothing of the moment, the machine, its time zone or the permissions: equal contents give equal files.
        zip_file_set_dostime(archive, static_cast<zip_uint64_t>(index), 0, firstDay, 0);
        zip_file_set_external_attributes(
            archive, static_cast<zip_uint64_t>(index), 0, ZIP_OPSYS_UNIX, zip_uint32_t{0100644} << 16);
    }
    void AddFile(const std::string& name, const std::filesystem::path& path, int method)
    {
        std::error_code failure;
        const std::uintmax_t size = std::filesystem::file_size(path, failure);
        if (failure) Fail("read", path.string() + ": " + failure.message());
        if (size > maxFileSize) Fail("pack", path.string() + " has " + std::to_string(size) + " bytes");
        Add(name, zip_source_file(archive, path.c_str(), 0, -1), method);
    }
    void AddBytes(const std::string& name, const std::vector<uint8_t>& bytes)
    {
        Add(name, zip_source_buffer(archive, bytes.data(), bytes.size(), 0), ZIP_CM_STORE);
    }

    std::vector<uint8_t> Finish()
    {
        if (zip_close(archive) != 0) Fail("pack", zip_strerror(archive));
        archive = nullptr;
        zip_stat_t state;
        zip_stat_init(&state);
        std::vector<uint8_t> bytes;
        const bool opened = zip_source_stat(source, &state) == 0 && zip_source_open(source) == 0;
        if (opened) bytes.resize(state.size);
        const bool read =
            opened && zip_source_read(source, bytes.data(), bytes.size()) == static_cast<zip_int64_t>(bytes.size());
        if (opened) zip_source_close(source);
        if (!read) Fail("pack", "the archive cannot be read back");
        return bytes;
    }

private:
    zip_source_t* source = nullptr;
    zip_t* archive = nullptr;
};

using Contents = std::map<std::string, std::filesystem::path>; // by the name in the package

std::vector<uint8_t> Pack(const Contents& contents, const std::set<std::string>& stored)
{
    Archive package;
    for (const auto& [name, path] : contents)
        package.AddFile(name, path, stored.count(name) > 0 ? ZIP_CM_STORE : ZIP_CM_DEFLATE);
    return package.Finish();
}

// The entries that deflating has made too small.
std::set<std::string> ExpandingTooMuch(const std::vector<uint8_t>& package)
{
    zip_error_t ignored;
    zip_error_init(&ignored);
    zip_source_t* const source = zip_source_buffer_create(package.data(), package.size(), 0, &ignored);
    zip_t* const opened = source ? zip_open_from_source(source, ZIP_RDONLY, &ignored) : nullptr;
    zip_error_fini(&ignored);
    if (source && !opened) zip_source_free(source);
    const std::unique_ptr<zip_t, void (*)(zip_t*)> archive(opened, zip_discard);
    if (!archive) Fail("pack", "the package cannot be read back");
    std::set<std::string> names;
    for (zip_uint64_t index = 0; index < static_cast<zip_uint64_t>(zip_get_num_entries(archive.get(), 0)); ++index)
    {
        zip_stat_t state;
        if (zip_stat_index(archive.get(), index, 0, &state) != 0) Fail("pack", zip_strerror(archive.get()));
        if (state.size / mostExpansion > state.comp_size) names.insert(state.name);
    }
    return names;
}

// The names of the files that the procedures of a control file upload.
class UploadNames
{
public:
    explicit UploadNames(const std::string& control)
    {
        constexpr XML_Char separator = '|';
        const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
            XML_ParserCreateNS(nullptr, separator), XML_ParserFree);
        if (!parser) Fail("pack", "there is no memory for the names in the control file");
        XML_SetUserData(parser.get(), this);
        XML_SetElementHandler(
            parser.get(), [](void* self, const XML_Char*, const XML_Char**) { Of(self).text.clear(); }, OnEnd);
        XML_SetCharacterDataHandler(parser.get(), [](void* self, const XML_Char* part, int size) {
            Of(self).text.append(part, static_cast<size_t>(size));
        });
        XML_Parse(parser.get(), control.data(), static_cast<int>(control.size()), XML_TRUE);
    }

    const std::set<std::string>& All() const { return names; }

private:
    static UploadNames& Of(void* self) { return *static_cast<UploadNames*>(self); }
    static void XMLCALL OnEnd(void* self, const XML_Char* element)
    {
        const std::string name = element;
        if (name.substr(name.rfind('|') + 1) == "FileName") Of(self).names.insert(Of(self).text);
    }

    std::string text;
    std::set<std::string> names;
};

} // namespace

void RequireUploads(const std::filesystem::path& control, const std::vector<std::filesystem::path>& files)
{
    std::set<std::string> packed = {controlName};
    for (const std::filesystem::path& file : files)
        packed.insert(file.filename().string());
    const UploadNames uploads(ReadLocalFile(control));
    for (const std::string& name : uploads.All())
    {
        if (packed.count(name) == 0)
            throw ToolError(
                "Cannot pack: a procedure uploads the file \"" + PrintableStart(name) + "\", which is not given.",
                "Nothing was written: name all files that the procedures upload after the control file.");
    }
}

std::vector<uint8_t> PackUpdateFile(
    const std::filesystem::path& control, const std::vector<std::filesystem::path>& files)
{
    Contents contents = {{controlName, control}};
    for (const std::filesystem::path& file : files)
    {
        const std::string name = file.filename().string();
        if (!contents.emplace(name, file).second) Fail("pack", "two files are called " + name);
    }
    std::vector<uint8_t> package = Pack(contents, {});
    if (const auto names = ExpandingTooMuch(package); !names.empty()) package = Pack(contents, names);
    Archive container;
    container.AddBytes("package.zip", package);
    return container.Finish();
}

} // namespace koro::tool
