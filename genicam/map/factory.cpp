#include "map/description_source.h"
#include "map/node_map.h"
#include "xml/merge.h"
#include "xml/parser.h"

#include <Base/GCException.h>
#include <GenApi/NodeCallback.h>
#include <GenApi/NodeMapFactory.h>
#include <GenApi/NodeMapRef.h>
#include <GenApi/Pointer.h>
#include <GenApi/Synch.h>
#include <list>
#include <string>
#include <vector>

namespace GENAPI_NAMESPACE
{

using GENICAM_NAMESPACE::gcstring;

// The source of a description until it is parsed, then its records; also the descriptions that are injected into it.
// Shared by the copies of a factory, which may be used on different threads.
class CNodeMapFactory::Data
{
public:
    runtime::DescriptionSource source;                       // guarded by lock
    std::shared_ptr<const runtime::Description> description; // guarded by lock
    mutable CLock lock;

    std::shared_ptr<const runtime::Description> Load(bool release)
    {
        const AutoLock held(lock);
        if (!description) Read();
        if (release) source.Release();
        return description;
    }
    bool IsLoaded() const
    {
        const AutoLock held(lock);
        return description != nullptr;
    }

    void Inject(const std::shared_ptr<Data>& addition)
    {
        if (addition.get() == this)
            throw LOGICAL_ERROR_EXCEPTION("A camera description cannot be injected into itself");
        addition->CheckInjectable(); // before taking the own lock: never two locks at once
        const AutoLock held(lock);
        if (description)
            throw LOGICAL_ERROR_EXCEPTION("The camera description is loaded: nothing can be injected any more");
        if (injected.size() == UINT8_MAX) throw LOGICAL_ERROR_EXCEPTION("At most 255 descriptions can be injected");
        injected.push_back(addition);
    }

private:
    // An injected description with unresolved links: it may name nodes that it does not contain.
    struct Addition
    {
        std::string text; // empty when it has been loaded before
        std::shared_ptr<const runtime::Description> description;
    };

    void Read()
    {
        std::list<Addition> additions;
        for (const std::shared_ptr<Data>& data : injected)
            additions.push_back(data->AsAddition());

        runtime::SourceTexts texts = {source.Text()};
        std::shared_ptr<runtime::Description> read = runtime::ReadDescription(texts[0]);
        for (const Addition& addition : additions)
        {
            texts.push_back(addition.text);
            const std::shared_ptr<const runtime::Description> added =
                addition.description ? addition.description : runtime::ReadDescription(addition.text);
            read = runtime::Merge(*read, *added, static_cast<uint8_t>(texts.size() - 1), texts);
        }
        runtime::ResolveLinks(*read, texts);
        description = read;
        injected.clear();
    }
    Addition AsAddition()
    {
        CheckInjectable();
        const AutoLock held(lock);
        return description ? Addition{"", description} : Addition{std::string(source.Text()), nullptr};
    }
    void CheckInjectable() const
    {
        const AutoLock held(lock);
        if (source.IsEmpty()) throw LOGICAL_ERROR_EXCEPTION("The injected factory has no camera description");
        if (injected.empty()) return;
        throw LOGICAL_ERROR_EXCEPTION("A factory with injections of its own must be loaded before it is injected");
    }

