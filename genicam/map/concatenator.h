// Concatenator: a list of names and texts to be written to a map.
#pragma once

#include <GenApi/ConcatenatedWrite.h>
#include <GenApi/INodeMap.h>
#include <utility>
#include <vector>

namespace GENAPI_NAMESPACE::runtime
{

class Concatenator : public CNodeWriteConcatenator
{
public:
    void Add(const GENICAM_NAMESPACE::gcstring& name, const GENICAM_NAMESPACE::gcstring& value) override;
    void Add(const GENICAM_NAMESPACE::gcstring& name, const char* value) override;
    void Add(const GENICAM_NAMESPACE::gcstring& name, int64_t value) override;
    void Add(const GENICAM_NAMESPACE::gcstring& name, double value) override;
    void Add(const GENICAM_NAMESPACE::gcstring& name, bool value) override;
    void Clear() override { writes.clear(); }
    void Destroy() override { delete this; }

    // Writes in the order of the list. With `errors` the texts of errors are collected and the writing continues;
    // without it the first error is thrown.
    bool WriteTo(INodeMap& map, GENICAM_NAMESPACE::gcstring_vector* errors) const;

private:
    std::vector<std::pair<GENICAM_NAMESPACE::gcstring, GENICAM_NAMESPACE::gcstring>> writes;
};

} // namespace GENAPI_NAMESPACE::runtime
