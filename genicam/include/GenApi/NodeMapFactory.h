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
    // The bytes are not copied: they must live until the first CreateNodeMap.
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
    // Adds the other's description to this one when it is loaded; its bytes must live until then.
    void AddInjectionData(CNodeMapFactory& injectionDataFactory);
    void LoadAndInject();
    void Preprocess();
    void ReleaseCameraDescriptionFileData();
    void GetSupportedSchemaVersions(GENICAM_NAMESPACE::gcstring_vector& versions) const;

    // A new map each time, which the caller ends by IDestroy.
    INodeMap* CreateNodeMap(
        const GENICAM_NAMESPACE::gcstring& DeviceName = "Device", bool DoReleaseCameraDescriptionFileData = true);
    // The lock must outlive the map.
    INodeMap* CreateNodeMap(
        CLock& UserProvidedLock, const GENICAM_NAMESPACE::gcstring& DeviceName = "Device",
        bool DoReleaseCameraDescriptionFileData = true);

    // A map without nodes, which the caller ends by IDestroy.
    static INodeMap* CreateEmptyNodeMap();
    // This runtime keeps no descriptions between factories: there is nothing to clear, which is no failure.
    static bool ClearCache();

    struct NodeStatistics_t
    {
        uint32_t NumNodes;
        uint32_t NumProperties; // of all nodes, links and texts included
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
