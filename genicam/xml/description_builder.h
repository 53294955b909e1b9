// DescriptionBuilder: adds nodes, their properties and texts to a description while it is read.
//
// Exists during one text. Enforces the bounds of a description.
#pragma once

#include "xml/node_draft.h"
#include "xml/xml_reader.h"

namespace GENAPI_NAMESPACE::runtime
{

class DescriptionBuilder
{
public:
    // The reader provides the positions for messages.
    explicit DescriptionBuilder(const XmlReader& source) : reader(source), description(std::make_shared<Description>())
    {}

    std::shared_ptr<Description> Result() const { return description; }
    DeviceRecord& Device() { return description->device; }
    std::string_view Text(TextPlace place) const { return description->Text(place); }
    std::string_view NameOf(NodeIndex node) const { return description->NameOf(node); }

    TextPlace Store(std::string_view text);
    // Returns the node of that name, for a link to it.
    NodeIndex Mention(std::string_view name);
    // Defines the node of that name, by its element or by the element of `madeBy`. Throws when it is defined already.
    NodeIndex Define(std::string_view name, Element element, NodeIndex madeBy = noNode);
    NodeRecord& Node(NodeIndex node) { return description->nodes[node]; }
    // Converts the text of a property.
    PropertyRecord Read(Element element, Property read, std::string_view value);
    // Throws PropertyException, which names the property, the text and the place.
    int64_t Number(std::string_view name, std::string_view value) const;
    // "_<owner>_<suffix>"
    std::string MadeUpName(NodeIndex owner, std::string_view suffix) const;

    // Sets the properties of the node.
    void Finish(NodeIndex node, const std::vector<PropertyRecord>& properties);
    // The entries of a StructReg, each with its properties including the shared ones.
    typedef std::vector<std::pair<NodeIndex, std::vector<PropertyRecord>>> StructEntries;
    void FinishStruct(const NodeDraft& draft, const StructEntries& entries);
    // A knife or a converter, its expressions and the nodes of its formulas.
    void FinishFormulas(const NodeDraft& draft);

private:
    const XmlReader& reader;
    std::shared_ptr<Description> description;
};

} // namespace GENAPI_NAMESPACE::runtime
