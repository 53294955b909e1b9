#include "base/exceptions.h"
#include "nodes/boolean_node.h"
#include "nodes/category_node.h"
#include "nodes/command_node.h"
#include "nodes/enumeration_entry_node.h"
#include "nodes/enumeration_node.h"
#include "nodes/float_node.h"
#include "nodes/integer_node.h"
#include "nodes/register_node.h"
#include "nodes/string_node.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/nodes/open_port.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace koro::test
{

using namespace internal;

namespace
{

const std::string oneOfEach =
    "<Category Name=\"Category\"><pFeature>Integer</pFeature></Category>"
    "<Integer Name=\"Integer\"><Value>1</Value></Integer>"
    "<Boolean Name=\"Boolean\"><Value>true</Value></Boolean>"
    "<Command Name=\"Command\"><pValue>Integer</pValue><CommandValue>1</CommandValue></Command>"
    "<Float Name=\"Float\"><Value>1.5</Value></Float>"
    "<StringReg Name=\"String\"><Address>0</Address><Length>8</Length><AccessMode>RW</AccessMode>"
    "<pPort>TLPort</pPort></StringReg>"
    "<Register Name=\"Register\"><Address>0</Address><Length>8</Length><AccessMode>RW</AccessMode>"
    "<pPort>TLPort</pPort></Register>"
    "<Enumeration Name=\"Enumeration\"><EnumEntry Name=\"On\"><Value>1</Value></EnumEntry><Value>1</Value>"
    "</Enumeration>";

using Operations = std::vector<std::pair<const char*, std::function<void()>>>;

class TypedNodes : public OpenPort
{
protected:
    template <class TypedNode>
    std::shared_ptr<TypedNode> Find(const char* name) const
    {
        return std::dynamic_pointer_cast<TypedNode>(map->FindNode(name));
    }

    static void ExpectExpired(const Operations& operations)
    {
        for (const auto& [name, operation] : operations)
        {
            SCOPED_TRACE(name);
            EXPECT_THAT(operation, ThrowsExactly<InternalErrorException>("Pointer has expired!"));
        }
    }

    std::shared_ptr<NodeMap> map = MapOf(oneOfEach);
    const CachePolicy policy = CachePolicy::UseCache;
};

} // namespace

TEST_F(TypedNodes, NumbersWhoseMapHasGoneSaySo)
{
    const auto integer = Find<IntegerNode>("Integer");
    const auto number = Find<FloatNode>("Float");
    const auto boolean = Find<BooleanNode>("Boolean");
    map.reset();
    ExpectExpired({
        {"integer Minimum", [&] { integer->Minimum(); }},
        {"integer Maximum", [&] { integer->Maximum(); }},
        {"integer Increment", [&] { integer->Increment(); }},
        {"integer IncrementType", [&] { integer->IncrementType(); }},
        {"integer ValidValues", [&] { integer->ValidValues(); }},
        {"integer Representation", [&] { integer->Representation(); }},
        {"integer Unit", [&] { integer->Unit(); }},
        {"integer Value", [&] { integer->Value(policy); }},
        {"integer SetValue", [&] { integer->SetValue(1); }},
        {"float Minimum", [&] { number->Minimum(); }},
        {"float Maximum", [&] { number->Maximum(); }},
        {"float HasConstantIncrement", [&] { number->HasConstantIncrement(); }},
        {"float Increment", [&] { number->Increment(); }},
        {"float IncrementType", [&] { number->IncrementType(); }},
        {"float ValidValues", [&] { number->ValidValues(); }},
        {"float Representation", [&] { number->Representation(); }},
        {"float Unit", [&] { number->Unit(); }},
        {"float DisplayNotation", [&] { number->DisplayNotation(); }},
        {"float DisplayPrecision", [&] { number->DisplayPrecision(); }},
        {"float Value", [&] { number->Value(policy); }},
        {"float SetValue", [&] { number->SetValue(1); }},
        {"boolean Value", [&] { boolean->Value(policy); }},
        {"boolean SetValue", [&] { boolean->SetValue(true); }},
    });
}

TEST_F(TypedNodes, OthersWhoseMapHasGoneSaySoAlsoAboutWhatTheyHaveBuilt)
{
    const auto command = Find<CommandNode>("Command");
    const auto text = Find<StringNode>("String");
    const auto bytes = Find<RegisterNode>("Register");
    const auto category = Find<CategoryNode>("Category");
    const auto enumeration = Find<EnumerationNode>("Enumeration");
    const auto entry = enumeration->FindEntry("On");
    EXPECT_EQ(category->SubNodes().size(), 1u);
    map.reset();
    std::uint8_t byte = 0;
    ExpectExpired({
        {"command Execute", [&] { command->Execute(); }},
        {"command IsDone", [&] { command->IsDone(); }},
        {"command WaitUntilDone", [&] { command->WaitUntilDone(~std::uint64_t{0}); }},
        {"string MaximumLength", [&] { text->MaximumLength(); }},
        {"string Value", [&] { text->Value(policy); }},
        {"string SetValue", [&] { text->SetValue("a"); }},
        {"register Address", [&] { bytes->Address(); }},
        {"register Length", [&] { bytes->Length(); }},
        {"register Read", [&] { bytes->Read(&byte, 1, policy); }},
        {"register Write", [&] { bytes->Write(&byte, 1); }},
        {"category SubNodes", [&] { category->SubNodes(); }},
        {"enumeration CurrentEntry", [&] { enumeration->CurrentEntry(policy); }},
        {"enumeration SetCurrentEntry", [&] { enumeration->SetCurrentEntry(entry); }},
        {"enumeration SetCurrentEntry by value", [&] { enumeration->SetCurrentEntry(1); }},
        {"enumeration SetCurrentEntry by text", [&] { enumeration->SetCurrentEntry(std::string("On")); }},
        {"enumeration Entries", [&] { enumeration->Entries(); }},
        {"enumeration FindEntry", [&] { enumeration->FindEntry("On"); }},
        {"enumeration FindEntry by value", [&] { enumeration->FindEntry(1); }},
        {"enumeration TryFindEntry", [&] { enumeration->TryFindEntry("On"); }},
        {"enumeration TryFindEntry by value", [&] { enumeration->TryFindEntry(1); }},
        {"entry IsSelfClearing", [&] { entry->IsSelfClearing(); }},
        {"entry SymbolicValue", [&] { entry->SymbolicValue(); }},
        {"entry Value", [&] { entry->Value(); }},
    });
}

TEST_F(TypedNodes, WaitKeepsTheMapForAllItsQuestions)
{
    auto busy = MapOf("<Command Name=\"Start\"><pValue>Register</pValue><CommandValue>1</CommandValue></Command>"
                      "<IntReg Name=\"Register\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
                      "<pPort>TLPort</pPort><Cachable>NoCache</Cachable><Sign>Unsigned</Sign>"
                      "<Endianess>LittleEndian</Endianess></IntReg>");
    const auto command = std::dynamic_pointer_cast<CommandNode>(busy->FindNode("Start"));
    command->Execute();
    int asked = 0;
    producer->OnEntry("GCReadPort", [&] {
        if (++asked == 1) busy.reset();
        if (asked == 3) producer->Edit([](scripted::Tree& edited) { edited.port.registers[0].assign(4, '\0'); });
    });
    EXPECT_NO_THROW(command->WaitUntilDone(~std::uint64_t{0}));
    producer->OnEntry("GCReadPort", {});
    EXPECT_EQ(asked, 3);
    EXPECT_THAT([&] { command->IsDone(); }, ThrowsExactly<InternalErrorException>("Pointer has expired!"));
}

TEST_F(TypedNodes, EntriesAndSubNodesKeepNothingAlive)
{
    const auto enumeration = Find<EnumerationNode>("Enumeration");
    const std::weak_ptr<Node> entry = enumeration->FindEntry("On");
    EXPECT_EQ(Find<CategoryNode>("Category")->SubNodes().front(), map->FindNode("Integer"));
    const std::weak_ptr<NodeMap> watched = map;
    map.reset();
    EXPECT_TRUE(watched.expired());
    EXPECT_FALSE(entry.expired()); // the enumeration holds it
}

TEST_F(TypedNodes, EmptyEntryIsRefusedByItsOwnText)
{
    const auto enumeration = Find<EnumerationNode>("Enumeration");
    const auto setNone = [&] { enumeration->SetCurrentEntry(std::shared_ptr<EnumerationEntryNode>()); };
    EXPECT_THAT(
        setNone, ThrowsExactly<InvalidArgumentException>(
                     "EnumerationNode::SetCurrentEntry(const std::shared_ptr<EnumerationEntryNode>&) was given an "
                     "empty shared_ptr!"));
    map.reset();
    EXPECT_THAT(setNone, ThrowsExactly<InternalErrorException>("Pointer has expired!"));
}

TEST_F(TypedNodes, NodeOfAnotherInterfaceIsAnInternalErrorAtEachUse)
{
    const auto category = map->GenApiNodeMap()->GetNode("Category");
    IntegerNode integer(category, map);
    EnumerationNode enumeration(category, map);
    CommandNode command(category, map);
    EXPECT_THROW(integer.Minimum(), InternalErrorException);
    EXPECT_THROW(integer.SetValue(1), InternalErrorException);
    EXPECT_THROW(enumeration.Entries(), InternalErrorException);
    EXPECT_THROW(enumeration.CurrentEntry(policy), InternalErrorException);
    EXPECT_THROW(command.WaitUntilDone(0), InternalErrorException);
    try
    {
        integer.Value(policy);
        FAIL() << "nothing thrown";
    }
    catch (const InternalErrorException& exception)
    {
        EXPECT_THAT(exception.what(), testing::HasSubstr("NULL pointer dereferenced"));
    }
    // The lock has been given back.
    EXPECT_TRUE(map->GenApiLock().TryLock());
    map->GenApiLock().Unlock();
}

TEST_F(TypedNodes, SizeBeyondAllLengthsIsRefusedByTheRegister)
{
    const auto bytes = Find<RegisterNode>("Register");
    std::uint8_t byte = 0;
    EXPECT_THAT(
        [&] { bytes->Read(&byte, std::size_t{1} << 63, policy); },
        ThrowsExactly<InvalidArgumentException>("A register has no 9223372036854775808 bytes!"));
    EXPECT_THROW(bytes->Write(&byte, ~std::size_t{0}), InvalidArgumentException);
}

// A walk asks for the list at each element: a copy would make it quadratic.
TEST_F(TypedNodes, EntriesAreNotCopiedAtEachQuestion)
{
    const auto enumeration = Find<EnumerationNode>("Enumeration");
    EXPECT_EQ(&enumeration->Entries(), &enumeration->Entries());
}

TEST_F(TypedNodes, OfEntriesWithOneNumberTheFirstIsFound)
{
    const auto twins = MapOf("<Enumeration Name=\"E\"><EnumEntry Name=\"First\"><Value>-7</Value></EnumEntry>"
                             "<EnumEntry Name=\"Second\"><Value>-7</Value></EnumEntry><Value>-7</Value></Enumeration>");
    const auto enumeration = std::dynamic_pointer_cast<EnumerationNode>(twins->FindNode("E"));
    EXPECT_EQ(enumeration->Entries().size(), 2u);
    EXPECT_EQ(enumeration->FindEntry(-7)->SymbolicValue(), "First");
    EXPECT_EQ(enumeration->FindEntry("Second")->Value(), -7);
    EXPECT_EQ(enumeration->TryFindEntry(7), nullptr);
    EXPECT_THAT(
        [&] { enumeration->FindEntry(-8); },
        ThrowsExactly<NotFoundException>("There is no enumeration entry node with the given value (-8)!"));
}

} // namespace koro::test
