// CNodeMapRefT: a counted reference to a node map, with operations that load one. The last reference destroys the map.
//
// A reference is not thread-safe; its map is.
#pragma once

#include <Base/GCException.h>
#include <GenApi/IDestroy.h>
#include <GenApi/INodeMap.h>
#include <GenApi/NodeMapFactory.h>
#include <utility>

namespace GENAPI_NAMESPACE
{

// The interface that destroys the map, or null.
GENAPI_DECL IDestroy* CastToIDestroy(INodeMap* pNodeMap);

// The empty parameter class: a reference whose nodes are accessible only by name.
class CGeneric_XMLLoaderParams
{
public:
    virtual ~CGeneric_XMLLoaderParams() {}

protected:
    virtual void _Initialize(INodeMap*) {}
};

template <class TCameraParams>
class CNodeMapRefT : public TCameraParams
{
public:
    CNodeMapRefT(const GENICAM_NAMESPACE::gcstring& DeviceName = "Device")
        : _Ptr(nullptr), deviceName(DeviceName), references(nullptr)
    {}
    // Takes ownership of the map.
    CNodeMapRefT(INodeMap* pNodeMap, const GENICAM_NAMESPACE::gcstring& DeviceName = "Device")
        : _Ptr(nullptr), deviceName(DeviceName), references(nullptr)
    {
        Attach(pNodeMap);
    }
    CNodeMapRefT(const CNodeMapRefT& other) : TCameraParams(), _Ptr(nullptr), references(nullptr) { Share(other); }
    virtual ~CNodeMapRefT() { Release(); }

    CNodeMapRefT& operator=(const CNodeMapRefT& other)
    {
        if (this != &other)
        {
            Release();
            Share(other);
        }
        return *this;
    }
    CNodeMapRefT& operator=(INodeMap* pNodeMap)
    {
        if (pNodeMap && pNodeMap == _Ptr) return *this;
        Release();
        if (pNodeMap) deviceName = pNodeMap->GetDeviceName();
        Attach(pNodeMap);
        return *this;
    }
    void _Destroy()
    {
        Release();
        deviceName = "Device";
    }

    void _LoadXMLFromFile(const GENICAM_NAMESPACE::gcstring& FileName)
    {
        Load(CNodeMapFactory(ContentType_Xml, FileName), deviceName);
    }
    void _LoadXMLFromZIPFile(const GENICAM_NAMESPACE::gcstring& ZipFileName)
    {
        Load(CNodeMapFactory(ContentType_ZippedXml, ZipFileName), "Device");
    }
    void _LoadXMLFromZIPData(const void* zipData, size_t zipSize)
    {
        Load(CNodeMapFactory(ContentType_ZippedXml, zipData, zipSize), "Device");
    }
    void _LoadXMLFromString(const GENICAM_NAMESPACE::gcstring& XMLData) { Load(CNodeMapFactory(XMLData), deviceName); }
    void _LoadXMLFromFileInject(
        const GENICAM_NAMESPACE::gcstring& TargetFileName, const GENICAM_NAMESPACE::gcstring& InjectFileName)
    {
        Load(CNodeMapFactory(ContentType_Xml, TargetFileName), CNodeMapFactory(ContentType_Xml, InjectFileName));
    }
    void _LoadXMLFromStringInject(
        const GENICAM_NAMESPACE::gcstring& TargetXMLData, const GENICAM_NAMESPACE::gcstring& InjectXMLData)
    {
        Load(CNodeMapFactory(TargetXMLData), CNodeMapFactory(InjectXMLData));
    }

