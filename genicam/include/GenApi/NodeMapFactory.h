// CNodeMapFactory: creates node maps from one camera description.
//
// A copyable reference to shared data. The constructors load nothing: CreateNodeMap reports errors of a description.
// Not thread-safe.
#pragma once

#include <Base/GCString.h>
#include <GenApi/INodeMap.h>
#include <memory>

namespace GENAPI_NAMESPACE
{

typedef enum _EContentType_t
{
    ContentType_Xml,
    ContentType_ZippedXml
} EContentType_t;

typedef enum _ECacheUsage_t
{
    CacheUsage_Automatic,
    CacheUsage_ForceWrite,
    CacheUsage_ForceRead,
    CacheUsage_Ignore
} ECacheUsage_t;

class GENAPI_DECL CNodeMapFactory
{
public:
    CNodeMapFactory();
    // The file is read by the first CreateNodeMap.
    CNodeMapFactory(
        EContentType_t FileType, const GENICAM_NAMESPACE::gcstring& FileName,
        ECacheUsage_t CacheUsage = CacheUsage_Automatic, bool SuppressStringsOnLoad = false);
    // The bytes are not copied: they must stay valid until the first CreateNodeMap.
    CNodeMapFactory(
        EContentType_t ContentType, const void* pData, size_t DataSize, ECacheUsage_t CacheUsage = CacheUsage_Automatic,
        bool SuppressStringsOnLoad = false);
    // The text is copied.
    CNodeMapFactory(
        const GENICAM_NAMESPACE::gcstring& XmlData, ECacheUsage_t CacheUsage = CacheUsage_Automatic,
        bool SuppressStringsOnLoad = false);
    CNodeMapFactory(const CNodeMapFactory& other);
    CNodeMapFactory& operator=(const CNodeMapFactory& other);
    virtual ~CNodeMapFactory();

    bool IsEmpty() const;
    bool IsLoaded() const;
    bool IsPreprocessed() const;
    bool IsCameraDescriptionFileDataReleased() const;
    // Adds the description of the other factory to this one when it is loaded; its bytes must stay valid until then.
    void AddInjectionData(CNodeMapFactory& injectionDataFactory);
    void LoadAndInject();
    void Preprocess();
    void ReleaseCameraDescriptionFileData();
    void GetSupportedSchemaVersions(GENICAM_NAMESPACE::gcstring_vector& versions) const;

    // Returns a new map for each call; the caller ends it by IDestroy.
    INodeMap* CreateNodeMap(
        const GENICAM_NAMESPACE::gcstring& DeviceName = "Device", bool DoReleaseCameraDescriptionFileData = true);
    // The lock must outlive the map.
    INodeMap* CreateNodeMap(
        CLock& UserProvidedLock, const GENICAM_NAMESPACE::gcstring& DeviceName = "Device",
        bool DoReleaseCameraDescriptionFileData = true);

    // Returns a map without nodes; the caller ends it by IDestroy.
    static INodeMap* CreateEmptyNodeMap();
    // This runtime stores no descriptions between factories: there is nothing to clear, and the call succeeds.
    static bool ClearCache();

    struct NodeStatistics_t
    {
        uint32_t NumNodes;
        uint32_t NumProperties; // of all nodes, including links and texts
        uint32_t NumLinks;
        uint32_t NumStrings;
    };
    // Loads the description.
    void GetNodeStatistics(NodeStatistics_t& Statistics);

private:
    class Data;
    std::shared_ptr<Data> data;
};

} // namespace GENAPI_NAMESPACE
