// CFeatureBag: the streamable features of a node map as texts, to be stored in a file and written back.
//
// A value; not thread-safe. StoreToBag and LoadFromBag hold the lock of the map while they run.
//
// To use another file format, define GENAPI_DONT_USE_DEFAULT_PERSISTENCE_FILE_FORMAT before the include and define the
// two stream operators in GENAPI_NAMESPACE, all in one source file: the operators are friends and can access the
// records.
#pragma once

#include <Base/GCStringVector.h>
#include <GenApi/GenApiVersion.h>
#include <GenApi/INodeMap.h>
#include <GenApi/IValue.h>
#include <GenApi/SelectorSet.h>
#include <GenApi/SelectorState.h>
#include <istream>
#include <limits>
#include <memory>
#include <ostream>
#include <vector>

// In the first line of a file with one bag, and of one with several.
#define GENAPI_PERSISTENCE_MAGIC "{05D8C294-F295-4dfb-9D01-096BD04049F4}"
#define GENAPI_PERSISTENCE_MAGIC_FEATUREBAGGER "{4709CB3C-7322-4460-84C3-DA11DDA09939}"

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPersistScript
{
    virtual void SetInfo(const GENICAM_NAMESPACE::gcstring& Info) = 0;
    virtual void PersistFeature(IValue & item, CSelectorSet* selectorSet = nullptr) = 0;

protected:
    ~IPersistScript() = default;
};

class GENAPI_DECL CFeatureBag : public IPersistScript
{
public:
    CFeatureBag();
    CFeatureBag(const CFeatureBag& other);
    CFeatureBag& operator=(const CFeatureBag& other);
    virtual ~CFeatureBag();

    void SetInfo(const GENICAM_NAMESPACE::gcstring& Info) override { info = Info; }
    // Appends a record of the current value. Throws RuntimeException when the bag is full.
    void PersistFeature(IValue& item, CSelectorSet* selectorSet = nullptr) override;

    // Writes the records in their order, without checks; with Verify it then reads them back. Returns true if there was
    // no error; the texts of errors are appended to the list. Values that were written stay.
    bool LoadFromBag(INodeMap* pNodeMap, bool Verify = true, GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr);
    // Appends a record for each streamable feature and each combination of its selectors, and returns their number.
    // Stops after this many records, unless the limit is negative. The filter lists the only nodes to be stored.
    int64_t StoreToBag(
        INodeMap* pNodeMap, const int MaxNumPersistSkriptEntries = -1,
        GENICAM_NAMESPACE::gcstring_vector* pFeatureFilter = nullptr);

    // Compares the records; the info text is ignored.
    bool operator==(const CFeatureBag& other) const;
    // In the format of a file.
    GENICAM_NAMESPACE::gcstring ToString();

    // Destroys a bag that was created by new.
    virtual void Destroy() { delete this; }
    virtual const GENICAM_NAMESPACE::gcstring& GetBagName() const { return bagName; }
    virtual void SetBagName(const GENICAM_NAMESPACE::gcstring& name) { bagName = name; }

    friend std::istream& operator>>(std::istream& stream, CFeatureBag& bag);
    friend std::ostream& operator<<(std::ostream& stream, const CFeatureBag& bag);

private:
    struct Triplet
    {
        GENICAM_NAMESPACE::gcstring name;
        GENICAM_NAMESPACE::gcstring value;
        CSelectorState* pState; // owned by the bag; never null
    };

    class const_iterator
    {
    public:
        const Triplet& operator*() const { return *place; }
        const Triplet* operator->() const { return place; }
        const_iterator& operator++()
        {
            ++place;
            return *this;
        }
        const_iterator operator++(int)
        {
            const const_iterator former = *this;
            ++place;
            return former;
        }
        const_iterator& operator+=(ptrdiff_t distance)
        {
            place += distance;
            return *this;
        }
        const_iterator operator+(ptrdiff_t distance) const { return const_iterator(place + distance); }
        const_iterator operator-(ptrdiff_t distance) const { return const_iterator(place - distance); }
        ptrdiff_t operator-(const const_iterator& other) const { return place - other.place; }
        bool operator==(const const_iterator& other) const { return place == other.place; }
        bool operator!=(const const_iterator& other) const { return place != other.place; }

    private:
        friend class CFeatureBag;

        explicit const_iterator(const Triplet* triplet) : place(triplet) {}

        const Triplet* place;
    };

    // The bag owns the state; DeleteSelector destroys one that was not pushed and sets the pointer to null.
    CSelectorState* AllocateSelector();
    void DeleteSelector(CSelectorState*& pSelectorState);
    void Clear();
    void Push(const char* name, const char* value, CSelectorState* pSelectorState);
    const GENICAM_NAMESPACE::gcstring& GetInfo() const { return info; }
    const_iterator GetBegin() const { return const_iterator(triplets.data()); }
    const_iterator GetEnd() const { return const_iterator(triplets.data() + triplets.size()); }
    const_iterator GetBegin() { return static_cast<const CFeatureBag*>(this)->GetBegin(); }
    const_iterator GetEnd() { return static_cast<const CFeatureBag*>(this)->GetEnd(); }

    void Append(
        const GENICAM_NAMESPACE::gcstring& name, const GENICAM_NAMESPACE::gcstring& value, CSelectorState* state);
    void Swap(CFeatureBag& other);
    int64_t StoreNode(INode& node, int64_t limit, int64_t& combinations);
    int64_t StoreCombinations(INode& node, CSelectorSet& selectors, int64_t limit, int64_t& combinations);
    bool WriteRecord(INodeMap& map, const Triplet& triplet, GENICAM_NAMESPACE::gcstring_vector* errors) const;
    bool VerifyRecord(INodeMap& map, const Triplet& triplet, GENICAM_NAMESPACE::gcstring_vector* errors) const;
    // The default file format.
    void ReadFrom(std::istream& stream);
    void WriteTo(std::ostream& stream) const;

    GENICAM_NAMESPACE::gcstring info;
    GENICAM_NAMESPACE::gcstring bagName;
    std::vector<Triplet> triplets;
    std::vector<std::unique_ptr<CSelectorState>> states; // of the triplets, and those that were not pushed yet
};

// Skips lines that begin with "#".
inline void EatComments(std::istream& is)
{
    while (is.good() && is.peek() == '#')
        is.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
}

#ifndef GENAPI_DONT_USE_DEFAULT_PERSISTENCE_FILE_FORMAT

// Removes white space at both ends.
inline void TrimSpace(GENICAM_NAMESPACE::gcstring& text)
{
    const char* const space = " \t\n\v\f\r";
    const size_t first = text.find_first_not_of(space);
    const size_t last = text.find_last_not_of(space);
    text = first == GCSTRING_NPOS ? GENICAM_NAMESPACE::gcstring() : text.substr(first, last - first + 1);
}

// A RuntimeException states the error in a file; the bag is not changed then.
inline std::istream& operator>>(std::istream& stream, CFeatureBag& bag)
{
    bag.ReadFrom(stream);
    return stream;
}

inline std::ostream& operator<<(std::ostream& stream, const CFeatureBag& bag)
{
    bag.WriteTo(stream);
    return stream;
}

#endif

} // namespace GENAPI_NAMESPACE
