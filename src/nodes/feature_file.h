// Reads and writes the text of feature files, independent of the object that stores the records.
//
// docs/feature-files.md describes the format. Thread-safe; no state is kept between calls.
#pragma once

#include <Base/GCString.h>
#include <Base/GCStringVector.h>
#include <GenApi/SelectorState.h>
#include <istream>
#include <ostream>
#include <string>

namespace koro::internal
{

// The destination of the records that are read: the part of a bag that the reader needs.
class FeatureRecords
{
public:
    virtual void Clear() = 0;
    // Returns a new state of the bag; null when there is none.
    virtual GENAPI_NAMESPACE::CSelectorState* AllocateSelector() = 0;
    virtual void DeleteSelector(GENAPI_NAMESPACE::CSelectorState*& state) = 0;
    virtual void Push(const char* name, const char* value, GENAPI_NAMESPACE::CSelectorState* state) = 0;

protected:
    ~FeatureRecords() = default;
};

// Throws GenICam's RuntimeException for a text that is not a feature file; records that were read before it are kept.
void ReadFeatureFile(std::istream& stream, FeatureRecords& records);

// Writes the first lines. An empty info text is left out.
void WriteFeatureFileHead(std::ostream& stream, const GENICAM_NAMESPACE::gcstring& info);
void WriteFeatureRecord(
    std::ostream& stream, const GENICAM_NAMESPACE::gcstring& name, const GENICAM_NAMESPACE::gcstring& value,
    GENAPI_NAMESPACE::CSelectorState& selectors);

// The text that is reported when GenApi has refused to load: the first of its texts.
std::string TextOfRefusedLoad(const GENICAM_NAMESPACE::gcstring_vector& errors);

} // namespace koro::internal
