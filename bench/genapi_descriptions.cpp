#include "bench/genapi_descriptions.h"

namespace koro::bench
{

namespace
{

std::string Element(const std::string& kind, const std::string& name, const std::string& children)
{
    return "<" + kind + " Name=\"" + name + "\">\n" + children + "</" + kind + ">\n";
}

std::string Child(const std::string& name, const std::string& content)
{
    return "  <" + name + ">" + content + "</" + name + ">\n";
}

std::string Variable(const std::string& name, const std::string& node)
{
    return "  <pVariable Name=\"" + name + "\">" + node + "</pVariable>\n";
}

std::string Place(std::size_t address, const std::string& more = "")
{
    return Child("Address", std::to_string(address)) + more + Child("Length", "4") + Child("AccessMode", "RW") +
           Child("pPort", "Device");
}

std::string Described(const std::string& elements)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<RegisterDescription ModelName=\"Bench\" VendorName=\"Koro\" "
           "StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" "
           "MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" ProductGuid=\"0\" VersionGuid=\"0\" "
           "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n" +
           elements + Element("Port", "Device", "") + "</RegisterDescription>\n";
}

const std::string endings = Child("Sign", "Unsigned") + Child("Endianess", "BigEndian");

std::string Feature(std::size_t number)
{
    const std::string name = "Feature" + std::to_string(number);
    const std::string before = "Feature" + std::to_string(number / 2) + "Reg";
    std::string entryElements;
    for (const char* const entry : {"Off", "Once", "Continuous"})
    {
        entryElements += "  <EnumEntry Name=\"" + std::string(entry) + "\">\n" + Child("pIsImplemented", name + "Inq") +
                         Child("Value", std::to_string(entryElements.size())) + "  </EnumEntry>\n";
    }
    return Element(
               "Integer", name,
               Child("ToolTip", "Controls the feature number " + std::to_string(number)) +
                   Child(
                       "Description",
                       "This feature controls what the camera does with number " + std::to_string(number)) +
                   Child("DisplayName", "Feature " + std::to_string(number)) + Child("Visibility", "Expert") +
                   Child("pIsImplemented", name + "Inq") + Child("Streamable", "Yes") + Child("pValue", name + "Reg") +
                   Child("Min", "0") + Child("pMax", name + "Max") + Child("Representation", "Linear")) +
           Element(
               "MaskedIntReg", name + "Inq",
               Place(number * 16, Child("pAddress", "Base")) + Child("pInvalidator", before) + Child("Bit", "3") +
                   endings) +
           Element(
               "IntReg", name + "Reg",
               Place(number * 16 + 4, Child("pAddress", "Base")) + Child("pInvalidator", name + "Mode") + endings) +
           Element(
               "IntSwissKnife", name + "Max",
               Variable("MODE", name + "Inq") + Variable("VALUE", before) +
                   Child("Formula", "(MODE = 1) ? ((VALUE &gt;&gt; 2) * 4 + 16) : 0xFFFF")) +
           Element("Enumeration", name + "Mode", entryElements + Child("pValue", name + "ModeReg")) +
           Element(
               "MaskedIntReg", name + "ModeReg",
               Place(number * 16 + 8, Child("pAddress", "Base")) + Child("LSB", "31") + Child("MSB", "24") + endings);
}

std::string Numbered(std::size_t count, const std::string& before, const std::string& behind)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += before + std::to_string(i) + behind;
    return text;
}

} // namespace

std::string GeneratedDescription(std::size_t features)
{
    std::string root = Child("pFeature", "Base");
    std::string elements = Element("Integer", "Base", Child("Value", "0x10000"));
    for (std::size_t number = 0; number < features; ++number)
    {
        root += Child("pFeature", "Feature" + std::to_string(number)) +
                Child("pFeature", "Feature" + std::to_string(number) + "Mode");
        elements += Feature(number);
    }
    return Described(Element("Category", "Root", root) + elements);
}

std::string DescriptionOfSingleNodes()
{
    const std::string uncached = Child("Cachable", "NoCache");
    std::string elements =
        Element("IntReg", "Cached", Place(0) + endings) + Element("IntReg", "Uncached", Place(4) + uncached + endings) +
        Element("MaskedIntReg", "Masked", Place(8) + uncached + Child("LSB", "23") + Child("MSB", "8") + endings) +
        Element("Integer", "Value", Child("pValue", "Uncached")) +
        Element(
            "IntConverter", "Steps",
            Child("FormulaTo", "FROM * 4 + 1") + Child("FormulaFrom", "(TO - 1) / 4") + Child("pValue", "Value") +
                Child("Slope", "Increasing")) +
        Element(
            "Converter", "Scaled",
            Child("FormulaTo", "FROM * 1000.0") + Child("FormulaFrom", "TO / 1000.0") + Child("pValue", "Steps") +
                Child("Slope", "Increasing"));

    std::string formats;
    for (int entry = 0; entry < entries; ++entry)
    {
        formats += "<EnumEntry Name=\"Entry" + std::to_string(entry) + "\">" + Child("Value", std::to_string(entry)) +
                   "</EnumEntry>";
    }
    elements += Element("Enumeration", "Format", formats + Child("pValue", "FormatReg")) +
                Element("IntReg", "FormatReg", Place(16) + endings);

    std::string choices;
    for (int channel = 0; channel < channels; ++channel)
    {
        choices += "<EnumEntry Name=\"Channel" + std::to_string(channel) + "\">" +
                   Child("Value", std::to_string(channel)) + "</EnumEntry>";
    }
    elements += Element("Enumeration", "Channel", choices + Child("Value", "0") + Child("pSelected", "Level")) +
                Element("Integer", "Level", Child("pValue", "LevelReg")) +
                Element("IntReg", "LevelReg", Place(64, "<pIndex Offset=\"4\">Channel</pIndex>") + uncached + endings);

    elements += Element("Integer", "Invalidated", Child("Value", "0"));
    for (int dependant = 0; dependant < dependants; ++dependant)
    {
        elements += Element(
            "IntReg", "Dependant" + std::to_string(dependant),
            Place(static_cast<std::size_t>(1024 + 4 * dependant)) + Child("pInvalidator", "Invalidated") + endings);
    }
    return Described(elements);
}

std::string DescriptionOfLongLists(std::size_t count)
{
    return "<RegisterDescription ModelName=\"M\" VendorName=\"V\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" "
           "SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" "
           "SubMinorVersion=\"0\" ProductGuid=\"p\" VersionGuid=\"v\" "
           "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\"><Category Name=\"Root\">" +
           Numbered(count, "<pFeature>F", "</pFeature>") + "</Category><Integer Name=\"Selector\"><Value>0</Value>" +
           Numbered(count, "<pSelected>F", "</pSelected>") + "</Integer>" +
           Numbered(count, "<Integer Name=\"F", "\"><Value>1</Value></Integer>") + "<Enumeration Name=\"Long\">" +
           Numbered(count, "<EnumEntry Name=\"E", "\"><Value>1</Value></EnumEntry>") +
           "<Value>1</Value></Enumeration><Port Name=\"Device\"/></RegisterDescription>";
}

} // namespace koro::bench
