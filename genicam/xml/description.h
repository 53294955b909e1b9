// Description: a camera description as flat records: nodes in the order in which they are first mentioned, and the
// properties of each.
//
// Created once by ParseDescription, then constant: all maps of a factory share one. Safe to read from any thread.
#pragma once

#include "xml/elements.h"
#include "xml/name_table.h"

#include <Base/GCTypes.h>
#include <memory>
#include <stddef.h>
#include <string>
#include <string_view>
#include <vector>

namespace GENAPI_NAMESPACE::runtime
{

typedef uint32_t NodeIndex;
const NodeIndex noNode = 0xffffffff;

// The place of a text among the texts of its description.
struct TextPlace
{
    uint32_t offset;
    uint32_t length;
};

// One property of a node; FormOf determines which member is used. Words are numbers of enumerators.
struct PropertyRecord
{
    Property property;
    union
    {
        int64_t number;
        double real;
        TextPlace text;
        NodeIndex node;
    };
};

struct NodeRecord
{
    TextPlace name;
    uint32_t firstProperty;
    uint32_t propertyCount;
    uint32_t firstEssential;
    uint32_t essentialCount; // 0: all properties are essential
    uint32_t sourceOffset;   // bytes from the start of the XML text to the element
    NodeIndex madeBy;        // the node whose element brings this one along: entries, parts of formulas; else noNode
    Element element;         // None: mentioned, not (yet) there
    uint8_t source;          // number of the XML text
    int8_t mergePriority;    // -1, 0, 1
    bool standard;           // namespace
    bool feature;            // reachable from the category Root
};

struct DeviceRecord
{
    std::string modelName;
    std::string vendorName;
    std::string toolTip;
    std::string standardNameSpace;
    std::string productGuid;
    std::string versionGuid;
    GENICAM_NAMESPACE::Version_t schemaVersion;
    GENICAM_NAMESPACE::Version_t deviceVersion;
};

// A run of records or indices inside a vector.
template <class T>
struct Span
{
    const T* first;
    const T* last;
    const T* begin() const { return first; }
    const T* end() const { return last; }
    size_t size() const { return static_cast<size_t>(last - first); }
    bool empty() const { return first == last; }
    const T& operator[](size_t position) const { return first[position]; }
};

// Lists of nodes for each node, one after the other: the list of node n starts at firsts[n].
struct NodeLists
{
    std::vector<uint32_t> firsts;
    std::vector<NodeIndex> nodes;

    Span<NodeIndex> Of(NodeIndex node) const { return {nodes.data() + firsts[node], nodes.data() + firsts[node + 1]}; }
};

class Description
{
public:
    Span<PropertyRecord> PropertiesOf(NodeIndex node) const;
    // The properties that are read while nodes are used, in the same order. Of a property that may occur any number of
    // times, and that is not iterated in use, only the first one is included.
    Span<PropertyRecord> EssentialsOf(NodeIndex node) const;
    // The first record of the property, or null.
    const PropertyRecord* Find(NodeIndex node, Property property) const;
    std::string_view Text(TextPlace place) const { return {texts.data() + place.offset, place.length}; }
    std::string_view Text(NodeIndex node, Property property) const; // empty when absent
    std::string_view NameOf(NodeIndex node) const { return Text(nodes[node].name); }
    // The value of a property as a description writes it.
    std::string ValueText(NodeIndex node, const PropertyRecord& record) const;
    // Returns noNode when there is no such node.
    NodeIndex FindNode(std::string_view name) const;

    DeviceRecord device;
    std::vector<NodeRecord> nodes;
    std::vector<PropertyRecord> properties; // of all nodes, then the essential ones that are stored separately
    std::string texts;
    NameTable names;

    // Links against the direction of the file; see links.h.
    NodeLists parents;     // by reading links, and an enumeration for its entries
    NodeLists dependents;  // parents, nodes with this one as pInvalidator, and what this one selects; in rising order
    NodeLists invalidated; // the nodes with this one as pInvalidator
    NodeLists selected;    // by pSelected, and what depends on a selected selector
    NodeLists selecting;   // the reverse, nearest selector first
    NodeLists namedBy;     // the selectors among those that name the node in pSelected
};

} // namespace GENAPI_NAMESPACE::runtime