    virtual void _GetSupportedSchemaVersions(GENICAM_NAMESPACE::gcstring_vector& SchemaVersions) const
    {
        static_cast<void>(Map());
        CNodeMapFactory().GetSupportedSchemaVersions(SchemaVersions);
    }
    virtual GENICAM_NAMESPACE::gcstring _GetDeviceName() const { return Map()->GetDeviceName(); }
    virtual void _Poll(int64_t ElapsedTime) { Map()->Poll(ElapsedTime); }
    static bool _ClearXMLCache() { return CNodeMapFactory::ClearCache(); }
    virtual void _GetNodes(NodeList_t& Nodes) const { Map()->GetNodes(Nodes); }
    virtual INode* _GetNode(const GENICAM_NAMESPACE::gcstring& Name) const { return Map()->GetNode(Name); }
    virtual void _InvalidateNodes() const { Map()->InvalidateNodes(); }
    virtual bool _Connect(IPort* pPort, const GENICAM_NAMESPACE::gcstring& PortName) const
    {
        return Map()->Connect(pPort, PortName);
    }
    virtual bool _Connect(IPort* pPort) const { return Map()->Connect(pPort); }
    virtual bool _Connect(IPortStacked* pPort, const GENICAM_NAMESPACE::gcstring& PortName)
    {
        return Map()->Connect(pPort, PortName);
    }
    virtual bool _Connect(IPortStacked* pPort) { return Map()->Connect(pPort); }
    virtual bool _ParseSwissKnifes(GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr) const
    {
        return Map()->ParseSwissKnifes(pErrorList);
    }
    virtual void _SetSuppressCallbackMode(ECallbackSuppressMode Mode) { Map()->SetSuppressCallbackMode(Mode); }
    virtual CNodeWriteConcatenator* _NewNodeWriteConcatenator() const { return Map()->NewNodeWriteConcatenator(); }
    virtual bool _ConcatenatedWrite(
        CNodeWriteConcatenator* pConcatenator, bool featureStreaming = true,
        GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr)
    {
        return Map()->ConcatenatedWrite(pConcatenator, featureStreaming, pErrorList);
    }

    INodeMap* _Ptr;

private:
    INodeMap* Map() const
    {
        if (!_Ptr) throw ACCESS_EXCEPTION("Feature not present (reference not valid)");
        return _Ptr;
    }
    void Load(CNodeMapFactory factory, const GENICAM_NAMESPACE::gcstring& name)
    {
        if (_Ptr) throw RUNTIME_EXCEPTION("Node map already created");
        Attach(factory.CreateNodeMap(name));
    }
    void Load(CNodeMapFactory target, CNodeMapFactory injected)
    {
        if (_Ptr) throw RUNTIME_EXCEPTION("Node map already created");
        target.AddInjectionData(injected);
        Attach(target.CreateNodeMap(deviceName));
    }
    void Attach(INodeMap* map)
    {
        if (!map) return;
        references = new long(1);
        _Ptr = map;
        Initialize();
    }
    void Share(const CNodeMapRefT& other)
    {
        deviceName = other.deviceName;
        if (!other._Ptr) return;
        references = other.references;
        __atomic_add_fetch(references, 1, __ATOMIC_ACQ_REL);
        _Ptr = other._Ptr;
        Initialize();
    }
    // If the parameters do not fit the map, no reference remains.
    void Initialize()
    {
        try
        {
            TCameraParams::_Initialize(_Ptr);
        }
        catch (...)
        {
            Release();
            throw;
        }
    }
    void Release()
    {
        if (!_Ptr) return;
        INodeMap* const map = _Ptr;
        _Ptr = nullptr;
        if (__atomic_sub_fetch(references, 1, __ATOMIC_ACQ_REL) > 0) return;
        delete references;
        if (IDestroy* const destroyable = CastToIDestroy(map)) destroyable->Destroy();
    }

    GENICAM_NAMESPACE::gcstring deviceName;
    long* references; // shared by the copies; null without a map
};

class CNodeMapRef : public CNodeMapRefT<CGeneric_XMLLoaderParams>
{
public:
    CNodeMapRef(const GENICAM_NAMESPACE::gcstring& DeviceName = "Device")
        : CNodeMapRefT<CGeneric_XMLLoaderParams>(DeviceName)
    {}
    CNodeMapRef(INodeMap* pNodeMap, const GENICAM_NAMESPACE::gcstring& DeviceName = "Device")
        : CNodeMapRefT<CGeneric_XMLLoaderParams>(pNodeMap, DeviceName)
    {}
    CNodeMapRef(const CNodeMapRef&) = default;
    CNodeMapRef& operator=(const CNodeMapRef&) = default;
    CNodeMapRef& operator=(INodeMap* pNodeMap)
    {
        CNodeMapRefT<CGeneric_XMLLoaderParams>::operator=(pNodeMap);
        return *this;
    }
};

} // namespace GENAPI_NAMESPACE
