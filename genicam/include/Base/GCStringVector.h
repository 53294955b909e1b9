// gcstring_vector: a list of texts. A value, like GCSequence.
#pragma once

#include <Base/GCArray.h>
#include <Base/GCException.h>
#include <Base/GCString.h>
#include <algorithm>

namespace GENICAM_NAMESPACE
{

class GCBASE_RTTI_CLASS_API gcstring_vector : public GCSequence<gcstring>
{
public:
    gcstring_vector() {}
    explicit gcstring_vector(size_t count, const gcstring& value = gcstring()) : GCSequence<gcstring>(count, value) {}

    using GCSequence<gcstring>::assign;
    virtual void assign(const gcstring_vector& other) { *this = other; }
    // Throws OutOfRangeException past the end.
    gcstring& at(size_t position) override { return elements[Checked(position)]; }
    const gcstring& at(size_t position) const override { return elements[Checked(position)]; }
    virtual void resize(size_t count, const gcstring& value = gcstring()) { elements.resize(count, value); }
    virtual bool contains(const gcstring& text) const
    {
        return std::find(elements.begin(), elements.end(), text) != elements.end();
    }

private:
    size_t Checked(size_t position) const
    {
        if (position >= elements.size()) throw OUT_OF_RANGE_EXCEPTION("The index is out of range");
        return position;
    }
};

} // namespace GENICAM_NAMESPACE