    std::vector<std::shared_ptr<Data>> injected; // guarded by lock; empty when loaded
};

CNodeMapFactory::CNodeMapFactory() : data(std::make_shared<Data>()) {}

CNodeMapFactory::CNodeMapFactory(EContentType_t FileType, const gcstring& FileName, ECacheUsage_t, bool)
    : CNodeMapFactory()
{
    if (FileName.empty()) throw INVALID_ARGUMENT_EXCEPTION("The file name must not be empty");
    data->source = runtime::DescriptionSource::OfFile(FileType, std::string(FileName.c_str(), FileName.size()));
}

CNodeMapFactory::CNodeMapFactory(EContentType_t ContentType, const void* pData, size_t DataSize, ECacheUsage_t, bool)
    : CNodeMapFactory()
{
    if (!pData) throw INVALID_ARGUMENT_EXCEPTION("The camera description must not be NULL");
    if (DataSize == 0) throw INVALID_ARGUMENT_EXCEPTION("The camera description must not be empty");
    const std::string_view bytes(static_cast<const char*>(pData), DataSize);
    data->source = runtime::DescriptionSource::OfMemory(ContentType, bytes);
}

CNodeMapFactory::CNodeMapFactory(const gcstring& XmlData, ECacheUsage_t, bool) : CNodeMapFactory()
{
    if (XmlData.empty()) throw INVALID_ARGUMENT_EXCEPTION("The camera description must not be empty");
    data->source = runtime::DescriptionSource::OfText({XmlData.c_str(), XmlData.size()});
}

CNodeMapFactory::CNodeMapFactory(const CNodeMapFactory& other) = default;
CNodeMapFactory& CNodeMapFactory::operator=(const CNodeMapFactory& other) = default;
CNodeMapFactory::~CNodeMapFactory() = default;

bool CNodeMapFactory::IsEmpty() const
{
    const AutoLock held(data->lock);
    return data->source.IsEmpty();
}

bool CNodeMapFactory::IsLoaded() const
{
    return data->IsLoaded();
}

bool CNodeMapFactory::IsPreprocessed() const
{
    return data->IsLoaded();
}

bool CNodeMapFactory::IsCameraDescriptionFileDataReleased() const
{
    const AutoLock held(data->lock);
    return data->source.IsReleased();
}

void CNodeMapFactory::Preprocess()
{
    data->Load(false);
}

void CNodeMapFactory::AddInjectionData(CNodeMapFactory& injectionDataFactory)
{
    data->Inject(injectionDataFactory.data);
}

void CNodeMapFactory::LoadAndInject()
{
    data->Load(false);
}

void CNodeMapFactory::ReleaseCameraDescriptionFileData()
{
    const AutoLock held(data->lock);
    data->source.Release();
}

void CNodeMapFactory::GetSupportedSchemaVersions(GENICAM_NAMESPACE::gcstring_vector& versions) const
{
    versions.push_back("1.0");
    versions.push_back("1.1");
}

INodeMap* CNodeMapFactory::CreateNodeMap(const gcstring& DeviceName, bool DoReleaseCameraDescriptionFileData)
{
    return new runtime::NodeMap(data->Load(DoReleaseCameraDescriptionFileData), DeviceName, nullptr);
}

INodeMap* CNodeMapFactory::CreateNodeMap(
    CLock& UserProvidedLock, const gcstring& DeviceName, bool DoReleaseCameraDescriptionFileData)
{
    return new runtime::NodeMap(data->Load(DoReleaseCameraDescriptionFileData), DeviceName, &UserProvidedLock);
}

INodeMap* CNodeMapFactory::CreateEmptyNodeMap()
{
    const char* const nothing =
        "<RegisterDescription ModelName=\"\" VendorName=\"\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" "
        "SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"0\" MinorVersion=\"0\" "
        "SubMinorVersion=\"0\" "
        "ProductGuid=\"\" VersionGuid=\"\" xmlns=\"http://www.genicam.org/GenApi/Version_1_1\"/>";
    return CNodeMapFactory(nothing).CreateNodeMap();
}

bool CNodeMapFactory::ClearCache()
{
    return true;
}

void CNodeMapFactory::GetNodeStatistics(NodeStatistics_t& Statistics)
{
    const std::shared_ptr<const runtime::Description> description = data->Load(false);
    Statistics = {};
    for (const runtime::NodeRecord& node : description->nodes)
    {
        ++Statistics.NumNodes;
        for (uint32_t i = 0; i < node.propertyCount; ++i)
        {
            const runtime::Property property = description->properties[node.firstProperty + i].property;
            const runtime::Form form = runtime::FormOf(node.element, property);
            ++Statistics.NumProperties;
            Statistics.NumLinks += form == runtime::Form::Link;
            Statistics.NumStrings += form == runtime::Form::Text || form == runtime::Form::FilledText;
        }
    }
}

IDestroy* CastToIDestroy(INodeMap* pNodeMap)
{
    return dynamic_cast<IDestroy*>(pNodeMap);
}

void Deregister(CallbackHandleType handle)
{
    CNodeCallback* const callback = reinterpret_cast<CNodeCallback*>(handle);
    INode* const node = callback ? callback->GetNode() : nullptr;
    if (!node) throw INVALID_ARGUMENT_EXCEPTION("The handle is of no callback at a node");
    node->DeregisterCallback(handle);
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
