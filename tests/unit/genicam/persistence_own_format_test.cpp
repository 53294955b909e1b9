// A program with a file format of its own: the operators are its own, the records come from the bag.
#define GENAPI_DONT_USE_DEFAULT_PERSISTENCE_FILE_FORMAT
#include <GenApi/NodeMapFactory.h>
#include <GenApi/Persistence.h>
#include <GenICam.h>
#include <gtest/gtest.h>
#include <sstream>

namespace GENAPI_NAMESPACE
{

std::ostream& operator<<(std::ostream& stream, const CFeatureBag& bag)
{
    for (CFeatureBag::const_iterator record = bag.GetBegin(); record != bag.GetEnd(); ++record)
    {
        stream << record->name << "=" << record->value;
        CSelectorState& state = *record->pState;
        for (bool more = !state.IsEmpty() && state.SetFirst(); more; more = state.SetNext())
            stream << " @" << state.GetNodeName() << ":" << state.GetNodeValue();
        stream << ";";
    }
    const CFeatureBag::const_iterator first = bag.GetBegin();
    CFeatureBag::const_iterator second = first;
    second += 1;
    EXPECT_TRUE(second == first + 1);
    EXPECT_TRUE(second - 1 == first);
    EXPECT_TRUE(second++ == first + 1);
    EXPECT_STREQ((*first).name.c_str(), first->name.c_str());
    return stream << bag.GetInfo();
}

std::istream& operator>>(std::istream& stream, CFeatureBag& bag)
{
    bag.Clear();
    std::string name, value, selector;
    while (stream >> name >> value >> selector)
    {
        CSelectorState* unused = bag.AllocateSelector();
        bag.DeleteSelector(unused);
        EXPECT_EQ(unused, nullptr);
        CSelectorState* const state = bag.AllocateSelector();
        if (selector != "-") state->AddSelector(selector.c_str(), "1");
        bag.Push(name.c_str(), value.c_str(), state);
    }
    bag.AllocateSelector(); // not pushed: the bag frees it
    bag.Push("last", "1", nullptr);
    return stream;
}

} // namespace GENAPI_NAMESPACE

namespace
{

using namespace GENAPI_NAMESPACE;

TEST(OwnFileFormat, ReachesTheRecords)
{
    CFeatureBag bag;
    bag.SetInfo("info");
    std::istringstream input("A 1 - B 2 S");
    input >> bag;
    std::ostringstream output;
    output << bag;
    EXPECT_EQ(output.str(), "A=1;B=2 @S:1;last=1;");
    input.clear();
    input.str("C 3 -");
    input >> bag;
    output.str("");
    output << bag;
    EXPECT_EQ(output.str(), "C=3;last=1;") << "cleared first";
}

TEST(OwnFileFormat, MagicsStay)
{
    EXPECT_STREQ(GENAPI_PERSISTENCE_MAGIC, "{05D8C294-F295-4dfb-9D01-096BD04049F4}");
    EXPECT_STREQ(GENAPI_PERSISTENCE_MAGIC_FEATUREBAGGER, "{4709CB3C-7322-4460-84C3-DA11DDA09939}");
    std::istringstream stream("# comment\nx");
    EatComments(stream);
    EXPECT_EQ(stream.get(), 'x');
}

} // namespace
