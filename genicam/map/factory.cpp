#include "map/node_map.h"
#include "xml/parser.h"

#include <Base/GCException.h>
#include <GenApi/NodeCallback.h>
#include <GenApi/NodeMapFactory.h>
#include <GenApi/NodeMapRef.h>
#include <GenApi/Pointer.h>
#include <fstream>
#include <iterator>
#include <string>

namespace GENAPI_NAMESPACE
{

using GENICAM_NAMESPACE::gcstring;

// The source of a description until it is parsed, then its records.
class CNodeMapFactory::Data
{
public:
    EContentType_t type = ContentType_Xml;
    gcstring fileName;       // or
    std::string_view memory; // the caller's, or
    std::string text;        // a copy
    bool given = false;
    std::shared_ptr<const runtime::Description> description;

    void Load()
    {
        if (description) return;
        if (!given) throw LOGICAL_ERROR_EXCEPTION("The factory has no camera description");
        if (!fileName.empty()) ReadFile();
        if (type == ContentType_ZippedXml) throw RUNTIME_EXCEPTION("Zipped camera descriptions are not read yet");
        description = runtime::ParseDescription(memory.data() ? memory : std::string_view(text));
    }
    void Release()
    {
        text = std::string();
        memory = std::string_view();
    }

private:
    void ReadFile()
    {
        std::ifstream file(fileName.c_str(), std::ios::binary);
        if (!file) throw RUNTIME_EXCEPTION("Failed to open the camera description file '%s'", fileName.c_str());
        text.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
};

CNodeMapFactory::CNodeMapFactory() : data(std::make_shared<Data>()) {}

CNodeMapFactory::CNodeMapFactory(EContentType_t FileType, const gcstring& FileName, ECacheUsage_t, bool)
    : CNodeMapFactory()
{
    if (FileName.empty()) throw INVALID_ARGUMENT_EXCEPTION("The file name must not be empty");
    data->type = FileType;
    data->fileName = FileName;
    data->given = true;
}

CNodeMapFactory::CNodeMapFactory(EContentType_t ContentType, const void* pData, size_t DataSize, ECacheUsage_t, bool)
    : CNodeMapFactory()
{
    if (!pData) throw INVALID_ARGUMENT_EXCEPTION("The camera description must not be NULL");
    if (DataSize == 0) throw INVALID_ARGUMENT_EXCEPTION("The camera description must not be empty");
    data->type = ContentType;
    data->memory = std::string_view(static_cast<const char*>(pData), DataSize);
    data->given = true;
}

CNodeMapFactory::CNodeMapFactory(const gcstring& XmlData, ECacheUsage_t, bool) : CNodeMapFactory()
{
    if (XmlData.empty()) throw INVALID_ARGUMENT_EXCEPTION("The camera description must not be empty");
    data->text.assign(XmlData.c_str(), XmlData.size());
    data->given = true;
}

CNodeMapFactory::CNodeMapFactory(const CNodeMapFactory& other) = default;
CNodeMapFactory& CNodeMapFactory::operator=(const CNodeMapFactory& other) = default;
CNodeMapFactory::~CNodeMapFactory() = default;

bool CNodeMapFactory::IsEmpty() const
{
    return !data->given;
}

bool CNodeMapFactory::IsLoaded() const
{
    return data->description != nullptr;
}

bool CNodeMapFactory::IsPreprocessed() const
{
    return data->description != nullptr;
}

bool CNodeMapFactory::IsCameraDescriptionFileDataReleased() const
{
    return data->given && data->text.empty() && !data->memory.data();
}

void CNodeMapFactory::Preprocess()
{
    data->Load();
}

void CNodeMapFactory::ReleaseCameraDescriptionFileData()
{
    data->Release();
}

void CNodeMapFactory::GetSupportedSchemaVersions(GENICAM_NAMESPACE::gcstring_vector& versions) const
{
    versions.push_back("1.0");
    versions.push_back("1.1");
}

INodeMap* CNodeMapFactory::CreateNodeMap(const gcstring& DeviceName, bool DoReleaseCameraDescriptionFileData)
{
    data->Load();
    if (DoReleaseCameraDescriptionFileData) data->Release();
    return new runtime::NodeMap(data->description, DeviceName, nullptr);
}

INodeMap* CNodeMapFactory::CreateNodeMap(
    CLock& UserProvidedLock, const gcstring& DeviceName, bool DoReleaseCameraDescriptionFileData)
{
    data->Load();
    if (DoReleaseCameraDescriptionFileData) data->Release();
    return new runtime::NodeMap(data->description, DeviceName, &UserProvidedLock);
}

IDestroy* CastToIDestroy(INodeMap* pNodeMap)
{
    return dynamic_cast<IDestroy*>(pNodeMap);
}

void Deregister(CallbackHandleType handle)
{
    CNodeCallback* const callback = reinterpret_cast<CNodeCallback*>(handle);
    callback->GetNode()->DeregisterCallback(handle);
}

gcstring GetInterfaceName(IBase* object)
{
    const INode* const node = dynamic_cast<INode*>(object);
    if (!node) return "IBase";
    const char* const names[] = {"IValue",  "IBase",     "IInteger",  "IBoolean",     "ICommand",   "IFloat",
                                 "IString", "IRegister", "ICategory", "IEnumeration", "IEnumEntry", "IPort"};
    return names[node->GetPrincipalInterfaceType()];
}

} // namespace GENAPI_NAMESPACE
